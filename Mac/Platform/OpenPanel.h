#pragma once

#include <string>
#include <vector>

class QWidget;

/// What the user is asked to choose.
struct sOpenPanelRequest {
    std::string title = {};
    bool canChooseFiles = true;
    bool canChooseFolders = false; ///< taken only where files cannot be chosen
    bool canCreateFolders = false;
    bool allowsMultiple = false;
    std::vector<std::string> allowedTypes = {}; ///< extensions without a dot; none: every file
    std::string initialFolder = {};
};

/// Asks the user for local files or folders.
class OpenPanel {
public:
    virtual ~OpenPanel() = default;

    /// Blocks, pumping the event loop, until the user has answered. Full paths in UTF-8, in the order of the
    /// panel; empty when it was dismissed.
    virtual std::vector<std::string> Run(QWidget* zpParent, const sOpenPanelRequest& zrRequest) = 0;
};

/// The toolkit's file dialog.
class FileDialogPanel : public OpenPanel {
public:
    std::vector<std::string> Run(QWidget* zpParent, const sOpenPanelRequest& zrRequest) override;
};
