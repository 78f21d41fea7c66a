#pragma once

#include "RiffReader.h"
#include "StdioStream.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// A RIFF WAVE file of uncompressed samples (Multimedia Programming Interface, version 1.0,
/// IBM and Microsoft, August 1991), closed, open for reading or open for writing. Frames are interleaved, one
/// sample of each channel; samples have 8 bits (unsigned) or 16 (signed).
///
/// An operation that fails returns false and leaves the reason in `error`, a constant text.
///
/// Lengths are 32 bits in the file. A writer that takes more counts on modulo 2^32: the samples are all in
/// the file, but its header does not say so.
class cWaveFile {
public:
    cWaveFile() = default;
    cWaveFile(const cWaveFile&) = delete;
    cWaveFile& operator=(const cWaveFile&) = delete;

    /// Closes.
    ~cWaveFile();

    /// Opens a WAVE file, or a seekable stream that it takes over, for reading, after closing what was open.
    /// The format and dataLength are filled from the file unchecked (any format tag, a length that the file
    /// need not hold) and the stream stands at the first sample. Errors: "Couldn't open file" (also when it
    /// is not RIFF), "Couldn't find RIFF, WAVE, or fmt", "Error reading format chunk", "Couldn't find data
    /// chunk"; the object is then closed.
    bool OpenRead(const std::string& zPath);
    bool OpenRead(std::FILE* zpFile);

    /// Creates or overwrites a file, or takes over a stream that can be written and moved, after closing what
    /// was open, and writes a header without samples. Errors: "Couldn't open output file", and those of
    /// WriteHeader, after which the file is open none the less.
    bool OpenWrite(const std::string& zPath);
    bool OpenWrite(std::FILE* zpFile);

    /// Chooses PCM and its format in frames per second. Nothing is written until the header is.
    void SetFormat(std::uint32_t zSampleRate, std::uint16_t zBitsPerSample, std::uint16_t zChannels);

    /// The format is the six fields from formatTag to bitsPerSample, without the length. Copying it does not
    /// by itself have the header written again.
    bool SameFormat(const cWaveFile& zOther) const;
    void CopyFormat(const cWaveFile& zOther);

    /// Writes the header at the start of a stream and leaves the stream behind it. Error: "Error writing
    /// header"; a stream that cannot be moved is refused without a message.
    bool WriteHeader(std::FILE* zpFile);

    /// Closes the stream; a writer brings its header up to date before and returns whether it could. Errors:
    /// "Couldn't write samples", and those of WriteHeader.
    bool Close();

    /// A reader moves to its first sample; error: "Couldn't find data chunk on reset". A writer moves to byte
    /// 36, where the header of the data chunk begins, and not to the first sample. False with no message when
    /// closed or when the stream cannot be moved.
    bool Reset();

    /// Moves bytes to and from the stream as they are. A writer is read where its stream can be, if it was
    /// moved since the last write. What is written counts as samples. Errors: "Couldn't read samples" with
    /// the buffer partly filled, "Couldn't write samples" with nothing counted.
    bool ReadRaw(void* zpBuffer, std::size_t zBytes);
    bool WriteRaw(const void* zpBuffer, std::size_t zBytes);

    /// Move interleaved frames (`channels` samples each, whatever blockAlign says) or single samples. Errors:
    /// "Sample size mismatch" when bitsPerSample is another, and those of the raw transfers. A value is set
    /// only on success.
    bool ReadFrames16(std::int16_t* zpBuffer, std::uint32_t zFrames);
    bool ReadFrames8(std::uint8_t* zpBuffer, std::uint32_t zFrames);
    bool ReadSample16(std::int16_t& zrValue);
    bool ReadSample8(std::uint8_t& zrValue);
    bool WriteFrames16(const std::int16_t* zpBuffer, std::uint32_t zFrames);
    bool WriteFrames8(const std::uint8_t* zpBuffer, std::uint32_t zFrames);
    bool WriteSample16(std::int16_t zValue);
    bool WriteSample8(std::uint8_t zValue);

    /// Single samples of 8 or 16 bits as numbers from -1 to 1. Of 8 bits, 255 reads as a little more than 1.
    /// Writing truncates toward zero and does not clip: a number out of range wraps, see TruncatedSample.
    /// Errors: "Floats can be written only as 8 or 16-bit samples" in either direction, and those above.
    bool ReadSample(double& zrValue);
    bool ReadSample(float& zrValue);
    bool WriteSample(double zValue);
    bool WriteSample(float zValue);

    /// Appends all samples of a file that is open for reading; the format is the caller's affair. What was
    /// written before a failure stays and counts. Errors: "Copy to an unopened file", "Copy from an unopened
    /// file", "Couldn't reset input file to start", "Error reading samples from input file", "Error writing
    /// samples to output file".
    bool CopyFrom(cWaveFile& zrSource);

    /// The first and the next text that describes the file, see cRiffReader::NextInfo; this moves the stream
    /// away from the samples. False when there is none or the file is not open for reading.
    bool GetFirstInfo(std::string& zrDescription, std::string& zrValue);
    bool GetNextInfo(std::string& zrDescription, std::string& zrValue);

    std::unique_ptr<cRiffReader> reader; ///< only while open for reading
    tStdioStream out;                    ///< only while open for writing
    std::uint16_t formatTag = 0;         ///< 1 is PCM
    std::uint16_t channels = 0;
    std::uint32_t sampleRate = 0; ///< frames per second
    std::uint32_t byteRate = 0;   ///< bytes per second
    std::uint16_t blockAlign = 0; ///< bytes per frame
    std::uint16_t bitsPerSample = 0;
    std::uint32_t dataLength = 0; ///< bytes of samples
    const char* error = nullptr;  ///< why the last operation that failed did
    bool headerDirty = true;      ///< the header in the file does not match the fields

private:
    bool Fail(const char* zpMessage);
    bool FinishWriting();
    bool StartReading(std::unique_ptr<cRiffReader> zpReader);
    bool FindSamples();
    bool ReadFormat();
    bool CheckBits(std::uint16_t zBits);
    bool ReadSamples16(std::int16_t* zpBuffer, std::size_t zSamples);
    bool WriteSamples16(const std::int16_t* zpBuffer, std::size_t zSamples);
    bool CopySamples(cRiffReader& zrSource, std::uint32_t zBytes);
};
