#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

/// A sound file that libsndfile decodes from, or encodes into, a C stream. The stream stays the caller's and
/// must outlive this object.
class cSndfileStream {
public:
    cSndfileStream();

    /// Completes the header of a file that is written and closes it; the stream stays open.
    ~cSndfileStream();

    cSndfileStream(const cSndfileStream&) = delete;
    cSndfileStream& operator=(const cSndfileStream&) = delete;

    /// The version of libsndfile that the program runs with, in its own words ("libsndfile-1.2.0").
    static std::string LibraryVersion();

    /// Opens a sound file of any format that libsndfile reads, from its start. False when it is none, or when
    /// zMayGoOn, asked now and then meanwhile, answers false. The header is read in a trial process first,
    /// since there are some in which the library goes round for ever; such a file counts as no sound.
    bool OpenRead(std::FILE* zpFile, const std::function<bool()>& zMayGoOn = {});

    /// Starts a WAV file of 16-bit samples. False when that cannot be done.
    bool OpenWrite(std::FILE* zpFile, int zSampleRate, int zChannels);

    /// Frames per second and samples per frame of an open file.
    int GetSampleRate() const;
    int GetChannels() const;

    /// Takes up to zCount samples (a multiple of the channels), interleaved, full scale being 1. Returns how
    /// many; 0 at the end.
    std::size_t ReadSamples(double* zpSamples, std::size_t zCount);

    /// Appends samples (a multiple of the channels). False when not all of them could be written.
    bool WriteSamples(const std::int16_t* zpSamples, std::size_t zCount);

private:
    struct sHandle;
    std::unique_ptr<sHandle> mpHandle;
};
