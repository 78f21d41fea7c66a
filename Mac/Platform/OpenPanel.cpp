#include "OpenPanel.h"

#include "ModalSession.h"
#include "WidgetText.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeView>

namespace {

QFileDialog::FileMode FileModeOf(const sOpenPanelRequest& zrRequest) {
    if (!zrRequest.canChooseFiles) {
        return QFileDialog::Directory;
    }
    return zrRequest.allowsMultiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
}

QString NameFilterOf(const std::vector<std::string>& zrTypes) {
    QStringList patterns;
    for (const std::string& type : zrTypes) {
        patterns.append(QStringLiteral("*.") + QString::fromStdString(type));
    }
    return QString::fromStdString(Translated("Files")) + QStringLiteral(" (") +
           patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
}

/// The remembered folder, or the home folder where it is gone.
QString StartFolder(const std::string& zFolder) {
    const QString folder = QString::fromStdString(zFolder);
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

/// The toolkit's own sizes cut the kinds and the dates of files. A chooser of the desktop's own has no
/// columns here.
void MakeRoomForColumns(QFileDialog& zrDialog) {
    constexpr int kWidth = 110; // characters
    constexpr int kKind = 2;
    const int width = zrDialog.fontMetrics().averageCharWidth() * kWidth;
    zrDialog.resize(zrDialog.sizeHint().expandedTo(QSize(width, 0)));
    if (auto* const list = zrDialog.findChild<QTreeView*>(QStringLiteral("treeView")); list != nullptr) {
        list->header()->setSectionResizeMode(kKind, QHeaderView::ResizeToContents);
        list->header()->setStretchLastSection(true); // of the dates
    }
}

void SetUp(QFileDialog& zrDialog, const sOpenPanelRequest& zrRequest) {
    zrDialog.setWindowTitle(ToWidgetText(zrRequest.title));
    zrDialog.setAcceptMode(QFileDialog::AcceptOpen);
    zrDialog.setFileMode(FileModeOf(zrRequest));
    zrDialog.setOption(QFileDialog::ShowDirsOnly, !zrRequest.canChooseFiles);
    zrDialog.setOption(QFileDialog::ReadOnly, !zrRequest.canCreateFolders);
    if (zrRequest.canChooseFiles && !zrRequest.allowedTypes.empty()) {
        zrDialog.setNameFilter(NameFilterOf(zrRequest.allowedTypes));
    }
    zrDialog.setDirectory(StartFolder(zrRequest.initialFolder));
    MakeRoomForColumns(zrDialog);
}

} // namespace

std::vector<std::string> FileDialogPanel::Run(QWidget* zpParent, const sOpenPanelRequest& zrRequest) {
    QFileDialog dialog(zpParent);
    SetUp(dialog, zrRequest);
    ModalSession::RunModal(dialog);
    std::vector<std::string> paths;
    if (dialog.result() == QDialog::Accepted) {
        for (const QString& path : dialog.selectedFiles()) {
            paths.push_back(path.toStdString());
        }
    }
    return paths;
}
