#include "Alert.h"
#include "CopyFolderController.h"
#include "CreateFolderController.h"
#include "ModalSession.h"
#include "ProgressController.h"
#include "WaitFor.h"
#include "WidgetDriver.h"
#include "WrappingLabel.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QAccessible>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <limits>

namespace {

constexpr int kShortestChange = 30; // milliseconds

/// The words of a label, which must be its accessible description as well.
QString Words(QWidget& zrWindow, const char* zName) {
    auto& label = Control<QLabel>(zrWindow, zName);
    EXPECT_EQ(AccessibleText(label, QAccessible::Description), label.text());
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    return label.text();
}

/// What assistive tools press: no event reaches the button.
void PressByAccessibility(QAbstractButton& zrButton) {
    QAccessible::queryAccessibleInterface(&zrButton)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
}

class Dialogs : public ::testing::Test {
protected:
    void SetUp() override {
        mMain.resize(860, 560);
        ShowActive(mMain);
    }

    QMainWindow mMain;
};

// --- Progress window ---

class Progress : public Dialogs {
protected:
    void SetUp() override {
        Dialogs::SetUp();
        mController.UseClock([] { return std::chrono::milliseconds(0); }); // so that no rate gets known
        mController.Init("Uploading files");
    }

    int Position() { return Control<QProgressBar>(mController, "Progress").value(); }

    QPushButton& Cancel() { return Control<QPushButton>(mController, "Cancel"); }

    ProgressController mController{&mMain};
};

void ExpectFresh(ProgressController& zrController, const QString& zTitle) {
    const QProgressBar& bar = Control<QProgressBar>(zrController, "Progress");
    EXPECT_EQ(zrController.windowTitle(), zTitle);
    EXPECT_EQ(bar.minimum(), 0);
    EXPECT_EQ(bar.maximum(), 1000);
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(Words(zrController, "Current item"), QString());
    EXPECT_EQ(Words(zrController, "Details"), QString());
    EXPECT_FALSE(Control<QLabel>(zrController, "Details").isVisibleTo(&zrController));
    EXPECT_TRUE(Control<QPushButton>(zrController, "Cancel").isEnabled());
    EXPECT_FALSE(zrController.GetCancelled());
}

TEST_F(Progress, InitPreparesForAnOperation) {
    ExpectFresh(mController, QStringLiteral("Uploading files"));
    EXPECT_FALSE(mController.isModal());
}

TEST_F(Progress, InitForgetsTheFormerOperation) {
    mController.SetProgress("Kick.wav", 0.5F);
    mController.SetAmount(1, 2);
    mController.ShowNow();
    mController.cancelDlg();
    mController.Init("Deleting files");
    ExpectFresh(mController, QStringLiteral("Deleting files"));
}

TEST_F(Progress, ShowsTheItemAndItsDetails) {
    mController.SetProgress("<i>100% of Kick</i>.wav", 0.25F);
    mController.SetAmount(1 << 20, 4 << 20);
    mController.ShowNow();
    EXPECT_EQ(Position(), 250);
    EXPECT_EQ(Words(mController, "Current item"), QStringLiteral("<i>100% of Kick</i>.wav"));
    EXPECT_EQ(Words(mController, "Details"), QStringLiteral("1.0 MiB of 4.0 MiB"));
    EXPECT_TRUE(Control<QLabel>(mController, "Details").isVisibleTo(&mController));
}

TEST_F(Progress, ShowsOfAQuickSuccessionTheLatest) {
    const QSignalSpy moves(&Control<QProgressBar>(mController, "Progress"), &QProgressBar::valueChanged);
    QElapsedTimer clock;
    clock.start();
    for (int step = 1; step <= 500; ++step) {
        mController.SetProgress(std::to_string(step) + ".wav", static_cast<float>(step) / 1000.0F);
        mController.SetAmount(static_cast<std::uint64_t>(step), 900);
    }
    EXPECT_LE(moves.count(), clock.elapsed() / kShortestChange + 1);
    EXPECT_TRUE(WaitFor([this] { return Position() == 500; }));
    EXPECT_EQ(Words(mController, "Current item"), QStringLiteral("500.wav"));
    EXPECT_EQ(Words(mController, "Details"), QStringLiteral("500 bytes of 900 bytes"));
}

TEST_F(Progress, ShowsTheFirstChangeAtOnce) {
    mController.SetProgress("Kick.wav", 0.25F);
    EXPECT_EQ(Position(), 250);
    EXPECT_EQ(Words(mController, "Current item"), QStringLiteral("Kick.wav"));
}

struct sPosition {
    float position;
    int shown;
};

TEST_F(Progress, ThePositionStaysOnTheBar) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::array<sPosition, 12> cases = {{{0.0F, 0},
                                              {0.5F, 500},
                                              {0.9996F, 1000},
                                              {1.0F, 1000},
                                              {1.5F, 1000},
                                              {-0.1F, 0},
                                              {kInfinity, 1000},
                                              {-kInfinity, 0},
                                              {std::numeric_limits<float>::max(), 1000},
                                              {0.001F, 1},
                                              {0.7F, 700},
                                              {std::nanf(""), 0}}};
    for (const sPosition& row : cases) {
        mController.SetProgress("", 0.3F);
        mController.ShowNow();
        mController.SetProgress("", row.position);
        mController.ShowNow();
        EXPECT_EQ(Position(), row.shown) << row.position;
    }
}

