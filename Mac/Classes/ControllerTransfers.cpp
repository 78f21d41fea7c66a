#include "Controller.h"

#include "CommonUtils.h"
#include "CopyFolderController.h"
#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <algorithm>

/// Between any two steps people may have cancelled, and the connection may be lost or useless; the latter
/// leaves its reason in zrErrorText.
bool Controller::MayGoOn(std::string& zrErrorText) {
    if (progressDlg->GetCancelled()) {
        return false;
    }
    if (!IsConnected() || mpSocket->GetState() == FTS_ERROR) {
        zrErrorText = LostTransferText();
        return false;
    }
    return true;
}

std::string Controller::DevicePathIn(const std::string& zFolder, const std::string& zName) {
    std::string path = zFolder;
    AddTrailingSeparator(path);
    return path + zName;
}

int Controller::AskToOverwrite(bool zIsFolder, const std::string& zName) {
    CopyFolderController prompt(&mrWindow);
    prompt.setText(zIsFolder, zName);
    CentreOverWindow(prompt);
    ModalSession::RunModal(prompt);
    prompt.close();
    return prompt.GetResult();
}

/// How much of a whole transfer is done; "" where the whole is unknown.
std::string Controller::AmountText(std::int64_t zDone, std::uint64_t zTotal) {
    if (zTotal == 0) {
        return {};
    }
    const auto total = static_cast<qint64>(zTotal);
    const qint64 done = std::clamp(qint64{zDone}, qint64{0}, total);
    const QLocale locale;
    return FromWidgetText(QCoreApplication::translate("Quillbox", "%1 of %2")
                              .arg(locale.formattedDataSize(done, 1), locale.formattedDataSize(total, 1)));
}
