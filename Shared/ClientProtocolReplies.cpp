#include "ClientProtocol.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr const char* kSource = "Shared/ClientProtocol";
constexpr std::size_t kReplyLimit = 524288;
constexpr std::string_view kBlanks = " \t\n\v\f\r";

struct sRight {
    char mLetter;
    std::int32_t mFlag;
};

// In the order of the letters in the text.
constexpr std::array kRights{sRight{'c', kRightCreate}, sRight{'d', kRightDelete},
                             sRight{'r', kRightReadOnly}};

template <class Limit, class Value>
Limit Saturate(Value zValue) {
    using Limits = std::numeric_limits<Limit>;
    return static_cast<Limit>(
        std::clamp(zValue, static_cast<Value>(Limits::min()), static_cast<Value>(Limits::max())));
}

/// "1.10" to 110. Unlike atof it reads a decimal point in every locale; what is no finite number gives 0.
std::int32_t ParseVersion(std::string_view zText) {
    zText.remove_prefix(std::min(zText.find_first_not_of(kBlanks), zText.size()));
    if (zText.starts_with('+') && !zText.starts_with("+-")) {
        zText.remove_prefix(1);
    }
    double version = 0;
    std::from_chars(zText.data(), zText.data() + zText.size(), version);
    return std::isfinite(version) ? Saturate<std::int32_t>(version * 100.0 + 0.5) : 0;
}

cClientProtocol::cDeviceFileInfo ParseEntry(std::string_view zText) {
    cClientProtocol::cDeviceFileInfo info;
    std::string text;
    GetValue(zText, "Name", info.mName);
    GetValue(zText, "Type", text);
    info.mIsFolder = SameTextNoCase(text, "Dir");
    GetValue(zText, "Date", info.mDate);
    GetIntValue(zText, "Size", info.mSize);
    GetValue(zText, "Rights", text);
    info.mRights = ParseRights(text);
    return info;
}

} // namespace

struct cClientProtocol::sReply {
    eClientState mState;
    std::string_view mOpening;
    std::string_view mClosing;
    void (cClientProtocol::*mParse)(std::string_view zText);
};

std::int32_t ParseRights(std::string_view zText) {
    std::int32_t rights = 0;
    if (zText.size() < kRights.size()) {
        return rights;
    }
    for (std::size_t index = 0; index < kRights.size(); ++index) {
        rights |= zText[index] == kRights[index].mLetter ? kRights[index].mFlag : 0;
    }
    return rights;
}

bool GetValue(std::string_view zText, std::string_view zKey, std::string& zrOut) {
    zrOut.clear();
    // A missing key wraps to 0, the start of the text.
    const std::size_t opening = zText.find('"', zText.find(zKey) + 1);
    if (opening != std::string_view::npos) {
        const std::string_view rest = zText.substr(opening + 1);
        zrOut = rest.substr(0, rest.find('"'));
    }
    return true;
}

bool GetIntValue(std::string_view zText, std::string_view zKey, std::int32_t& zrOut) {
    long value = 0;
    GetLongValue(zText, zKey, value);
    zrOut = static_cast<std::int32_t>(value); // modulo 2^32, as atoi does here
    return true;
}

bool GetLongValue(std::string_view zText, std::string_view zKey, long& zrOut) {
    std::string value;
    GetValue(zText, zKey, value);
    zrOut = std::strtol(value.c_str(), nullptr, 10);
    return true;
}

void cClientProtocol::ReceiveText(const char* zpData, std::size_t zLength) {
    static constexpr std::array kReplies{
        sReply{FTS_WELCOME, "<welcome>", "</welcome>", &cClientProtocol::ParseWelcome},
        sReply{FTS_WAIT_DIR, "<dir>", "</dir>", &cClientProtocol::ParseDir},
        sReply{FTS_WAIT_DIR_RECURSE, "<dir_recurse>", "</dir_recurse>", &cClientProtocol::ParseDirRecurse}};

    mReceiveBuffer.append(zpData, zLength);
    if (zLength + mReceiveBuffer.size() >= kReplyLimit) {
        Abort("Receive buffer overflow");
        return;
    }
    const auto isAwaited = [this](const sReply& zReply) { return zReply.mState == mState; };
    const auto* const reply = std::find_if(kReplies.begin(), kReplies.end(), isAwaited);
    if (reply == kReplies.end() || !IsComplete(reply->mClosing)) {
        return;
    }
    if (ParseReply(*reply)) {
        EndOperation(false);
    } else {
        Abort("");
    }
}

/// Whether mReceiveBuffer holds zClosing. Looks only where the tag may have come in since the last look, so
/// that a long reply in many pieces stays cheap.
bool cClientProtocol::IsComplete(std::string_view zClosing) {
    if (mReceiveBuffer.find(zClosing, mSearchedLength) != std::string::npos) {
        return true;
    }
    mSearchedLength = mReceiveBuffer.size() - std::min(mReceiveBuffer.size(), zClosing.size() - 1);
    return false;
}

/// Hands the text from the opening tag to the last closing tag to the reply's parser; false if there is none.
bool cClientProtocol::ParseReply(const sReply& zReply) {
    const std::size_t opening = mReceiveBuffer.find(zReply.mOpening);
    const std::size_t closing = mReceiveBuffer.rfind(zReply.mClosing);
    if (closing == std::string::npos || opening > closing) {
        return false;
    }
    (this->*zReply.mParse)(std::string_view(mReceiveBuffer).substr(opening, closing - opening));
    return true;
}

void cClientProtocol::ParseWelcome(std::string_view zText) {
    GetValue(zText, "Name", mDeviceName);
    mHasDeviceName = !mDeviceName.empty() && zText.find("Name") != std::string_view::npos;
    GetValue(zText, "Version", mVersionStr);
    GetValue(zText, "ID", mDeviceID);
    mVersion = ParseVersion(mVersionStr);
}

void cClientProtocol::ParseDir(std::string_view zText) {
    Require(mpDirList != nullptr, kSource, "mpDirList != NULL");
    constexpr std::size_t kTagLength = std::string_view("<dir>").size();
    std::string rights;
    GetValue(zText.substr(kTagLength), "Rights", rights);
    mDirRights = ParseRights(rights);
    mpDirList->mDir = mDirPath;

    // Devices put a character between the tag and the first entry; one that does not loses that entry.
    std::size_t begin = zText.find('<', kTagLength + 1);
    std::size_t end = zText.find('>', begin);
    while (begin != std::string_view::npos && end != std::string_view::npos) {
        mpDirList->mFile.push_back(ParseEntry(zText.substr(begin + 1, end - begin - 1)));
        begin = zText.find('<', end + 1);
        end = zText.find('>', begin);
    }
}

void cClientProtocol::ParseDirRecurse(std::string_view zText) {
    constexpr std::int32_t kMegabyte = 1048576;
    long size = 0;
    GetLongValue(zText, "Size", size);
    mDirRecurseSize = static_cast<std::int32_t>(size);
    GetIntValue(zText, "NumFiles", mDirRecurseNumFiles);
    DebugPrintf("Dir Size = %dMB\n", mDirRecurseSize / kMegabyte);
}