TEST_F(Progress, LongTextsDoNotChangeTheWindow) {
    mController.show();
    RunLoopPasses(3);
    const QSize before = mController.size();
    mController.SetProgress(std::string(5000, 'w'), 0.1F);
    mController.ShowNow();
    RunLoopPasses(3);
    EXPECT_EQ(mController.size(), before);
    EXPECT_LT(mController.minimumSizeHint().width(), before.width());
}

TEST_F(Progress, CancelStopsTheSessionOnceAndStays) {
    ModalSession session(mController);
    ShowActive(mController);
    Click<QPushButton>(mController, "Cancel");
    EXPECT_TRUE(mController.GetCancelled());
    EXPECT_FALSE(Cancel().isEnabled());
    EXPECT_EQ(session.RunOnce(), ModalSession::eModalResponse::Stopped);

    QDialog later(&mMain);
    ModalSession inner(later);
    mController.cancelDlg();
    EXPECT_EQ(inner.RunOnce(), ModalSession::eModalResponse::Continues) << "a second Cancel has no effect";
    EXPECT_TRUE(mController.GetCancelled());
}

using Leave = void (*)(QWidget&);

void PressEscape(QWidget& zrWindow) {
    QTest::keyClick(&zrWindow, Qt::Key_Escape);
}

void UseFrame(QWidget& zrWindow) {
    EXPECT_FALSE(CloseByFrame(zrWindow));
}

constexpr std::array<Leave, 2> kLeaves = {PressEscape, UseFrame};

TEST_F(Progress, EscapeAndTheFrameAreCancel) {
    for (const Leave leave : kLeaves) {
        mController.Init("Again");
        ModalSession session(mController);
        ShowActive(mController);
        leave(mController);
        EXPECT_TRUE(mController.GetCancelled());
        EXPECT_TRUE(mController.isVisible()) << "the operation closes it";
        EXPECT_EQ(session.RunOnce(), ModalSession::eModalResponse::Stopped);
    }
}

TEST_F(Progress, ClosingByTheProgramIsNotCancel) {
    ShowActive(mController);
    EXPECT_TRUE(mController.close());
    EXPECT_FALSE(mController.isVisible());
    EXPECT_FALSE(mController.GetCancelled());
}

TEST_F(Progress, ReturnDoesNotCancel) {
    // The window comes up while people type: a Return that opened a folder may still be repeating.
    ShowActive(mController);
    QTest::keyClick(&mController, Qt::Key_Return);
    EXPECT_FALSE(mController.GetCancelled());
    QTest::keyClick(&Cancel(), Qt::Key_Space);
    EXPECT_TRUE(mController.GetCancelled());
}

