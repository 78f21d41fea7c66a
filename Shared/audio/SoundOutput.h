#pragma once

#include "StdioStream.h"

#include <cstdio>
#include <string>

/// The file that a conversion writes, removed again unless it is kept. It never takes the place of another
/// file: where its name is taken, it gets a fresh one beside it.
class cSoundOutput {
public:
    /// Creates "TITLE.wav", or "TITLE-2.wav" and so on, in a folder. zPath is the first of these.
    explicit cSoundOutput(const std::string& zPath);

    /// Closes the file, and removes it unless it was kept.
    ~cSoundOutput();

    cSoundOutput(const cSoundOutput&) = delete;
    cSoundOutput& operator=(const cSoundOutput&) = delete;

    /// False when it could not be created.
    bool IsOpen() const { return mIsCreated; }

    const std::string& GetPath() const { return mPath; }

    std::FILE* GetFile() const { return mpFile.get(); }

    /// Hands the stream over to somebody who closes it while this object is there.
    std::FILE* ReleaseFile() { return mpFile.release(); }

    /// Closes the file. False when something of it did not reach the disk.
    bool Close();

    /// Leaves the file where it is.
    void Keep() { mIsKept = true; }

private:
    std::string mPath;
    cStdioBuffer mBuffer;
    tStdioStream mpFile;
    bool mIsCreated = false;
    bool mIsKept = false;
};
