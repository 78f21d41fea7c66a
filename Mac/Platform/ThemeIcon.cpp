#include "ThemeIcon.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include <map>

QIcon ThemeIcon(const std::string& zName) {
    static const std::map<std::string, QStyle::StandardPixmap> kNearest = {
        {"network-connect", QStyle::SP_DriveNetIcon},
        {"network-disconnect", QStyle::SP_BrowserStop},
        {"go-up", QStyle::SP_ArrowUp},
        {"folder-new", QStyle::SP_FileDialogNewFolder},
        {"edit-delete", QStyle::SP_TrashIcon},
        {"go-next", QStyle::SP_ArrowForward},
        {"document-save", QStyle::SP_DialogSaveButton},
        {"folder", QStyle::SP_DirIcon},
        {"audio-x-generic", QStyle::SP_MediaVolume},
        {"document-send", QStyle::SP_FileDialogToParent},
    };
    const auto nearest = kNearest.find(zName);
    const QStyle::StandardPixmap fallback = nearest == kNearest.end() ? QStyle::SP_FileIcon : nearest->second;
    return QIcon::fromTheme(QString::fromStdString(zName), QApplication::style()->standardIcon(fallback));
}
