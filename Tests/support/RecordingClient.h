#pragma once

#include "ClientProtocol.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

/// A client whose connection is a text: it keeps what was sent and can accept less than it is given.
class RecordingClient : public cClientProtocol {
public:
    static constexpr int kEverything = std::numeric_limits<int>::max();

    int Send(const char* zpData, int zLength) override {
        ++mCalls;
        const int accepted = std::min(zLength, mAccepted);
        mSent.append(zpData, static_cast<std::size_t>(std::max(accepted, 0)));
        return accepted;
    }

    /// One received piece; an empty one is not passed on.
    void Feed(std::string_view zBytes) {
        if (!zBytes.empty()) {
            OnReceive(zBytes.data(), static_cast<int>(zBytes.size()));
        }
    }

    /// Goes through the welcome of a device of this version.
    void Welcome(const std::string& zVersion) {
        Connect();
        Feed(R"(<welcome>Name = "Recorder" Version = ")" + zVersion + R"(" ID = "0042"</welcome>)");
    }

    std::string mSent;
    int mCalls = 0;
    int mAccepted = kEverything; ///< what each call of Send accepts at most
};

/// One line for each entry: name|date|dir or file|size|rights.
inline std::string Describe(const cDeviceDirList& zList) {
    std::string text;
    for (const cClientProtocol::cDeviceFileInfo& info : zList.mFile) {
        text += info.mName + "|" + info.mDate + (info.mIsFolder ? "|dir|" : "|file|") +
                std::to_string(info.mSize) + "|" + std::to_string(info.mRights) + "\n";
    }
    return text;
}

/// The length prefix of a download body.
inline std::string LengthPrefix(std::uint32_t zLength) {
    std::string prefix;
    for (int shift = 0; shift < 32; shift += 8) {
        prefix += static_cast<char>(zLength >> shift & 0xFF);
    }
    return prefix;
}

/// Calls zFeed(piece) for the pieces of zBytes, each of at most zPiece bytes.
template <class Feed>
void FeedInPieces(std::string_view zBytes, std::size_t zPiece, Feed zFeed) {
    while (!zBytes.empty()) {
        zFeed(zBytes.substr(0, zPiece));
        zBytes.remove_prefix(std::min(zPiece, zBytes.size()));
    }
}
