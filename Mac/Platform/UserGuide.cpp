#include "UserGuide.h"

#include "CommonUtils.h"
#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

namespace {

QString FindUserGuide(const QString& zProgramFolder) {
    const QFileInfo beside(zProgramFolder + QStringLiteral("/../share/doc/quillbox/user-guide.html"));
    if (beside.isFile()) {
        return beside.canonicalFilePath();
    }
    return QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                  QStringLiteral("doc/quillbox/user-guide.html"));
}

} // namespace

std::string OpenUserGuide() {
    return OpenUserGuide(QCoreApplication::applicationDirPath());
}

std::string OpenUserGuide(const QString& zProgramFolder) {
    const QString path = FindUserGuide(zProgramFolder);
    if (path.isEmpty()) {
        DebugPrint("User guide not found\n");
        return Translated("It was not found. Installing Quillbox again brings it back.");
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        DebugPrint("User guide cannot be opened\n");
        return Filled("No web browser could be started. The guide is the file '%s'.",
                      FromWidgetText(path).c_str());
    }
    return {};
}
