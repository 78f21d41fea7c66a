#include "Settings.h"

#include "CommonUtils_OSX.h"

#include <tinyxml.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace {

constexpr const char* kRootElement = "Quillbox";
constexpr const char* kSettingsElement = "Settings";
constexpr const char* kConnectionAuto = "ConnectionAuto";

struct sTextField {
    const char* attribute;
    std::string cSettings::*field;
};

constexpr std::array<sTextField, 4> kTextFields = {{
    {"RecentDeviceName", &cSettings::RecentDeviceName},
    {"RecentDeviceIP", &cSettings::RecentDeviceIP},
    {"RecentUploadPath", &cSettings::RecentUploadPath},
    {"RecentDownloadPath", &cSettings::RecentDownloadPath},
}};

constexpr std::size_t kLargestFile = std::size_t{1024} * 1024;

// The parser calls itself for each element in another and compares each attribute with all before it.
constexpr std::ptrdiff_t kMostTagsAndAttributes = 4200;

// All fields together hold fewer of these marks than that. No path that can be opened is longer.
constexpr std::size_t kLongestText = 1023;

struct sCloseFile {
    void operator()(std::FILE* zpStream) const { static_cast<void>(std::fclose(zpStream)); }
};

using tStream = std::unique_ptr<std::FILE, sCloseFile>;

/// At most one byte more than a settings file may have.
std::string ReadText(std::FILE* zpStream) {
    std::string text(kLargestFile + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), zpStream));
    return text;
}

/// The parser trusts its input: it runs past the end of a text that is cut within a character, and deep
/// nesting exhausts the stack. Only what could be a settings file is given to it.
bool IsFitForParser(const std::string& zText) {
    const auto marks = std::count_if(zText.begin(), zText.end(), [](char c) { return c == '<' || c == '='; });
    return zText.size() <= kLargestFile && marks <= kMostTagsAndAttributes &&
           zText.find('\0') == std::string::npos && zText == MakeValidUtf8(zText);
}

bool Parse(std::FILE* zpStream, TiXmlDocument& zrDocument) {
    if (!IsFitForParser(ReadText(zpStream))) {
        return false;
    }
    std::rewind(zpStream);
    return zrDocument.LoadFile(zpStream);
}

void ReadFields(const TiXmlElement& zElement, cSettings& zrSettings) {
    if (const char* const text = zElement.Attribute(kConnectionAuto)) {
        zrSettings.ConnectionAuto = SameTextNoCase(text, "true");
    }
    for (const sTextField& entry : kTextFields) {
        if (const char* const text = zElement.Attribute(entry.attribute)) {
            zrSettings.*entry.field = text;
        }
    }
}

TiXmlElement FieldsElement(const cSettings& zSettings) {
    TiXmlElement element(kSettingsElement);
    element.SetAttribute(kConnectionAuto, zSettings.ConnectionAuto ? "true" : "false");
    for (const sTextField& entry : kTextFields) {
        // A device chooses its own name; an endless one or ill-formed bytes would make the file unreadable.
        const std::string& text = zSettings.*entry.field;
        element.SetAttribute(entry.attribute, text.size() > kLongestText ? "" : MakeValidUtf8(text).c_str());
    }
    return element;
}

bool WriteDocument(const cSettings& zSettings, std::FILE* zpStream) {
    TiXmlElement root(kRootElement);
    root.InsertEndChild(TiXmlComment(" Settings "));
    root.InsertEndChild(FieldsElement(zSettings));
    TiXmlDocument document;
    document.InsertEndChild(TiXmlDeclaration("1.0", "", ""));
    document.InsertEndChild(root);
    return document.SaveFile(zpStream);
}

/// Where the file really is: users keep such files in other places and link to them.
std::string ResolveLinks(const std::string& zPath) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(zPath, error);
    return error ? zPath : resolved.string();
}

} // namespace

cSettings::cSettings() : FilePath(GetDocumentsFolder() + "/Settings.xml") {}

bool cSettings::Load() {
    const tStream stream(OpenRegularFile(FilePath));
    if (stream == nullptr) {
        return false;
    }
    TiXmlDocument document;
    if (!Parse(stream.get(), document)) {
        return true;
    }
    const TiXmlElement* const root = document.FirstChildElement();
    if (root == nullptr) {
        return false;
    }
    if (const TiXmlElement* const element = root->FirstChildElement(kSettingsElement)) {
        ReadFields(*element, *this);
    }
    return true;
}

bool cSettings::Save() const {
    const std::string path = ResolveLinks(FilePath);
    std::error_code error;
    if (std::filesystem::exists(path, error) && !IsRegularFile(path)) {
        return false;
    }
    std::string temporary = path + ".XXXXXX";
    const int descriptor = ::mkstemp(temporary.data());
    std::FILE* const stream = descriptor == -1 ? nullptr : ::fdopen(descriptor, "w");
    if (stream == nullptr) {
        return false;
    }
    const bool written = WriteDocument(*this, stream);
    const bool closed = std::fclose(stream) == 0;
    if (written && closed && RenameFile(temporary, path)) {
        return true;
    }
    static_cast<void>(std::remove(temporary.c_str()));
    return false;
}

cSettings& GetSettings() {
    static cSettings settings = [] {
        cSettings loaded;
        loaded.Load();
        return loaded;
    }();
    return settings;
}