TEST_F(Progress, NothingActsWhileAPromptIsInFront) {
    const ModalSession session(mController);
    QDialog prompt(&mMain);
    {
        const ModalSession inner(prompt);
        const QSignalSpy clicks(&Cancel(), &QPushButton::clicked);
        PressByAccessibility(Cancel());
        EXPECT_TRUE(WaitFor([&] { return clicks.count() == 1; })); // the press is animated
        EXPECT_FALSE(CloseByFrame(mController));
        PressEscape(mController);
        EXPECT_FALSE(mController.GetCancelled());
    }
    PressByAccessibility(Cancel());
    EXPECT_TRUE(WaitFor([&] { return mController.GetCancelled(); }));
}

// --- Overwrite prompt ---

class OverwritePrompt : public Dialogs {
protected:
    /// Runs the prompt, works it once it is up, and returns its answer.
    template <typename Act>
    int Run(Act zAct) {
        CopyFolderController prompt(&mMain);
        prompt.setText(false, "Kick.wav");
        const Answer<QDialog> answer([&](QDialog& zrDialog) { zAct(zrDialog); });
        ModalSession::RunModal(prompt);
        return prompt.GetResult();
    }
};

TEST_F(OverwritePrompt, AsksAboutAFolder) {
    CopyFolderController prompt(&mMain);
    prompt.setText(true, "Drums");
    EXPECT_EQ(prompt.windowTitle(), QStringLiteral("Copy Folder"));
    EXPECT_EQ(Words(prompt, "What exists"), QStringLiteral("A folder with the name 'Drums' already exists."));
    EXPECT_EQ(
        Words(prompt, "Question"),
        QStringLiteral("Any files in the destination folder with the same name as those in the source folder "
                       "will be replaced.  Do you still want to copy the folder?"));
}

TEST_F(OverwritePrompt, AsksAboutAFile) {
    CopyFolderController prompt(&mMain);
    prompt.setText(false, "/home/me/Kick.wav");
    EXPECT_EQ(prompt.windowTitle(), QStringLiteral("Copy File"));
    EXPECT_EQ(Words(prompt, "What exists"),
              QStringLiteral("A file with the name '/home/me/Kick.wav' already exists."));
    EXPECT_EQ(Words(prompt, "Question"), QStringLiteral("Do you want to replace it?"));
}

TEST_F(OverwritePrompt, NamesAreData) {
    CopyFolderController prompt(&mMain);
    prompt.setText(false, "100%s %n <b>x</b>");
    EXPECT_EQ(Words(prompt, "What exists"),
              QStringLiteral("A file with the name '100%s %n <b>x</b>' already exists."));
}

TEST_F(OverwritePrompt, ALongPathIsShownWithBothItsEndsAndDescribedWhole) {
    CopyFolderController prompt(&mMain);
    const QString path =
        QStringLiteral("/home/me/") + QString(200, QChar(0xFC)) + QStringLiteral("/Kick.wav");
    prompt.setText(false, path.toStdString());
    const QLabel& label = Control<QLabel>(prompt, "What exists");
    EXPECT_TRUE(label.text().startsWith(QStringLiteral(u"A file with the name '/home/me/\u00FC")));
    EXPECT_TRUE(label.text().endsWith(QStringLiteral(u"\u00FC/Kick.wav' already exists.")));
    EXPECT_TRUE(label.text().contains(QChar(0x2026)));
    EXPECT_EQ(label.accessibleDescription(),
              QStringLiteral("A file with the name '%1' already exists.").arg(path));
}

TEST_F(OverwritePrompt, ALongPathGetsMoreLinesAndNotAWiderWindow) {
    CopyFolderController prompt(&mMain);
    prompt.setText(false, "a");
    prompt.show();
    const QSize small = prompt.size();
    prompt.setText(false, std::string(220, 'W'));
    RunLoopPasses(3);
    EXPECT_EQ(prompt.width(), small.width());
    EXPECT_GT(prompt.height(), small.height() + 3 * prompt.fontMetrics().height());
    const QLabel& label = Control<QLabel>(prompt, "What exists");
    EXPECT_GE(label.height(), label.heightForWidth(label.width()));
}

