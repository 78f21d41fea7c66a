#include "Hermetic.h"
#include "ReceiveAdmission.h"
#include "RecordingClient.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

// The input is one byte, from which the lengths of the pieces follow, and what a device sends as a file. What
// becomes of the local file is worked out once more here, in the simplest way.

namespace {

const std::string kOldContent = "the old file";
constexpr std::size_t kPrefix = 4;
constexpr std::uint32_t kLargest = 1U << 30;

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::uint32_t AnnouncedLength(const std::string& stream) {
    std::uint32_t length = 0;
    for (std::size_t index = kPrefix; index-- > 0;) {
        length = length << 8 | static_cast<unsigned char>(stream[index]);
    }
    return length;
}

/// What should have come of a download of which so much was received, piece after piece.
struct sExpected {
    eClientState state = FTS_DOWNLOADING;
    std::string error = {};
    std::string content = kOldContent;

    void Receive(const std::string& path, const std::string& stream, std::size_t received) {
        if (state != FTS_DOWNLOADING || received < kPrefix) {
            return;
        }
        const std::uint32_t length = AnnouncedLength(stream);
        const std::size_t body = received - kPrefix;
        if (length == 0) {
            state = FTS_IDLE;
        } else if (length > kLargest) {
            Fail(path + " too large to download");
        } else if (body == length) {
            state = FTS_IDLE;
            content = stream.substr(kPrefix, length);
        } else if (body > length) {
            Fail("Device sent more data than announced");
        }
    }

    void Fail(const std::string& text) {
        state = FTS_ERROR;
        error = text;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    static const TestFolder folder;
    const std::string path = folder.Write("a", kOldContent);
    const std::string stream(reinterpret_cast<const char*>(data + 1), size - 1);
    RecordingClient client;
    client.Welcome("1.10");
    cReceiveAdmission admission(client);
    Check(client.Download(path, "", "a").empty());

    sExpected expected;
    std::size_t piece = data[0];
    for (std::size_t received = 0; received < stream.size();) {
        piece = piece * 5 % 257 + 1;
        const std::size_t length = std::min(piece, stream.size() - received);
        admission.Receive(stream.data() + received, static_cast<int>(length));
        received += length;
        expected.Receive(path, stream, received);
        Check(client.GetState() == expected.state && client.GetErrorStr() == expected.error);
        Check(folder.Read("a") == expected.content);
        Check(std::filesystem::exists(path + ".tmp") == (expected.state == FTS_DOWNLOADING));
    }
    client.Reset();
    Check(folder.Read("a") == expected.content && !std::filesystem::exists(path + ".tmp"));
    return 0;
}
