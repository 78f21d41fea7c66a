#include "ThemeIcon.h"

#include "WidgetText.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr std::array kButtonIcons = {"network-connect", "network-disconnect", "go-up",        "folder-new",
                                     "edit-delete",     "document-send",      "document-save"};

bool ThemeHas(const std::string& zName) {
    return QIcon::hasThemeIcon(QString::fromStdString(zName));
}

bool IsTakenFromTheme(const std::string& zName) {
    return std::ranges::find(kButtonIcons, zName) == kButtonIcons.end()
               ? ThemeHas(zName)
               : std::ranges::all_of(kButtonIcons, ThemeHas);
}

QIcon OwnIcon(const std::string& zName) {
    const QString file = QStringLiteral(":/quillbox/%1.svg").arg(QString::fromStdString(zName));
    QIcon icon(file);
    icon.addFile(file, {}, QIcon::Selected); // or it would be tinted like what it lies on
    return icon;
}

} // namespace

QIcon ThemeIcon(const std::string& zName) {
    return IsTakenFromTheme(zName) ? QIcon::fromTheme(QString::fromStdString(zName)) : OwnIcon(zName);
}

std::string IconNameForExtension(const std::string& zExtension) {
    constexpr const char* kSound = "audio-x-generic";
    constexpr const char* kImage = "image-x-generic";
    constexpr const char* kText = "text-x-generic";
    constexpr const char* kVideo = "video-x-generic";
    constexpr const char* kArchive = "package-x-generic";
    static const std::map<QString, const char*> kNames = {
        {"wav", kSound},   {"aif", kSound},  {"aiff", kSound},  {"aifc", kSound}, {"mp3", kSound},
        {"flac", kSound},  {"ogg", kSound},  {"opus", kSound},  {"m4a", kSound},  {"mid", kSound},
        {"jpg", kImage},   {"jpeg", kImage}, {"png", kImage},   {"gif", kImage},  {"bmp", kImage},
        {"svg", kImage},   {"txt", kText},   {"md", kText},     {"log", kText},   {"csv", kText},
        {"xml", kText},    {"json", kText},  {"ini", kText},    {"mp4", kVideo},  {"mov", kVideo},
        {"avi", kVideo},   {"mkv", kVideo},  {"zip", kArchive}, {"gz", kArchive}, {"tgz", kArchive},
        {"tar", kArchive}, {"7z", kArchive}};
    const auto name = kNames.find(ToWidgetText(zExtension).toLower());
    return name == kNames.end() ? "application-octet-stream" : name->second;
}
