#pragma once

#include <QtGui/QDrag>

#include <functional>
#include <string>

class QWidget;

/// A drag of files that do not exist yet. The target tells where it wants them by one of two ways: direct
/// save (on X11) or an archive's extraction offer (where there is a session bus). The files themselves are
/// not offered, since targets would fetch them while the drag still hovers.
class PromisedFileDrag {
public:
    using OnDestination = std::function<void(const std::string& zFolder)>;

    /// Runs the toolkit's drag until the button was released.
    using Exec = std::function<Qt::DropAction(QDrag& zrDrag)>;

    /// The desktop's way, for copies only.
    static Qt::DropAction ExecCopy(QDrag& zrDrag);

    /// Runs the drag, which began with the mouse button held down on zrSource, and returns when the button
    /// was released. zFirstName is the name of the first promised file or folder, in UTF-8.
    ///
    /// When the target has named an absolute local folder, zOnDestination is called with it once, from the
    /// event loop and after the target has its answer; never when zrSource is gone by then. When a target
    /// that accepted the drop names no folder within ten seconds, that is one line in the log, and it is too
    /// late.
    static void Run(QWidget& zrSource, const std::string& zFirstName, OnDestination zOnDestination,
                    const Exec& zrExec = ExecCopy);
};
