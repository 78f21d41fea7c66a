#include "ModalSession.h"

#include "WidgetDriver.h"

#include <QtCore/QMimeData>
#include <QtGui/QAction>
#include <QtGui/QDropEvent>
#include <QtGui/QShortcut>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <optional>

namespace {

using namespace std::chrono_literals;
using eModalResponse = ModalSession::eModalResponse;
using ::testing::IsEmpty;

/// A widget that notes the events that reach it.
class Recorder : public QWidget {
public:
    explicit Recorder(QWidget* zpParent = nullptr) : QWidget(zpParent) {
        setAcceptDrops(true);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_InputMethodEnabled);
        setAttribute(Qt::WA_AcceptTouchEvents);
        resize(200, 100);
    }

    std::vector<QEvent::Type> mSeen;
    int mPainted = 0;

protected:
    bool event(QEvent* zpEvent) override {
        if (mInteresting.contains(zpEvent->type())) {
            mSeen.push_back(zpEvent->type());
            zpEvent->accept();
            return true;
        }
        return QWidget::event(zpEvent);
    }

    void paintEvent(QPaintEvent* /*zpEvent*/) override { ++mPainted; }

private:
    const QList<QEvent::Type> mInteresting = {QEvent::MouseButtonPress,
                                              QEvent::MouseButtonRelease,
                                              QEvent::MouseButtonDblClick,
                                              QEvent::MouseMove,
                                              QEvent::Wheel,
                                              QEvent::KeyPress,
                                              QEvent::KeyRelease,
                                              QEvent::InputMethod,
                                              QEvent::ContextMenu,
                                              QEvent::DragEnter,
                                              QEvent::DragMove,
                                              QEvent::Drop,
                                              QEvent::TabletPress,
                                              QEvent::TouchBegin};
};

/// A main window with something in it, and two dialogs of it.
class ModalSessionTest : public ::testing::Test {
protected:
    void SetUp() override {
        mMain.setCentralWidget(mpCentral);
        mMain.resize(300, 200);
        ShowActive(mMain);
    }

    void TearDown() override { EXPECT_FALSE(ModalSession::IsRunning()) << "a session was left behind"; }

    QMainWindow mMain;
    Recorder* mpCentral = new Recorder;
    QDialog mDialog{&mMain};
    Recorder mContent{&mDialog};
    QDialog mOther{&mMain};
    Recorder mOtherContent{&mOther};
};

// --- Begin, run once, end ---

TEST_F(ModalSessionTest, BeginsByShowingTheWindowNonModally) {
    const ModalSession session(mDialog);
    EXPECT_TRUE(mDialog.isVisible());
    EXPECT_FALSE(mDialog.isModal());
    EXPECT_TRUE(ModalSession::IsRunning());
}

TEST_F(ModalSessionTest, RunOnceDeliversPendingEventsAndReports) {
    ModalSession session(mDialog);
    bool delivered = false;
    QTimer::singleShot(0, [&] { delivered = true; });
    EXPECT_EQ(session.RunOnce(), eModalResponse::Continues);
    EXPECT_TRUE(delivered);
    ModalSession::StopCurrent();
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
}

TEST_F(ModalSessionTest, ReportsWhatHappenedDuringItsOwnRun) {
    ModalSession session(mDialog);
    QTimer::singleShot(0, [] { ModalSession::StopCurrent(); });
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
}

TEST_F(ModalSessionTest, EndLeavesTheWindowToItsOwner) {
    ModalSession session(mDialog);
    session.End();
    session.End();
    EXPECT_FALSE(ModalSession::IsRunning());
    EXPECT_TRUE(mDialog.isVisible());
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
}

TEST_F(ModalSessionTest, ADelayedWindowIsShownWhenItsTimeHasCome) {
    const ModalSession session(mDialog, 20ms);
    EXPECT_FALSE(mDialog.isVisible());
    EXPECT_TRUE(WaitFor([&] { return mDialog.isVisible(); }));
}

TEST_F(ModalSessionTest, ADelayedWindowWaitsForThePromptInFront) {
    const ModalSession session(mDialog, 10ms);
    QDialog prompt(&mMain);
    {
        const ModalSession inner(prompt);
        bool timeHasPassed = false;
        QTimer::singleShot(50, [&] { timeHasPassed = true; });
        EXPECT_TRUE(WaitFor([&] { return timeHasPassed; }));
        EXPECT_FALSE(mDialog.isVisible());
    }
    EXPECT_TRUE(WaitFor([&] { return mDialog.isVisible(); }));
}

