#include "Controller.h"
#include "MainWindow.h"
#include "OpenPanel.h"
#include "TerminationSignals.h"
#include "ThemeIcon.h"
#include "Translation.h"

#include <QtWidgets/QApplication>

#include <csignal>

int main(int argc, char** argv) {
    // A log that nobody reads any more is no reason to end.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    const QApplication application(argc, argv);
    QApplication::setApplicationName("Quillbox");
    QApplication::setApplicationVersion(QUILLBOX_VERSION);
    QApplication::setDesktopFileName("quillbox");
    QApplication::setWindowIcon(ThemeIcon("quillbox"));
    // The controller ends the event loop, after it has ended what runs in it.
    QApplication::setQuitOnLastWindowClosed(false);

    const Translation translation(QLocale::system());
    MainWindow window;
    FileDialogPanel panel;
    Controller controller(window, panel);
    const TerminationSignals termination([&controller] { controller.applicationShouldTerminate(); });
    controller.applicationDidFinishLaunching();
    window.show();
    return QApplication::exec();
}
