#include "DownloadFixture.h"

#include "ProgressController.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <utility>

std::ostream& operator<<(std::ostream& zrStream, const sAlert& zAlert) {
    return zrStream << '"' << zAlert.title << "\" / \"" << zAlert.message << '"';
}

bool VisibilityCounter::eventFilter(QObject* /*zpObject*/, QEvent* zpEvent) {
    if (!zpEvent->spontaneous()) {
        mShown += zpEvent->type() == QEvent::Show ? 1 : 0;
        mHidden += zpEvent->type() == QEvent::Hide ? 1 : 0;
    }
    return false;
}

DownloadFixture::DownloadFixture() {
    QObject::connect(&mAlertTimer, &QTimer::timeout, &mAlertTimer, [this] { AnswerAlert(); });
    QObject::connect(&mDeadline, &QTimer::timeout, &mDeadline, [] {
        ADD_FAILURE() << "the download has not ended";
        QApplication::closeAllWindows();
    });
}

void DownloadFixture::SetUp() {
    WindowFixture::SetUp();
    mPanel.mAnswer = {Destination()};
    mDevice.mOnCommand = [this](const std::string& zCommand) {
        const auto found = mAnswers.find(zCommand);
        return found == mAnswers.end() ? std::nullopt : std::optional(found->second);
    };
    mAlertTimer.start(1);
    mDeadline.start(2 * kTestDeadline);
}

void DownloadFixture::AnswerAlert() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        const auto* box = qobject_cast<QMessageBox*>(window);
        if (mAnswersAlerts && box != nullptr && box->isVisible()) {
            mAlerts.push_back({box->text().toStdString(), box->informativeText().toStdString()});
            Click<QPushButton>(*window, "OK");
            return;
        }
    }
}

void DownloadFixture::Connect() {
    ASSERT_TRUE(ConnectTo(mDevice));
    mDevice.ForgetCommands();
}

void DownloadFixture::Download(const Names& zNames) {
    SelectRows(zNames);
    ASSERT_TRUE(IsEnabled("Download"));
    Press("Download");
}

DownloadFixture::Names DownloadFixture::SkippedBy(const Names& zNames) {
    ::testing::internal::CaptureStdout();
    Download(zNames);
    std::istringstream output(::testing::internal::GetCapturedStdout());
    Names lines;
    for (std::string line; std::getline(output, line);) {
        if (line.find("Skipped") != std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

void DownloadFixture::PressByAssistiveTool(const char* zButton) {
    PressAccessibly(zButton);
    EXPECT_TRUE(WaitFor([&] { return !Button(zButton).isDown(); }));
}

DownloadFixture::Names DownloadFixture::LocalTree() const {
    Names paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mFolder.Path())) {
        const std::string path = std::filesystem::relative(entry.path(), mFolder.Path()).string();
        paths.push_back(entry.is_directory() ? path + "/" : path);
    }
    std::ranges::sort(paths);
    return paths;
}

// --- The device ---

void DownloadFixture::AnswerPartly(const std::string& zPath, const std::string& zContent,
                                   std::size_t zCount) {
    AnswerTo(ScriptedDevice::DownloadCommand(zPath),
             ScriptedDevice::LengthPrefix(zContent.size()) + zContent.substr(0, zCount));
    mRests[zPath] = zContent.substr(zCount);
}

void DownloadFixture::SendRest(const std::string& zPath) {
    mDevice.Send(mRests.at(zPath));
}

void DownloadFixture::AnswerListing(const std::string& zPath, const Names& zItems) {
    std::string reply = "<dir> Rights = \"cd-\"\n";
    for (const std::string& item : zItems) {
        reply += "<item " + item + ">\n";
    }
    AnswerTo(ScriptedDevice::DirCommand(zPath), reply + "</dir>");
}

std::string DownloadFixture::Item(const std::string& zName, const std::string& zType, long zSize) {
    return R"(Name = ")" + zName + R"(" Type = ")" + zType + R"(" Date = "2024" Size = ")" +
           std::to_string(zSize) + R"(" Rights = "cd-")";
}

std::string DownloadFixture::DirRecurseCommand(const std::string& zPath) {
    return R"(<cmd dir_recurse>Path = "User/)" + zPath + R"("</cmd>)";
}

// --- What people see ---

ProgressController& DownloadFixture::ProgressWindow() {
    for (QDialog* dialog : mWindow.findChildren<QDialog*>()) {
        if (auto* progress = dynamic_cast<ProgressController*>(dialog)) {
            return *progress;
        }
    }
    throw std::runtime_error("there is no progress window");
}

int DownloadFixture::Position() {
    return Control<QProgressBar>(ProgressWindow(), "Progress").value();
}

std::string DownloadFixture::CurrentItem() {
    return Control<QLabel>(ProgressWindow(), "Current item").text().toStdString();
}

bool DownloadFixture::Shows(const std::string& zItem, int zPosition) {
    return CurrentItem() == zItem && Position() == zPosition;
}

void DownloadFixture::ExpectUsable() {
    mAnswers.clear();
    mAlerts.clear();
    mPanel.mOnRun = {};
    mDevice.AddFile("afterwards.txt", "as usual");
    // A failure text of the protocol client ends one attempt, and that one only.
    ASSERT_TRUE(mController.IsConnected() || ConnectTo(mDevice) || ConnectTo(mDevice));
    if (Directory() != "/") {
        Press("Back");
    }
    ASSERT_TRUE(WaitFor([this] {
        Key(Qt::Key_F5);
        return std::ranges::count(RowNames(), "afterwards.txt") == 1;
    }));
    Download({"afterwards.txt"});
    EXPECT_EQ(mFolder.Read("afterwards.txt"), "as usual");
    EXPECT_EQ(mAlerts, std::vector<sAlert>());
}