/// On a screen of twice as many dots to the inch.
class DenseLabel : public WrappingLabel {
protected:
    int metric(PaintDeviceMetric zMetric) const override {
        const int value = WrappingLabel::metric(zMetric);
        return zMetric == PdmDpiX || zMetric == PdmDpiY ? 2 * value : value;
    }
};

TEST_F(OverwritePrompt, ItsLinesAreMeasuredForTheScreenTheyAreOn) {
    WrappingLabel label;
    DenseLabel dense;
    for (WrappingLabel* each : {&label, static_cast<WrappingLabel*>(&dense)}) {
        each->setText(QStringLiteral("Do you want to replace it?"));
    }
    EXPECT_GT(dense.heightForWidth(1000), 3 * label.heightForWidth(1000) / 2);
}

struct sAnswerButton {
    const char* name;
    int answer;
};

TEST_F(OverwritePrompt, EachButtonGivesItsAnswer) {
    static_assert(CopyCancel == 0 && CopyNo == 1 && CopyYes == 2 && CopyYesToAll == 3);
    for (const sAnswerButton& row : {sAnswerButton{"Cancel", 0}, {"No", 1}, {"Yes", 2}, {"Yes to all", 3}}) {
        EXPECT_EQ(Run([&](QWidget& zrDialog) { Click<QPushButton>(zrDialog, row.name); }), row.answer)
            << row.name;
    }
}

struct sAnswerKey {
    Qt::Key key;
    Qt::KeyboardModifier modifier;
    int answer;
};

TEST_F(OverwritePrompt, HasAKeyForEachAnswer) {
    // A hasty Return must not destroy anything.
    const std::array<sAnswerKey, 5> keys = {{{Qt::Key_Return, Qt::NoModifier, CopyNo},
                                             {Qt::Key_Escape, Qt::NoModifier, CopyCancel},
                                             {Qt::Key_N, Qt::AltModifier, CopyNo},
                                             {Qt::Key_Y, Qt::AltModifier, CopyYes},
                                             {Qt::Key_A, Qt::AltModifier, CopyYesToAll}}};
    for (const sAnswerKey& row : keys) {
        EXPECT_EQ(
            Run([&](QDialog& zrDialog) { QTest::keyClick(zrDialog.focusWidget(), row.key, row.modifier); }),
            row.answer)
            << row.key;
    }
}

TEST_F(OverwritePrompt, WithoutAButtonTheAnswerIsCancel) {
    const CopyFolderController fresh(&mMain);
    EXPECT_EQ(fresh.GetResult(), CopyCancel);
    EXPECT_EQ(Run([](QWidget& zrDialog) { UseFrame(zrDialog); }), CopyCancel);
    EXPECT_EQ(Run([](QWidget& zrDialog) { zrDialog.close(); }), CopyCancel);
    EXPECT_EQ(Run([](QWidget& /*zrDialog*/) { ModalSession::StopAll(); }), CopyCancel);
}

TEST_F(OverwritePrompt, LoadingForgetsAnAnswer) {
    CopyFolderController prompt(&mMain);
    prompt.onYesToAll();
    ASSERT_EQ(prompt.GetResult(), CopyYesToAll);
    prompt.windowDidLoad();
    EXPECT_EQ(prompt.GetResult(), CopyCancel);
}

// --- New folder prompt ---

class NewFolderPrompt : public Dialogs {
protected:
    template <typename Act>
    std::string Run(Act zAct) {
        CreateFolderController prompt(&mMain);
        EXPECT_EQ(prompt.windowTitle(), QStringLiteral("Create Folder"));
        EXPECT_EQ(prompt.GetFolderName(), "");
        const Answer<QDialog> answer([&](QDialog& zrDialog) { zAct(zrDialog); });
        ModalSession::RunModal(prompt);
        return prompt.GetFolderName();
    }

