#pragma once

#include <string>

/// What is remembered between runs, kept in a small XML file in the documents folder. A file that is
/// missing or cannot be understood gives the defaults, and one that cannot be written stays as it was.
class cSettings {
public:
    /// The defaults, with the file path of the user; reads nothing.
    cSettings();

    /// Reads the file into the fields; a field that the file does not mention keeps its value. False when
    /// there is no such file or no element in it; a malformed one counts as a file of defaults.
    bool Load();

    /// Writes the file. It takes the place of the old one in one step, and only when it is complete.
    bool Save() const;

    /// Whether the last connection used a found device rather than a typed address.
    bool ConnectionAuto = true;
    std::string RecentDeviceName;
    /// IPv4 address of the last device.
    std::string RecentDeviceIP;
    /// Folders in which the choosers open; empty for the place that they choose themselves.
    std::string RecentUploadPath;
    std::string RecentDownloadPath;
    /// Full path of the settings file.
    std::string FilePath;
};

/// The settings of this run, loaded on the first call.
cSettings& GetSettings();
