#pragma once

#include "Hermetic.h"
#include "Meanwhile.h"
#include "WindowFixture.h"

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

#include <map>
#include <ostream>
#include <string>
#include <vector>

class ProgressController;
class QMessageBox;

/// What an alert said.
struct sAlert {
    std::string title;
    std::string message;

    bool operator==(const sAlert&) const = default;
};

std::ostream& operator<<(std::ostream& zrStream, const sAlert& zAlert);

/// How often the program has shown and hidden a window.
class VisibilityCounter : public QObject {
public:
    explicit VisibilityCounter(QWidget& zrWindow) { zrWindow.installEventFilter(this); }

    int Shown() const { return mShown; }

    int Hidden() const { return mHidden; }

    bool eventFilter(QObject* zpObject, QEvent* zpEvent) override;

private:
    int mShown = 0;
    int mHidden = 0;
};

/// Downloads from a scripted device into a fresh folder. Alerts are answered with OK and noted.
class DownloadFixture : public WindowFixture {
protected:
    static constexpr const char* kFailed = "Download failed";
    static constexpr const char* kClosed = "Connection has been closed";

    DownloadFixture();

    void SetUp() override;

    /// Connects and forgets the commands of that.
    void Connect();

    /// Selects rows of the table and presses Download; returns when the download has ended.
    void Download(const Names& zNames);

    /// The same; returns the lines on standard output that tell of something skipped.
    Names SkippedBy(const Names& zNames);

    /// Presses a button as assistive tools do, and waits until it has acted.
    void PressByAssistiveTool(const char* zButton);

    std::string Destination() const { return mFolder.Path().string(); }

    std::string ProgressTitle() const { return "Downloading to '" + Destination() + "'"; }

    /// Everything in the destination, as sorted relative paths; folders end in "/".
    Names LocalTree() const;

    // --- The device ---

    /// Lets the device answer a command with these bytes, "" for silence.
    void AnswerTo(const std::string& zCommand, const std::string& zReply) { mAnswers[zCommand] = zReply; }

    /// Lets the device hold back what follows the first zCount bytes of a file; SendRest sends them.
    void AnswerPartly(const std::string& zPath, const std::string& zContent, std::size_t zCount);
    void SendRest(const std::string& zPath);

    /// Lets the device list a folder with these items, each the text between "<item " and ">".
    void AnswerListing(const std::string& zPath, const Names& zItems);
    static std::string Item(const std::string& zName, const std::string& zType, long zSize);

    static std::string DirRecurseCommand(const std::string& zPath);

    // --- What people see ---

    ProgressController& ProgressWindow();
    int Position();
    std::string CurrentItem();

    /// Whether the progress window shows this item at this position.
    bool Shows(const std::string& zItem, int zPosition);

    /// Asserts that the program, connected again, downloads a file that the device gets for the purpose.
    void ExpectUsable();

    TestFolder mFolder;
    std::vector<sAlert> mAlerts;
    bool mAnswersAlerts = true;

private:
    void AnswerAlert();

    std::map<std::string, std::string> mAnswers;
    std::map<std::string, std::string> mRests;
    QTimer mAlertTimer;
    QTimer mDeadline;
};
