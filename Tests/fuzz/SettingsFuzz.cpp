#include "CommonUtils_OSX.h"
#include "Hermetic.h"
#include "Settings.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// The input is a settings file. What could be read of it can be written, and is found again.

namespace {

constexpr std::size_t kLongestWritten = 1023;

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

cSettings Loaded(const std::string& path) {
    cSettings settings;
    settings.FilePath = path;
    settings.Load();
    return settings;
}

/// Characters that there are not can be named in a file, but not written.
void CheckText(const std::string& again, const std::string& before) {
    Check(again == (before.size() > kLongestWritten ? "" : MakeValidUtf8(before)));
}

void CheckFoundAgain(const cSettings& settings) {
    Check(settings.Save());
    const cSettings again = Loaded(settings.FilePath);
    Check(again.ConnectionAuto == settings.ConnectionAuto);
    CheckText(again.RecentDeviceName, settings.RecentDeviceName);
    CheckText(again.RecentDeviceIP, settings.RecentDeviceIP);
    CheckText(again.RecentUploadPath, settings.RecentUploadPath);
    CheckText(again.RecentDownloadPath, settings.RecentDownloadPath);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const HermeticHome home;
    static const TestFolder folder;
    const std::string content(reinterpret_cast<const char*>(data), size);
    const cSettings settings = Loaded(folder.Write("Settings.xml", content));
    const std::size_t length = settings.RecentDeviceName.size() + settings.RecentDeviceIP.size() +
                               settings.RecentUploadPath.size() + settings.RecentDownloadPath.size();
    Check(length <= size);
    CheckFoundAgain(settings);
    return 0;
}
