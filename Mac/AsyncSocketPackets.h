#pragma once

#include <QtCore/QByteArray>

/// By how many bytes a read of unknown length grows in one step.
inline constexpr qsizetype kReadAllStep = 256;
inline constexpr qsizetype kPreBufferStep = 256;

/// One queued read: of whatever there is, of an exact length, or up to and including a terminator.
struct AsyncReadPacket {
    static AsyncReadPacket AllAvailable(double zTimeout, long zTag);
    static AsyncReadPacket ToLength(qsizetype zLength, double zTimeout, long zTag);
    static AsyncReadPacket ToTerminator(const QByteArray& zTerminator, double zTimeout, qsizetype zMaxLength,
                                        long zTag);

    bool IsTerminatorRead() const { return !mTerminator.isEmpty(); }

    bool IsLengthRead() const { return !mReadAllAvailable && !IsTerminatorRead(); }

    char* FreePart() { return mBuffer.data() + mBytesDone; }

    qsizetype FreeLength() const { return mBuffer.size() - mBytesDone; }

    /// Makes exactly zCount bytes free after what is done.
    void SetFreeLength(qsizetype zCount) { mBuffer.resize(mBytesDone + zCount); }

    /// How far a terminator read may read ahead, when what it does not need can be kept for the next read.
    qsizetype PreBufferLength() const;

    /// How many bytes a terminator read can take without any risk of running past its terminator.
    qsizetype SafeLength() const;

    /// Whether what is done ends with the terminator.
    bool EndsWithTerminator() const;

    /// How many bytes follow the first terminator that ends within the newest zNewCount bytes; -1 without.
    qsizetype CountPastTerminator(qsizetype zNewCount) const;

    /// Whether a terminator read with a limit has come to it.
    bool HasReachedMaxLength() const { return mMaxLength >= 0 && mBytesDone >= mMaxLength; }

    QByteArray mBuffer;
    qsizetype mBytesDone = 0;
    double mTimeout = -1.0; ///< seconds; negative is none
    long mTag = 0;
    qsizetype mMaxLength = -1; ///< of terminator reads; negative is unlimited
    bool mReadAllAvailable = false;
    QByteArray mTerminator; ///< empty is none
};

/// One queued write. The bytes are shared with the caller, not copied.
struct AsyncWritePacket {
    const char* LeftPart() const { return mData.constData() + mBytesDone; }

    qsizetype LeftLength() const { return mData.size() - mBytesDone; }

    QByteArray mData;
    qsizetype mBytesDone = 0;
    double mTimeout = -1.0; ///< seconds; negative is none
    long mTag = 0;
};
