#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

struct sAiffState;

/// Reads an uncompressed AIFF file ("Audio Interchange File Format", version 1.3, Apple Computer, January
/// 1989; not AIFF-C), frame by frame, one sample of each channel.
///
/// Every failure throws a constant text (`const char*`) that begins "cReadAIFF: ". Nothing is undone then.
/// A stream that failed stays so until it is closed: reading on fails with "cReadAIFF: Error reading
/// audiosample!" and rewinding with "cReadAIFF: Failed to rewind!".
class cReadAIFF {
public:
    cReadAIFF();

    /// Opens as well. Whether the file could be opened, IsOpen tells.
    explicit cReadAIFF(const char* zpPath);

    /// Closes.
    ~cReadAIFF();

    /// Opens a file, reads its header and stands at the first frame. False, with nothing changed, when
    /// something is open or the path is null or empty; false too when the file cannot be opened. Throws when
    /// the header is not what it should be, which leaves the file open but of no use. The header's texts are
    /// "cReadAIFF: " and
    /// - of the file: "Failed to read FORM chunk!", "Header doesn't start with magic word FORM!", "Failed to
    ///   read FORM size!", "Failed to read AIFF type!", "Header doesn't specify AIFF type!";
    /// - of its chunks: "Failed to read chunkID!" (also when COMM or SSND is missing), "Failed to read
    ///   chunksize!", "Error during skipping unknown chunk!";
    /// - of COMM: "Multiple COMM chunks!", "COMM chunk has bad size (too small)!", "Failed to read number of
    ///   channels!", "Invalid number of channels!" (not 1 to 1000), "Failed to read number of sampleframes in
    ///   COMM chunk!", "Failed to read number of bits resolution in COMM chunk!", "Invalid number of
    ///   resolution bits!" (not 1 to 56), "Suspicious size in FORM chunk!" (too small for the samples),
    ///   "Error reading samplerate!", "Samplerate out of range!" (not above 0 and up to 1000000), "Error
    ///   while skipping extension-bytes in COMM chunk!", "Failed to rewind!" (to the samples, which came
    ///   first);
    /// - of SSND: "Multiple SSND chunks!", "Error while skipping offset in SSND chunk!" (also when
    ///   the samples begin beyond the first 2 GiB).
    bool Open(const char* zpPath);

    bool IsOpen() const;

    /// Throws "cReadAIFF: File already closed or never opened!".
    void Close();

    /// What the header says; the rate is in frames per second. They throw, in this order, "cReadAIFF: No
    /// number of frames, file closed!", "cReadAIFF: No number of bits, file closed!", "cReadAIFF: No number
    /// of channels, file closed!", "cReadAIFF: No samplerate, file closed!".
    std::uint32_t GetFrames() const;
    std::int16_t GetBits() const;
    std::int16_t GetChannels() const;
    double GetSampleRate() const;

    /// The frames not read yet. Throws "cReadAIFF: No number of frames to go, file closed!".
    std::uint32_t GetFramesToGo() const;

    /// Moves back to the first frame. Throws "cReadAIFF: Cannot rewind a closed file!", "cReadAIFF: Failed to
    /// rewind!".
    void Rewind();

    /// Read the next frames, zFrameCount times the number of channels elements. An integer is the sample as
    /// it stands in its bytes, also when it has fewer bits than they; an unsigned one holds the same bits. A
    /// floating-point number is from -1 to below 1 (infinite in the odd case of samples of 4 bits, which take
    /// no bytes in the file and are all -1 as integers).
    ///
    /// Throw "cReadAIFF: AIFF-data does not fit requested destination datatype!" before all else, when a
    /// sample takes more bits in the file than the integer has, more than 54 for a double or 25 for a float;
    /// "cReadAIFF: Cannot read from a closed file!", "cReadAIFF: NULL pointer supplied to read()!",
    /// "cReadAIFF: Cannot read negative amount of frames!", "cReadAIFF: Requested to read more frames than
    /// available!"; and "cReadAIFF: Error reading audiosample!", after which the samples before the end of
    /// the file are there and only their whole frames count as read.
    void Read(std::int64_t* zpDestination, std::int32_t zFrameCount);
    void Read(std::int32_t* zpDestination, std::int32_t zFrameCount);
    void Read(std::uint32_t* zpDestination, std::int32_t zFrameCount);
    void Read(std::int16_t* zpDestination, std::int32_t zFrameCount);
    void Read(std::int8_t* zpDestination, std::int32_t zFrameCount);
    void Read(double* zpDestination, std::int32_t zFrameCount);
    void Read(float* zpDestination, std::int32_t zFrameCount);

    /// Writes what the header says as lines for people, numbers in the stream's own format, and returns the
    /// stream. Throws "cReadAIFF: No file currently open!".
    std::ostream& PrintInfo(std::ostream& zrOut) const;

private:
    void RequireOpen(const char* zpMessage) const;
    void CheckWidth(int zMaxBits) const;
    template <class tElement>
    void ReadFrames(tElement* zpDestination, std::int32_t zFrameCount);

    std::unique_ptr<sAiffState> mpState;
};