    static void Type(QDialog& zrDialog, const char* zText) {
        EXPECT_EQ(zrDialog.focusWidget(), &Control<QLineEdit>(zrDialog, "Folder name"));
        QTest::keyClicks(zrDialog.focusWidget(), QString::fromUtf8(zText));
    }
};

TEST_F(NewFolderPrompt, OkTakesWhatWasTyped) {
    EXPECT_EQ(Run([](QDialog& zrDialog) {
                  Type(zrDialog, "New beats");
                  Click<QPushButton>(zrDialog, "OK");
              }),
              "New beats");
}

TEST_F(NewFolderPrompt, ReturnIsOkAndTheNameIsUtf8) {
    EXPECT_EQ(Run([](QDialog& zrDialog) {
                  Control<QLineEdit>(zrDialog, "Folder name").insert(QStringLiteral(u"B\u00E4sse \u266B"));
                  QTest::keyClick(zrDialog.focusWidget(), Qt::Key_Return);
              }),
              "B\xC3\xA4sse \xE2\x99\xAB");
}

TEST_F(NewFolderPrompt, OkWithoutANameGivesNone) {
    EXPECT_EQ(Run([](QDialog& zrDialog) {
                  EXPECT_TRUE(Control<QPushButton>(zrDialog, "OK").isEnabled());
                  Click<QPushButton>(zrDialog, "OK");
              }),
              "");
}

TEST_F(NewFolderPrompt, EveryOtherWayGivesNone) {
    const std::array<Leave, 4> ways = {PressEscape, UseFrame,
                                       [](QWidget& zrWindow) { Click<QPushButton>(zrWindow, "Cancel"); },
                                       [](QWidget& /*zrWindow*/) { ModalSession::StopAll(); }};
    for (const Leave leave : ways) {
        EXPECT_EQ(Run([&](QDialog& zrDialog) {
                      Type(zrDialog, "Beats");
                      leave(zrDialog);
                  }),
                  "");
    }
}

TEST_F(NewFolderPrompt, CancelForgetsAnEarlierName) {
    CreateFolderController prompt(&mMain);
    Control<QLineEdit>(prompt, "Folder name").setText(QStringLiteral("Beats"));
    prompt.okDlg();
    ASSERT_EQ(prompt.GetFolderName(), "Beats");
    prompt.cancelDlg();
    EXPECT_EQ(prompt.GetFolderName(), "");
}

// --- Alerts ---

class Alerts : public Dialogs {
protected:
    int Show(const std::string& zTitle, const std::string& zMessage, int zKind,
             const std::function<void(QMessageBox&)>& zAct) {
        const Answer<QMessageBox> answer(zAct);
        return ShowAlert(&mMain, zTitle, zMessage, zKind);
    }
};

QStringList ButtonNames(QMessageBox& zrBox) {
    QStringList names;
    for (QAbstractButton* button : zrBox.buttons()) {
        names.append(AccessibleText(*button, QAccessible::Name));
    }
    return names;
}

struct sAlertCase {
    int kind;
    QStringList buttons;
};

TEST_F(Alerts, EachKindHasItsButtons) {
    static_assert(AlertOk == 0 && AlertYesNo == 1 && AlertOkCancel == 2);
    for (const sAlertCase& row :
         {sAlertCase{0, {"OK"}}, {1, {"Yes", "No"}}, {2, {"OK", "Cancel"}}, {3, {"OK"}}, {-1, {"OK"}}}) {
        Show("Delete files", "Sure?", row.kind, [&](QMessageBox& zrBox) {
            EXPECT_EQ(ButtonNames(zrBox), row.buttons) << row.kind;
            EXPECT_EQ(AccessibleText(*zrBox.defaultButton(), QAccessible::Name), row.buttons.first());
            PressEscape(zrBox);
        });
    }
}

