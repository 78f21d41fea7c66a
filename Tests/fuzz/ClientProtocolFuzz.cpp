#include "Hermetic.h"
#include "ReceiveAdmission.h"
#include "RecordingClient.h"
#include <algorithm>
#include <array>

#include <cstdint>
#include <cstdlib>
#include <filesystem>

// The input is a sequence of records: one byte that says what the desktop does, the length of a piece (two
// bytes, low one first), and the piece, which the device then sends.

namespace {

const std::string kOldContent = "the old file";

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class Session {
public:
    explicit Session(const TestFolder& folder) : mFolder(folder), mLocalPath(folder.Write("a", kOldContent)) {
        mClient.Welcome("1.10");
    }

    ~Session() {
        mClient.Reset();
        Check(!std::filesystem::exists(mLocalPath + ".tmp"));
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Act(std::uint8_t action) {
        static constexpr std::array kActions{&Session::Listen,     &Session::Connect, &Session::List,
                                             &Session::ListNobody, &Session::Size,    &Session::Download,
                                             &Session::Reconnect};
        (this->*kActions[action % kActions.size()])();
    }

    void Receive(const char* data, int length) {
        const bool isDownload = mClient.GetState() == FTS_DOWNLOADING;
        mAdmission.Receive(data, length);
        Check(!isDownload || mClient.GetState() == FTS_IDLE || mFolder.Read("a") == kOldContent);
    }

private:
    void Listen() {}

    void Connect() {
        if (mClient.GetState() == FTS_IDLE) {
            mClient.Connect();
        }
    }

    void List() { mClient.GetDir("Music", &mList); }

    void ListNobody() {
        mClient.GetDir("Music", &mList);
        mClient.SetDirList(nullptr);
    }

    void Size() { mClient.GetDirRecurse("Music"); }

    void Download() {
        if (mClient.Download(mLocalPath, "Music", "a").empty()) {
            mFolder.Write("a", kOldContent);
        }
    }

    void Reconnect() {
        mClient.Reset();
        mAdmission.Clear();
    }

    const TestFolder& mFolder;
    std::string mLocalPath;
    RecordingClient mClient;
    cReceiveAdmission mAdmission{mClient};
    cDeviceDirList mList;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHead = 3;
    static const TestFolder folder;
    Session session(folder);
    while (size >= kHead) {
        session.Act(data[0]);
        const std::size_t length = std::min<std::size_t>(size - kHead, data[1] + 256U * data[2]);
        session.Receive(reinterpret_cast<const char*>(data + kHead), static_cast<int>(length));
        data += kHead + length;
        size -= kHead + length;
    }
    return 0;
}
