#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// Uploads are from 1 to this many bytes long.
inline constexpr std::uint64_t kMaxUploadLength = 268435455;

/// An open file of this process.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : mNumber(number) {}

    ~FileDescriptor();
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool IsOpen() const { return mNumber >= 0; }

    int Number() const { return mNumber; }

    /// False when what was written may be lost; the reason is in errno.
    bool Close();

private:
    int mNumber;
};

/// A file on its way to a client. The length is fixed at the start; what is appended later is not sent.
class Download {
public:
    /// Only regular files of less than 4 GiB have a length above 0; nothing else can be announced.
    explicit Download(const std::filesystem::path& path);

    std::uint32_t Length() const { return mLength; }

    std::uint32_t Remaining() const { return mRemaining; }

    /// The next bytes of the file, at most count and at most what remains; "" when the file has become too
    /// short or cannot be read any more, so that the announced length can no longer be kept.
    std::string ReadPiece(std::size_t count);

private:
    FileDescriptor mFile;
    std::uint32_t mLength = 0;
    std::uint32_t mRemaining = 0;
};

/// A file on its way from a client. It gets its name when it is whole and its old content stays until then;
/// without Commit nothing remains of it.
class Upload {
public:
    explicit Upload(const std::filesystem::path& target);
    ~Upload();
    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;

    /// After a failure the bytes are dropped; Commit tells.
    void Write(std::string_view bytes);

    /// Makes the missing folders and gives the file its name. Returns why it failed, "" when it did not.
    std::string Commit();

private:
    void Fail();

    std::filesystem::path mTarget;
    std::filesystem::path mTemporary;
    FileDescriptor mFile;
    std::string mError;
};