TEST_F(ModalSessionTest, ADelayedWindowIsNeverShownAfterTheEnd) {
    bool timeHasPassed = false;
    ModalSession session(mDialog, 10ms);
    session.End();
    QTimer::singleShot(50, [&] { timeHasPassed = true; });
    EXPECT_TRUE(WaitFor([&] { return timeHasPassed; }));
    EXPECT_FALSE(mDialog.isVisible());
}

TEST_F(ModalSessionTest, ADelayedWindowIsNotShownOnceStopped) {
    bool timeHasPassed = false;
    const ModalSession session(mDialog, 10ms);
    ModalSession::StopCurrent();
    QTimer::singleShot(50, [&] { timeHasPassed = true; });
    EXPECT_TRUE(WaitFor([&] { return timeHasPassed; }));
    EXPECT_FALSE(mDialog.isVisible());
}

TEST_F(ModalSessionTest, APressElsewhereDoesNotHastenADelayedWindow) {
    const ModalSession session(mDialog, std::chrono::hours(1));
    QTest::mouseClick(mpCentral, Qt::LeftButton);
    EXPECT_THAT(mpCentral->mSeen, IsEmpty());
    EXPECT_FALSE(mDialog.isVisible());
}

TEST_F(ModalSessionTest, HidingTheWindowStops) {
    ModalSession session(mDialog);
    mDialog.hide();
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
}

TEST_F(ModalSessionTest, DestroyingTheWindowStops) {
    auto window = std::make_unique<QDialog>(&mMain);
    ModalSession session(*window);
    window.reset();
    EXPECT_EQ(session.RunOnce(), eModalResponse::Stopped);
    session.End();
    QTest::mouseClick(mpCentral, Qt::LeftButton);
    EXPECT_FALSE(mpCentral->mSeen.empty());
}

TEST_F(ModalSessionTest, StopsWithoutASessionDoNothing) {
    ModalSession::StopCurrent();
    ModalSession::StopAll();
    ModalSession session(mDialog);
    EXPECT_EQ(session.RunOnce(), eModalResponse::Continues);
}

// --- Nesting ---

TEST_F(ModalSessionTest, StopCurrentMeansTheSessionBegunLast) {
    ModalSession outer(mDialog);
    {
        ModalSession inner(mOther);
        ModalSession::StopCurrent();
        EXPECT_EQ(inner.RunOnce(), eModalResponse::Stopped);
    }
    EXPECT_EQ(outer.RunOnce(), eModalResponse::Continues);
    ModalSession::StopCurrent();
    EXPECT_EQ(outer.RunOnce(), eModalResponse::Stopped);
}

TEST_F(ModalSessionTest, SessionsMayEndInAnyOrder) {
    ModalSession outer(mDialog);
    ModalSession inner(mOther);
    outer.End();
    EXPECT_TRUE(ModalSession::IsRunning());
    QTest::mouseClick(&mContent, Qt::LeftButton);
    EXPECT_THAT(mContent.mSeen, IsEmpty());
    QTest::mouseClick(&mOtherContent, Qt::LeftButton);
    EXPECT_FALSE(mOtherContent.mSeen.empty());
    inner.End();
}

TEST_F(ModalSessionTest, TwoSessionsOfOneWindowEndInAnyOrder) {
    for (const bool outerFirst : {true, false}) {
        ModalSession outer(mDialog);
        ModalSession inner(mDialog);
        mDialog.hide();
        EXPECT_EQ(inner.RunOnce(), eModalResponse::Stopped);
        (outerFirst ? outer : inner).End();
        EXPECT_TRUE(ModalSession::IsRunning());
        (outerFirst ? inner : outer).End();
        EXPECT_FALSE(ModalSession::IsRunning());
    }
}

TEST_F(ModalSessionTest, TheOuterSessionOfAWindowSurvivesTheInner) {
    ModalSession outer(mDialog);
    {
        const ModalSession inner(mDialog);
        ModalSession::StopCurrent();
    }
    EXPECT_EQ(outer.RunOnce(), eModalResponse::Continues);
    EXPECT_TRUE(ModalSession::Accepts(mContent));
}

TEST_F(ModalSessionTest, StopAllStopsEverySessionAndThoseOfTheUnwinding) {
    ModalSession outer(mDialog);
    {
        ModalSession inner(mOther);
        ModalSession::StopAll();
        EXPECT_EQ(inner.RunOnce(), eModalResponse::Stopped);
    }
    EXPECT_EQ(outer.RunOnce(), eModalResponse::Stopped);
    QDialog late(&mMain);
    ModalSession::RunModal(late); // would block for ever
    EXPECT_FALSE(late.isVisible());
    outer.End();

    ModalSession next(mDialog);
    EXPECT_EQ(next.RunOnce(), eModalResponse::Continues);
}