TEST_F(Alerts, ShowsTitleAndMessageAsPlainText) {
    const std::string message = "<b>Kick</b> 100% of %s and %% \n";
    Show("Upload <i>failed</i>", message, AlertOk, [](QMessageBox& zrBox) {
        EXPECT_EQ(zrBox.windowTitle(), QStringLiteral("Quillbox"));
        EXPECT_EQ(zrBox.text(), QStringLiteral("Upload <i>failed</i>"));
        EXPECT_EQ(zrBox.textFormat(), Qt::PlainText);
        EXPECT_EQ(zrBox.informativeText(), QStringLiteral(u"<b>Kick</b> 100% of %s and % \u240A"));
        for (const QLabel* label : zrBox.findChildren<QLabel*>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
            EXPECT_EQ(label->font().bold(), label->text() == zrBox.text());
        }
        EXPECT_FALSE(zrBox.isModal());
        PressEscape(zrBox);
    });
}

TEST_F(Alerts, ALongNameIsShownWhole) {
    const std::string name(80, 'x');
    Show("Title", name + " - Path too long", AlertOk, [&](QMessageBox& zrBox) {
        const auto* label = zrBox.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
        EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(QString::fromStdString(name)));
        PressEscape(zrBox);
    });
    Show("Title", std::string(5000, 'x'), AlertOk, [](QMessageBox& zrBox) {
        EXPECT_LT(zrBox.width(), 1200);
        PressEscape(zrBox);
    });
}

TEST_F(Alerts, AnEndlessNameGivesWayToTheReason) {
    std::string name;
    while (name.size() < 500'000) {
        name += "word ";
    }
    Show("Title", name + " - Path too long", AlertOk, [](QMessageBox& zrBox) {
        EXPECT_TRUE(zrBox.informativeText().endsWith(QStringLiteral("word  - Path too long")));
        EXPECT_TRUE(zrBox.informativeText().contains(QChar(0x2026)));
        EXPECT_LT(zrBox.height(), 600);
        PressEscape(zrBox);
    });
}

struct sAlertAnswer {
    int kind;
    const char* button;
    int result;
};

TEST_F(Alerts, TheFirstButtonIsOneAndTheSecondNought) {
    for (const sAlertAnswer& row : {sAlertAnswer{AlertOk, "OK", 1},
                                    {AlertYesNo, "Yes", 1},
                                    {AlertYesNo, "No", 0},
                                    {AlertOkCancel, "OK", 1},
                                    {AlertOkCancel, "Cancel", 0},
                                    {7, "OK", 1}}) {
        EXPECT_EQ(Show("Title", "Message", row.kind,
                       [&](QMessageBox& zrBox) { Click<QPushButton>(zrBox, row.button); }),
                  row.result)
            << row.kind << row.button;
    }
}

TEST_F(Alerts, ReturnIsTheFirstButtonAndEscapeTheSecond) {
    for (const int kind : {AlertYesNo, AlertOkCancel}) {
        EXPECT_EQ(
            Show("Title", "", kind, [](QMessageBox& zrBox) { QTest::keyClick(&zrBox, Qt::Key_Return); }), 1);
        EXPECT_EQ(Show("Title", "", kind, PressEscape), 0);
        EXPECT_EQ(Show("Title", "", kind, [](QMessageBox& zrBox) { CloseByFrame(zrBox); }), 0);
    }
}

TEST_F(Alerts, QuittingAnswersNought) {
    EXPECT_EQ(Show("Title", "", AlertYesNo, [](QMessageBox& /*zrBox*/) { ModalSession::StopAll(); }), 0);
}

TEST_F(Alerts, RunInsideAnotherSession) {
    ProgressController progress(&mMain);
    ModalSession session(progress);
    EXPECT_EQ(Show("Title", "", AlertOk, [](QMessageBox& zrBox) { Click<QPushButton>(zrBox, "OK"); }), 1);
    EXPECT_EQ(session.RunOnce(), ModalSession::eModalResponse::Continues);
}

} // namespace
