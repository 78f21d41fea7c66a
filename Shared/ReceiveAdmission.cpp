#include "ReceiveAdmission.h"

#include <algorithm>

namespace {

// The reply limit counts the last piece twice, so that large pieces would refuse ordinary listings.
constexpr int kTextPiece = 4096;
constexpr int kLengthPrefix = 4;

} // namespace

cReceiveAdmission::cReceiveAdmission(cClientProtocol& zrClient) : mrClient(zrClient) {}

void cReceiveAdmission::Clear() {
    mLengthPrefix.clear();
    mDownloadEnded = false;
}

void cReceiveAdmission::Receive(const char* zpData, int zLength) {
    while (zLength > 0 && !IsDiscarding()) {
        int taken = 0;
        if (mrClient.IsAwaitingLength()) {
            taken = ReceiveLength(zpData, zLength);
        } else if (mrClient.GetState() == FTS_DOWNLOADING) {
            taken = ReceiveBody(zpData, zLength);
        } else {
            taken = ReceiveText(zpData, zLength);
        }
        zpData += taken;
        zLength -= taken;
    }
}

int cReceiveAdmission::ReceiveText(const char* zpData, int zLength) {
    const int length = std::min(zLength, kTextPiece);
    if (mrClient.IsListingUnclaimed()) {
        mUnclaimedList.mFile.clear();
        mrClient.SetDirList(&mUnclaimedList);
    }
    mrClient.OnReceive(zpData, length);
    return length;
}

int cReceiveAdmission::ReceiveLength(const char* zpData, int zLength) {
    const int length = std::min(zLength, kLengthPrefix - static_cast<int>(mLengthPrefix.size()));
    mLengthPrefix.append(zpData, static_cast<std::size_t>(length));
    if (mLengthPrefix.size() == kLengthPrefix) {
        mrClient.OnReceive(mLengthPrefix.data(), kLengthPrefix);
        mLengthPrefix.clear();
        mDownloadEnded = mrClient.GetState() != FTS_DOWNLOADING;
    }
    return length;
}

int cReceiveAdmission::ReceiveBody(const char* zpData, int zLength) {
    if (static_cast<std::uint32_t>(zLength) > mrClient.GetBytesAwaited()) {
        mrClient.Abort("Device sent more data than announced");
    } else {
        mrClient.OnReceive(zpData, zLength);
    }
    mDownloadEnded = mrClient.GetState() != FTS_DOWNLOADING;
    return zLength;
}

/// What follows a download that has ended belongs to nothing, until the next operation has begun.
bool cReceiveAdmission::IsDiscarding() {
    const eClientState state = mrClient.GetState();
    mDownloadEnded = mDownloadEnded && (state == FTS_IDLE || state == FTS_ERROR);
    return mDownloadEnded;
}