// --- RunModal ---

TEST_F(ModalSessionTest, RunModalBlocksUntilSomebodyStopsIt) {
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(mDialog.isVisible());
        EXPECT_TRUE(ModalSession::IsRunning());
        ModalSession::StopCurrent();
    });
    ModalSession::RunModal(mDialog);
    EXPECT_FALSE(ModalSession::IsRunning());
}

TEST_F(ModalSessionTest, RunModalEndsWithItsWindow) {
    QTimer::singleShot(0, [&] { mDialog.accept(); });
    ModalSession::RunModal(mDialog);
    EXPECT_EQ(mDialog.result(), QDialog::Accepted);

    auto* doomed = new QDialog(&mMain);
    QTimer::singleShot(0, [&] { delete doomed; });
    ModalSession::RunModal(*doomed);
}

TEST_F(ModalSessionTest, RunModalNests) {
    std::vector<std::string> order;
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { ModalSession::StopCurrent(); });
        ModalSession::RunModal(mOther);
        order.emplace_back("inner");
        ModalSession::StopCurrent();
    });
    ModalSession::RunModal(mDialog);
    order.emplace_back("outer");
    EXPECT_THAT(order, ::testing::ElementsAre("inner", "outer"));
}

TEST_F(ModalSessionTest, StopAllLeavesNestedRuns) {
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { ModalSession::StopAll(); });
        ModalSession::RunModal(mOther);
    });
    ModalSession::RunModal(mDialog);
    EXPECT_FALSE(ModalSession::IsRunning());
}

// --- What input reaches ---

