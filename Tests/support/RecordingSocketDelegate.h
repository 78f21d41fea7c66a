#pragma once

#include "AsyncSocket.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

/// Writes down the callbacks of sockets, one line for each, and runs a hook after each.
class RecordingSocketDelegate : public AsyncSocketDelegate {
public:
    std::vector<std::string> mLines;
    QByteArray mData; ///< of all reads
    std::optional<SocketError> mError;
    bool mWillConnect = true;
    std::function<void(const std::string& line)> mHook;

    bool Has(const std::string& line) const { return std::ranges::count(mLines, line) > 0; }

    bool onSocketWillConnect(AsyncSocket& /*socket*/) override {
        Record("will connect");
        return mWillConnect;
    }

    void onSocketDidConnectToHost(AsyncSocket& /*socket*/, const std::string& host,
                                  std::uint16_t /*port*/) override {
        Record("connected to " + host);
    }

    void onSocketDidReadData(AsyncSocket& /*socket*/, const QByteArray& data, long tag) override {
        mData += data;
        Record("read " + (data.size() < 40 ? data.toStdString() : std::to_string(data.size()) + " bytes") +
               " #" + std::to_string(tag));
    }

    void onSocketDidReadPartialDataOfLength(AsyncSocket& /*socket*/, qsizetype length, long tag) override {
        Record("partial " + std::to_string(length) + " #" + std::to_string(tag));
    }

    void onSocketDidWriteDataWithTag(AsyncSocket& /*socket*/, long tag) override {
        Record("written #" + std::to_string(tag));
    }

    void onSocketWillDisconnectWithError(AsyncSocket& /*socket*/,
                                         const std::optional<SocketError>& error) override {
        mError = error;
        Record("will disconnect" + (error ? " " + error->domain + " " + std::to_string(error->code) : ""));
    }

    void onSocketDidDisconnect(AsyncSocket& /*socket*/) override { Record("disconnected"); }

private:
    void Record(const std::string& line) {
        mLines.push_back(line);
        if (mHook) {
            // The hook may replace itself, or destroy the socket.
            const auto hook = mHook;
            hook(line);
        }
    }
};
