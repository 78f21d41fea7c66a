#include "AudioConversion.h"
#include "CommonUtils_OSX.h"
#include "Hermetic.h"
#include "RiffBytes.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

// The first byte of the input chooses the extension and the readers, the rest is the file.

namespace {

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// Folders of this process, removed at its end; what the conversions print goes nowhere.
const TestFolder& Folder() {
    static const HermeticHome home;
    static const TestFolder folder;
    static const bool isQuiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    Check(isQuiet);
    return folder;
}

unsigned Number(const std::string& bytes, std::size_t place, std::size_t width) {
    unsigned number = 0;
    for (std::size_t i = width; i-- > 0;) {
        number = number * 256 + static_cast<std::uint8_t>(bytes.at(place + i));
    }
    return number;
}

void CheckWave(const std::string& file) {
    constexpr std::size_t kHeader = 44;
    Check(file.size() >= kHeader);
    const unsigned channels = Number(file, 22, 2);
    const unsigned rate = Number(file, 24, 4);
    Check((channels == 1 || channels == 2) && rate <= 48000);
    Check((file.size() - kHeader) % (2 * channels) == 0);
    Check(file == WaveBytes({1, channels, rate, 16}, file.substr(kHeader)));
}

/// Whether the conversion came to an end of its own; the other readers may give up with a text.
bool Convert(cAudioConversion& conversion) {
    try {
        Check(conversion.ConvertForUpload());
        return true;
    } catch (const char* text) {
        Check(conversion.useOwnReaders && std::string(text).starts_with("cReadAIFF: "));
        return false;
    }
}

void CheckOutcome(const cAudioConversion& conversion, const std::string& content) {
    if (conversion.converted) {
        Check(conversion.message.empty() && conversion.deviceName == "a.wav");
        CheckWave(Folder().Read(conversion.outputPath));
    } else {
        Check(conversion.outputPath == conversion.sourcePath && !conversion.message.empty());
        Check(conversion.outputSize == content.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    constexpr std::array<const char*, 3> kNames = {"a.wav", "a.aif", "a.aifc"};
    const bool useOwnReaders = (data[0] & 4U) != 0 && data[0] % 4U < 2;
    const std::string content(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string source = Folder().Write(kNames.at(data[0] % 4U % kNames.size()), content);
    {
        cAudioConversion conversion(source, useOwnReaders);
        if (Convert(conversion)) {
            CheckOutcome(conversion, content);
        }
    }
    Check(std::filesystem::is_empty(GetTempFolder()));
    Check(Folder().Read(source) == content);
    return 0;
}
