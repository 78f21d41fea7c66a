#include "AsyncSocketPackets.h"

#include "CommonUtils.h"

#include <QtCore/QByteArrayView>

#include <algorithm>

namespace {

void RequireTerminator(const AsyncReadPacket& zPacket) {
    Require(zPacket.IsTerminatorRead(), "Mac/AsyncSocket",
            "Searching for term in data when there is no term.");
}

} // namespace

AsyncReadPacket AsyncReadPacket::AllAvailable(double zTimeout, long zTag) {
    AsyncReadPacket packet;
    packet.mTimeout = zTimeout;
    packet.mTag = zTag;
    packet.mReadAllAvailable = true;
    return packet;
}

AsyncReadPacket AsyncReadPacket::ToLength(qsizetype zLength, double zTimeout, long zTag) {
    AsyncReadPacket packet;
    packet.mBuffer = QByteArray(zLength, Qt::Uninitialized);
    packet.mTimeout = zTimeout;
    packet.mTag = zTag;
    return packet;
}

AsyncReadPacket AsyncReadPacket::ToTerminator(const QByteArray& zTerminator, double zTimeout,
                                              qsizetype zMaxLength, long zTag) {
    AsyncReadPacket packet;
    packet.mTimeout = zTimeout;
    packet.mTag = zTag;
    packet.mMaxLength = zMaxLength;
    packet.mTerminator = zTerminator;
    return packet;
}

qsizetype AsyncReadPacket::PreBufferLength() const {
    return mMaxLength < 1 ? kPreBufferStep : std::min(kPreBufferStep, mMaxLength - mBytesDone);
}

qsizetype AsyncReadPacket::SafeLength() const {
    RequireTerminator(*this);
    const QByteArrayView done(mBuffer.constData(), mBytesDone);
    // The longest beginning of the terminator with which the data ends may turn out to be its beginning.
    qsizetype begun = std::min(mTerminator.size() - 1, mBytesDone);
    while (!done.endsWith(QByteArrayView(mTerminator).first(begun))) {
        --begun;
    }
    const qsizetype length = mTerminator.size() - begun;
    return mMaxLength < 1 ? length : std::min(length, mMaxLength - mBytesDone);
}

bool AsyncReadPacket::EndsWithTerminator() const {
    RequireTerminator(*this);
    return QByteArrayView(mBuffer.constData(), mBytesDone).endsWith(mTerminator);
}

qsizetype AsyncReadPacket::CountPastTerminator(qsizetype zNewCount) const {
    RequireTerminator(*this);
    const QByteArrayView done(mBuffer.constData(), mBytesDone);
    const qsizetype start = std::max<qsizetype>(0, mBytesDone - zNewCount - mTerminator.size() + 1);
    const qsizetype found = done.indexOf(mTerminator, start);
    return found < 0 ? -1 : mBytesDone - found - mTerminator.size();
}
