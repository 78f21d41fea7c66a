#include "TranslatedTexts.h"

#include <QtCore/QtGlobal>

#include <array>

namespace {

// lupdate does not follow `Translated`, and the rooms without the toolkit cannot mark their texts. So each
// source text that comes that way stands here once more; a test compares this file with the code.
[[maybe_unused]] constexpr auto kTexts = std::to_array<const char*>({
    // The main window
    QT_TRANSLATE_NOOP("Quillbox", "&Connect"),
    QT_TRANSLATE_NOOP("Quillbox", "Dis&connect"),
    QT_TRANSLATE_NOOP("Quillbox", "Finds devices and connects to one"),
    QT_TRANSLATE_NOOP("Quillbox", "Ends the connection to the device"),
    QT_TRANSLATE_NOOP("Quillbox", "What the folder of the device holds"),
    QT_TRANSLATE_NOOP("Quillbox", "Name"),
    QT_TRANSLATE_NOOP("Quillbox", "Type"),
    QT_TRANSLATE_NOOP("Quillbox", "Date Modified"),
    QT_TRANSLATE_NOOP("Quillbox", "Waveform"),
    QT_TRANSLATE_NOOP("Quillbox", "Folder"),
    //: The type of a file; its extension stands for %s.
    QT_TRANSLATE_NOOP("Quillbox", "%s file"),
    //: The type of a file without an extension; only the English one begins with a blank.
    QT_TRANSLATE_NOOP("Quillbox", " file"),
    QT_TRANSLATE_NOOP("Quillbox", "This folder is empty"),
    QT_TRANSLATE_NOOP("Quillbox", "The folder could not be listed. Press F5 to try again."),
    QT_TRANSLATE_NOOP("Quillbox", "Press Connect, then choose your device or type its address.\n"
                                  "The device and this computer must be on the same network."),
    QT_TRANSLATE_NOOP("Quillbox", "Press the 'Connect' button to begin"),
    QT_TRANSLATE_NOOP("Quillbox", "Searching for '%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Connected to '%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Connection has been closed"),
    QT_TRANSLATE_NOOP("Quillbox", "Waiting for operation to finish"),
    QT_TRANSLATE_NOOP("Quillbox", "Reading Folder Contents"),
    QT_TRANSLATE_NOOP("Quillbox", "Browses your device on the network and copies files both ways."),
    QT_TRANSLATE_NOOP("Quillbox", "Diagnostics copied"),
    QT_TRANSLATE_NOOP(
        "Quillbox",
        "Paste them where you ask for help. They say which versions and which system you use, and "
        "hold the last lines of the log, in which names of devices and files and network addresses may "
        "appear."),
    QT_TRANSLATE_NOOP("Quillbox", "The user guide cannot be shown"),
    QT_TRANSLATE_NOOP("Quillbox", "It was not found. Installing Quillbox again brings it back."),
    QT_TRANSLATE_NOOP("Quillbox", "No web browser could be started. The guide is the file '%s'."),

    // The selection of a device
    QT_TRANSLATE_NOOP("Quillbox",
                      "Looking for devices. If yours does not appear, check that it is on the same "
                      "network, that its file server is on, and that this computer's firewall lets "
                      "UDP port 10245 in."),
    QT_TRANSLATE_NOOP("Quillbox",
                      "Devices cannot be looked for at the moment. Check the network connection and "
                      "press Refresh."),
    QT_TRANSLATE_NOOP("Quillbox", "Devices cannot be looked for at the moment. Check the network connection, "
                                  "choose \"Use found device\" and press Refresh."),
    QT_TRANSLATE_NOOP("Quillbox", "New devices were found. Press Refresh to see them."),
    QT_TRANSLATE_NOOP("Quillbox",
                      "New devices were found. To see them, choose \"Use found device\" and press Refresh."),
    QT_TRANSLATE_NOOP("Quillbox", "New devices were found"),
    QT_TRANSLATE_NOOP("Quillbox", "No devices were found"),
    QT_TRANSLATE_NOOP("Quillbox", "Do you wish to try manually entering an IP address?"),

    // Buttons and titles of prompts
    QT_TRANSLATE_NOOP("Quillbox", "OK"),
    QT_TRANSLATE_NOOP("Quillbox", "Cancel"),
    QT_TRANSLATE_NOOP("Quillbox", "Yes"),
    QT_TRANSLATE_NOOP("Quillbox", "No"),
    //: The kind of files to choose among; their extensions follow in parentheses.
    QT_TRANSLATE_NOOP("Quillbox", "Files"),
    QT_TRANSLATE_NOOP("Quillbox", "Copy Folder"),
    QT_TRANSLATE_NOOP("Quillbox", "Copy File"),
    QT_TRANSLATE_NOOP("Quillbox", "A folder with the name '%s' already exists."),
    QT_TRANSLATE_NOOP("Quillbox", "A file with the name '%s' already exists."),
    QT_TRANSLATE_NOOP("Quillbox",
                      "Any files in the destination folder with the same name as those in the source "
                      "folder will be replaced.  Do you still want to copy the folder?"),
    QT_TRANSLATE_NOOP("Quillbox", "Do you want to replace it?"),

    //: What something is called, and what went wrong with it.
    QT_TRANSLATE_NOOP("Quillbox", "%s - %s"),

    // Download
    QT_TRANSLATE_NOOP("Quillbox", "No files selected"),
    QT_TRANSLATE_NOOP("Quillbox", "Please select the files you wish to download"),
    QT_TRANSLATE_NOOP("Quillbox", "Choose file download destination folder"),
    QT_TRANSLATE_NOOP("Quillbox", "Downloading to '%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Download failed"),
    QT_TRANSLATE_NOOP("Quillbox", "Path too long"),
    QT_TRANSLATE_NOOP("Quillbox", "Could not open file"),
    QT_TRANSLATE_NOOP("Quillbox", "Too many files"),

    // Upload
    QT_TRANSLATE_NOOP("Quillbox", "Upload files to '%s:/%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Upload a folder to '%s:/%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Uploading files"),
    QT_TRANSLATE_NOOP("Quillbox", "Upload failed"),
    QT_TRANSLATE_NOOP("Quillbox", "File convert failed"),
    QT_TRANSLATE_NOOP("Quillbox", "Not a name for a device"),
    QT_TRANSLATE_NOOP("Quillbox", "File drop failed"),
    QT_TRANSLATE_NOOP("Quillbox", "This folder is read only."),

    // Delete and Create Folder
    QT_TRANSLATE_NOOP("Quillbox", "Delete files"),
    QT_TRANSLATE_NOOP("Quillbox", "Please select the files you wish to delete"),
    QT_TRANSLATE_NOOP("Quillbox",
                      "Are you sure you want to delete this folder from '%s:/%s'?  This operation "
                      "cannot be undone."),
    QT_TRANSLATE_NOOP("Quillbox", "Are you sure you want to delete this file from '%s:/%s'?  This operation "
                                  "cannot be undone."),
    QT_TRANSLATE_NOOP("Quillbox", "Are you sure you want to delete %d files from '%s:/%s'?  This operation "
                                  "cannot be undone."),
    QT_TRANSLATE_NOOP("Quillbox", "Deleting files"),
    QT_TRANSLATE_NOOP("Quillbox", "File %d of %d"),
    QT_TRANSLATE_NOOP("Quillbox", "Delete failed"),
    QT_TRANSLATE_NOOP("Quillbox", "Creating Folder"),
    QT_TRANSLATE_NOOP("Quillbox", "Create Folder Failed"),
    QT_TRANSLATE_NOOP("Quillbox", "'%s' is not a valid folder name."),
    QT_TRANSLATE_NOOP("Quillbox", "File already exists"),
    QT_TRANSLATE_NOOP("Quillbox", "A file or folder called '%s' already exists.  Please try another name."),

    // The protocol client
    QT_TRANSLATE_NOOP("Quillbox", "Couldn't read file"),
    QT_TRANSLATE_NOOP("Quillbox", "File too large"),
    QT_TRANSLATE_NOOP("Quillbox", "File zero size"),
    QT_TRANSLATE_NOOP("Quillbox", "Receive buffer overflow"),
    QT_TRANSLATE_NOOP("Quillbox", "Device sent more data than announced"),

    // The connection
    QT_TRANSLATE_NOOP("Quillbox", "AsyncSocket couldn't determine IP version of socket"),

    // The system, which speaks English where its own language for the locale is not installed
    QT_TRANSLATE_NOOP("Quillbox", "Connection refused"),
    QT_TRANSLATE_NOOP("Quillbox", "No route to host"),
    QT_TRANSLATE_NOOP("Quillbox", "Network is unreachable"),
    QT_TRANSLATE_NOOP("Quillbox", "Network is down"),
    QT_TRANSLATE_NOOP("Quillbox", "Host is down"),
    QT_TRANSLATE_NOOP("Quillbox", "Connection timed out"),
    QT_TRANSLATE_NOOP("Quillbox", "Connection reset by peer"),
    QT_TRANSLATE_NOOP("Quillbox", "Software caused connection abort"),
    QT_TRANSLATE_NOOP("Quillbox", "Broken pipe"),
    QT_TRANSLATE_NOOP("Quillbox", "Permission denied"),
    QT_TRANSLATE_NOOP("Quillbox", "Operation not permitted"),
    QT_TRANSLATE_NOOP("Quillbox", "Cannot assign requested address"),
    QT_TRANSLATE_NOOP("Quillbox", "Invalid argument"),
    QT_TRANSLATE_NOOP("Quillbox", "Too many open files"),
    QT_TRANSLATE_NOOP("Quillbox", "Too many open files in system"),
    QT_TRANSLATE_NOOP("Quillbox", "Name or service not known"),
    QT_TRANSLATE_NOOP("Quillbox", "No address associated with hostname"),
    QT_TRANSLATE_NOOP("Quillbox", "Temporary failure in name resolution"),
    QT_TRANSLATE_NOOP("Quillbox", "Non-recoverable failure in name resolution"),
});

// The toolkit's words for kinds of files in its file chooser. Its French catalogue lacks them; where its
// catalogue has them, that one counts, for it is asked first.
[[maybe_unused]] constexpr auto kToolkitTexts = std::to_array<const char*>({
    QT_TRANSLATE_NOOP("QAbstractFileIconProvider", "Drive"),
    QT_TRANSLATE_NOOP("QAbstractFileIconProvider", "Folder"),
    QT_TRANSLATE_NOOP("QAbstractFileIconProvider", "Shortcut"),
    QT_TRANSLATE_NOOP("QAbstractFileIconProvider", "Unknown"),
});

constexpr auto kTextsAroundNames = std::to_array<const char*>({
    QT_TRANSLATE_NOOP("Quillbox", "%s too large to download"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - failed to write file"),
    QT_TRANSLATE_NOOP("Quillbox", "Couldn't open file '%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "Couldn't read file '%s'"),
    QT_TRANSLATE_NOOP("Quillbox", "'%s' is empty"),
    QT_TRANSLATE_NOOP("Quillbox", "'%s' - couldn't open as an audio file."),
    QT_TRANSLATE_NOOP("Quillbox", "'%s' - too many channels."),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Couldn't open file"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Couldn't read file. Check that it is uncompressed PCM"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Only mono and stereo files are supported"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Only sample rates up to 48000 are supported"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Only 8 or 16 bit samples are supported"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Couldn't open wav file for writing"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Couldn't open audio file for output"),
    QT_TRANSLATE_NOOP("Quillbox", "%s - Couldn't write wav file"),
});

} // namespace

std::span<const char* const> TextsAroundNames() {
    return kTextsAroundNames;
}
