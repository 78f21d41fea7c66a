#pragma once

#include "StdioStream.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

class cSndfileStream;
class cSoundOutput;
class cWaveFile;

/// One local file on its way to the device: a sound file becomes a temporary WAV file of 16-bit samples, mono
/// or stereo, with at most 48000 frames per second; every other file goes as it is. Either way the file gets
/// its name for the device.
class cAudioConversion {
public:
    /// With zUseOwnReaders only ".wav" and ".aif" files are converted, by this program's own readers.
    explicit cAudioConversion(std::string zSourcePath, bool zUseOwnReaders = false);

    /// Deletes the temporary file.
    ~cAudioConversion();

    cAudioConversion(const cAudioConversion&) = delete;
    cAudioConversion& operator=(const cAudioConversion&) = delete;

    /// Decides what is sent and under which name: fills outputPath, deviceName and outputSize. Always true:
    /// where the conversion fails, the source itself is sent and `message` says why. Without a folder the
    /// temporary one is used; a file in a folder of the caller's is the caller's to delete. A conversion ends
    /// early when its file is larger than any that can be uploaded, which outputSize then tells.
    /// Own readers: errors in an AIFF file are thrown as constant texts, as by cReadAIFF.
    bool ConvertForUpload(const std::string* zpOutputFolder = nullptr);

    /// Deletes the temporary file, if there is one. May be called again.
    void DeleteTempFile();

    /// Whether files with this extension, in lower case, are sound files.
    static bool IsConvertibleAudio(const std::string& zExtension);

    bool converted = false; ///< outputPath is a temporary file of this record
    std::string sourcePath; ///< the file to upload
    std::string deviceName; ///< its name on the device, without a folder
    std::string outputPath; ///< the file to send: the temporary one, or the source
    std::string message;    ///< why the conversion failed, or ""
    bool useOwnReaders = false;
    std::uint32_t outputSize = 0; ///< bytes of the file at outputPath; 0 when it cannot be examined

    /// Called between blocks of a conversion with how much of it is done, from 0 to 1. False stops it: the
    /// half-written file is removed, `cancelled` is set and nothing is to be sent.
    std::function<bool(double zDone)> progress;
    bool cancelled = false;

private:
    using tSampleSource = std::function<std::size_t(std::int16_t* zpSamples, std::size_t zCount)>;

    bool Convert(const std::string& zExtension, const std::string* zpOutputFolder);
    bool ConvertWithSndfile(const std::string* zpOutputFolder);
    bool CopyWithSndfile(std::FILE* zpSource, const std::string* zpOutputFolder);
    bool Encode(std::FILE* zpSource, cSndfileStream& zrDecoder, cSoundOutput& zrOutput);
    bool CopySamples(std::FILE* zpSource, cSndfileStream& zrDecoder, cSndfileStream& zrEncoder);
    bool ConvertWavToWav();
    bool ConvertAiffToWav();
    bool WriteWav(std::uint32_t zSampleRate, std::uint16_t zChannels, std::uint64_t zSamples,
                  const tSampleSource& zRead);
    bool CopySamples(cWaveFile& zrWriter, std::uint64_t zSamples, const tSampleSource& zRead);
    tStdioStream OpenSource() const;
    std::string MakeTempOutputPath(const std::string* zpOutputFolder) const;
    void MakeDeviceName(const std::string& zPath, const std::string& zExtension);
    /// The output is complete; zPath is the one that its name on the device comes from.
    void Deliver(cSoundOutput& zrOutput, const std::string& zPath);
    bool Refuse(const std::string& zMessage);
    bool MayGoOn(double zDone);
};