std::unique_ptr<QEvent> MakeInput(QEvent::Type zType) {
    static const QMimeData kMime;
    const QPointF place(5, 5);
    switch (zType) {
    case QEvent::Wheel:
        return std::make_unique<QWheelEvent>(place, place, QPoint(0, 10), QPoint(0, 120), Qt::NoButton,
                                             Qt::NoModifier, Qt::NoScrollPhase, false);
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return std::make_unique<QKeyEvent>(zType, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    case QEvent::InputMethod:
        return std::make_unique<QInputMethodEvent>();
    case QEvent::ContextMenu:
        return std::make_unique<QContextMenuEvent>(QContextMenuEvent::Mouse, place.toPoint(),
                                                   place.toPoint());
    case QEvent::DragEnter:
        return std::make_unique<QDragEnterEvent>(place.toPoint(), Qt::CopyAction, &kMime, Qt::LeftButton,
                                                 Qt::NoModifier);
    case QEvent::TabletPress:
        return std::make_unique<QTabletEvent>(zType, QPointingDevice::primaryPointingDevice(), place, place,
                                              1, 0, 0, 0, 0, 0, Qt::NoModifier, Qt::LeftButton,
                                              Qt::LeftButton);
    case QEvent::TouchBegin:
        return std::make_unique<QTouchEvent>(zType);
    default:
        return std::make_unique<QMouseEvent>(zType, place, place, Qt::LeftButton, Qt::LeftButton,
                                             Qt::NoModifier);
    }
}

class ModalSessionInput : public ModalSessionTest, public ::testing::WithParamInterface<QEvent::Type> {
protected:
    /// Sends the event as the toolkit does; returns whether it came back accepted.
    static bool Send(QWidget& zrReceiver) {
        const std::unique_ptr<QEvent> event = MakeInput(GetParam());
        QCoreApplication::sendEvent(&zrReceiver, event.get());
        return event->isAccepted();
    }
};

TEST_P(ModalSessionInput, ReachesOnlyTheSessionsWindow) {
    const std::vector<QEvent::Type> seen = {GetParam()};
    Send(*mpCentral);
    EXPECT_EQ(mpCentral->mSeen, seen) << "without a session";
    mpCentral->mSeen.clear();
    {
        const ModalSession session(mDialog);
        Send(*mpCentral);
        EXPECT_THAT(mpCentral->mSeen, IsEmpty());
        Send(mContent);
        EXPECT_EQ(mContent.mSeen, seen);
    }
    Send(*mpCentral);
    EXPECT_EQ(mpCentral->mSeen, seen) << "after the session";
}

TEST_P(ModalSessionInput, IsNotOfferedToTheParents) {
    const ModalSession session(mDialog);
    EXPECT_EQ(Send(*mpCentral), GetParam() != QEvent::DragEnter)
        << "a drop must be refused, all else used up";
}

INSTANTIATE_TEST_SUITE_P(All, ModalSessionInput,
                         ::testing::Values(QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                           QEvent::MouseButtonDblClick, QEvent::MouseMove, QEvent::Wheel,
                                           QEvent::KeyPress, QEvent::KeyRelease, QEvent::InputMethod,
                                           QEvent::ContextMenu, QEvent::DragEnter, QEvent::TabletPress,
                                           QEvent::TouchBegin));

TEST_F(ModalSessionTest, ADragThatWasOverAWindowCannotDropThere) {
    const QMimeData mime;
    const QPoint place(5, 5);
    QDragEnterEvent enter(place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(place, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(mpCentral, &enter);
    ASSERT_TRUE(enter.isAccepted());
    QCoreApplication::sendEvent(mpCentral, &move);
    ASSERT_TRUE(move.isAccepted());
    mpCentral->mSeen.clear();

    const ModalSession session(mDialog);
    QCoreApplication::sendEvent(mpCentral, &move);
    EXPECT_FALSE(move.isAccepted());
    QCoreApplication::sendEvent(mpCentral, &drop);
    EXPECT_FALSE(drop.isAccepted());
    EXPECT_THAT(mpCentral->mSeen, IsEmpty());
}

TEST_F(ModalSessionTest, WindowsThatTheWindowOwnsBelongToIt) {
    QMessageBox box(&mContent);
    box.addButton(QMessageBox::Ok);
    auto* second = new QDialog(&box);
    auto* popup = new QMenu(second);
    const ModalSession session(mDialog);
    EXPECT_TRUE(ModalSession::Accepts(mDialog));
    EXPECT_TRUE(ModalSession::Accepts(box));
    EXPECT_TRUE(ModalSession::Accepts(*box.button(QMessageBox::Ok)));
    EXPECT_TRUE(ModalSession::Accepts(*second));
    EXPECT_TRUE(ModalSession::Accepts(*popup));
    EXPECT_FALSE(ModalSession::Accepts(mMain));
    EXPECT_FALSE(ModalSession::Accepts(mOther));
}

TEST_F(ModalSessionTest, TheListOfACompleterBelongsToItsField) {
    QLineEdit inside(&mDialog);
    QLineEdit outside(mpCentral);
    QCompleter insideCompleter({QStringLiteral("one"), QStringLiteral("once")});
    QCompleter outsideCompleter({QStringLiteral("one"), QStringLiteral("once")});
    inside.setCompleter(&insideCompleter);
    outside.setCompleter(&outsideCompleter);
    const ModalSession session(mDialog);
    insideCompleter.complete();
    EXPECT_TRUE(ModalSession::Accepts(*insideCompleter.popup()));
    EXPECT_FALSE(ModalSession::Accepts(*outsideCompleter.popup()));
}

TEST_F(ModalSessionTest, AnOuterSessionsWindowGetsNothingUntilTheInnerEnds) {
    const ModalSession outer(mDialog);
    {
        const ModalSession inner(mOther);
        QTest::mouseClick(&mContent, Qt::LeftButton);
        EXPECT_THAT(mContent.mSeen, IsEmpty());
    }
    QTest::mouseClick(&mContent, Qt::LeftButton);
    EXPECT_FALSE(mContent.mSeen.empty());
}

TEST_F(ModalSessionTest, InputStaysConfinedAfterAStop) {
    const ModalSession session(mDialog);
    ModalSession::StopCurrent();
    QTest::mouseClick(mpCentral, Qt::LeftButton);
    EXPECT_THAT(mpCentral->mSeen, IsEmpty());
}

TEST_F(ModalSessionTest, APressElsewhereBringsTheWindowBack) {
    const ModalSession session(mDialog);
    ShowActive(mMain);
    QTest::mouseClick(mpCentral, Qt::LeftButton);
    EXPECT_TRUE(WaitFor([&] { return QApplication::activeWindow() == &mDialog; }));
}

// --- What always works ---

TEST_F(ModalSessionTest, TheMainWindowCanBeClosed) {
    const ModalSession session(mDialog);
    EXPECT_TRUE(CloseByFrame(mMain));
    EXPECT_FALSE(mMain.isVisible());
}

TEST_F(ModalSessionTest, OtherWindowsArePainted) {
    const ModalSession session(mDialog);
    const int before = mpCentral->mPainted;
    mpCentral->update();
    EXPECT_TRUE(WaitFor([&] { return mpCentral->mPainted > before; }));
}

TEST_F(ModalSessionTest, ShortcutsOfTheApplicationWorkAndOthersDoNot) {
    int quits = 0;
    int uploads = 0;
    QAction quit;
    quit.setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
    quit.setShortcutContext(Qt::ApplicationShortcut);
    QObject::connect(&quit, &QAction::triggered, &quit, [&] { ++quits; });
    QAction local;
    local.setShortcut(QKeySequence(QStringLiteral("Ctrl+U")));
    QObject::connect(&local, &QAction::triggered, &local, [&] { ++uploads; });
    mMain.addActions({&quit, &local});

    QTest::keyClick(mpCentral, Qt::Key_U, Qt::ControlModifier);
    ASSERT_EQ(uploads, 1) << "without a session";
    const ModalSession session(mDialog);
    ShowActive(mMain); // as when the user clicks on the title bar
    QTest::keyClick(mpCentral, Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(uploads, 1);
    QTest::keyClick(mpCentral, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 1);
    ShowActive(mDialog);
    QTest::keyClick(&mContent, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 2);
}

TEST_F(ModalSessionTest, ShortcutObjectsFollowTheSameRule) {
    int everywhere = 0;
    int outside = 0;
    int inside = 0;
    QObject::connect(new QShortcut(Qt::Key_F2, &mMain, nullptr, nullptr, Qt::ApplicationShortcut),
                     &QShortcut::activated, &mMain, [&] { ++everywhere; });
    QObject::connect(new QShortcut(Qt::Key_F3, &mMain), &QShortcut::activated, &mMain, [&] { ++outside; });
    QObject::connect(new QShortcut(Qt::Key_F4, &mDialog), &QShortcut::activated, &mDialog, [&] { ++inside; });
    const ModalSession session(mDialog);
    ShowActive(mMain);
    QTest::keyClick(mpCentral, Qt::Key_F2);
    QTest::keyClick(mpCentral, Qt::Key_F3);
    ShowActive(mDialog);
    QTest::keyClick(&mContent, Qt::Key_F4);
    EXPECT_EQ(everywhere, 1);
    EXPECT_EQ(outside, 0);
    EXPECT_EQ(inside, 1);
}

TEST_F(ModalSessionTest, MnemonicsOfOtherWindowsDoNotWork) {
    auto* box = new QCheckBox(QStringLiteral("&Keep"), mpCentral);
    box->show();
    QTest::keyClick(mpCentral, Qt::Key_K, Qt::AltModifier);
    ASSERT_TRUE(box->isDown()) << "without a session";
    ASSERT_TRUE(WaitFor([&] { return !box->isDown(); }));
    const ModalSession session(mDialog);
    ShowActive(mMain);
    QTest::keyClick(mpCentral, Qt::Key_K, Qt::AltModifier);
    EXPECT_FALSE(box->isDown());
}

// --- The toolkit's own boxes over a session's window ---

TEST_F(ModalSessionTest, ABoxOfTheToolkitDoesNotKeepTheMainWindowFromClosing) {
    bool modal = true;
    QTimer::singleShot(0, [&] {
        const Answer<QMessageBox> answer([&](QMessageBox& zrBox) {
            modal = zrBox.isModal();
            QTest::keyClick(&zrBox, Qt::Key_Return);
        });
        EXPECT_EQ(QMessageBox::warning(&mDialog, QString(), QStringLiteral("File not found.")),
                  QMessageBox::Ok);
        ModalSession::StopCurrent();
    });
    ModalSession::RunModal(mDialog);
    EXPECT_FALSE(modal);
}

TEST_F(ModalSessionTest, StopAllEndsTheLoopOfSuchABox) {
    QTimer::singleShot(0, [&] {
        const Answer<QMessageBox> answer([](QMessageBox& /*zrBox*/) { ModalSession::StopAll(); });
        EXPECT_EQ(QMessageBox::question(&mDialog, QString(), QStringLiteral("Delete it?")), QMessageBox::No);
    });
    ModalSession::RunModal(mDialog);
    EXPECT_FALSE(ModalSession::IsRunning());
}

TEST_F(ModalSessionTest, StopAllLeavesWindowsOfTheRestAlone) {
    mOther.show();
    ModalSession session(mDialog);
    ModalSession::StopAll();
    EXPECT_TRUE(mOther.isVisible());
    EXPECT_TRUE(mMain.isVisible());
    EXPECT_TRUE(mDialog.isVisible()) << "its owner closes it";
}

} // namespace
