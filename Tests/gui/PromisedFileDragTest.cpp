#include "PromisedFileDrag.h"
#include "PrivateBus.h"

#include <QtCore/QMimeData>
#include <QtWidgets/QWidget>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const char* const kLogLine = "Drag: no destination was given\n";

/// The other end of a drag, which accepts the drop or not and keeps what the drag offered.
struct Target {
    Qt::DropAction action = Qt::CopyAction;
    QStringList formats;
    QByteArray service;
    QByteArray path;

    Qt::DropAction Exec(QDrag& drag) {
        formats = drag.mimeData()->formats();
        service = drag.mimeData()->data("application/x-kde-ark-dndextract-service");
        path = drag.mimeData()->data("application/x-kde-ark-dndextract-path");
        RunLoopPasses(5);   // the pointer moves
        drag.deleteLater(); // as the platform does when the target has finished
        return action;
    }
};

/// The bus that the program takes for the session's, as long as the process lives.
const PrivateBus& SessionBus() {
    static const PrivateBus bus;
    return bus;
}

class PromisedFileDragTest : public ::testing::Test {
protected:
    PromisedFileDragTest() {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", SessionBus().Address().toUtf8().constData(), 1);
    }

    ~PromisedFileDragTest() override { QDBusConnection::disconnectFromBus("target"); }

    void Drag(Target& target) {
        PromisedFileDrag::Run(
            *source, "first.wav", [this](const std::string& folder) { folders.push_back(folder); },
            [&target](QDrag& drag) { return target.Exec(drag); });
    }

    QDBusMessage Call(const Target& target, const QString& folder) {
        return CallForExtraction(SessionBus().Connect("target"), target.service, target.path, folder);
    }

    /// Lets the time that the target has for its answer run out.
    void EndPatience() {
        auto* patience = source->findChild<QTimer*>();
        ASSERT_NE(patience, nullptr);
        patience->start(0);
    }

    bool IsOnTheBus(const Target& target) {
        // What the application's own event loop does between two events.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return Call(target, "relative").errorName() != "org.freedesktop.DBus.Error.UnknownObject";
    }

    std::unique_ptr<QWidget> source = std::make_unique<QWidget>();
    std::vector<std::string> folders;
};

TEST_F(PromisedFileDragTest, OffersPromisesAndNoFiles) {
    Target target;
    Drag(target);
    EXPECT_EQ(target.formats, (QStringList{"application/x-kde-ark-dndextract-service",
                                           "application/x-kde-ark-dndextract-path"}));
}

TEST_F(PromisedFileDragTest, ReportsTheFolderOnce) {
    Target target;
    Drag(target);
    EXPECT_EQ(Call(target, "/home/me").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(Call(target, "/home/other").type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(WaitFor([&] { return !folders.empty(); }));
    RunLoopPasses(10);
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(PromisedFileDragTest, AnswersTheTargetBeforeTheWorkBegins) {
    Target target;
    std::optional<QDBusPendingCall> pending;
    std::optional<bool> answered;
    const auto work = [&](const std::string&) {
        // The work runs the event loop too; the target must not have to wait for it.
        answered = WaitFor([&] { return pending->isFinished(); });
    };
    PromisedFileDrag::Run(*source, "first.wav", work, [&target](QDrag& drag) { return target.Exec(drag); });
    QDBusMessage call = QDBusMessage::createMethodCall(target.service, target.path, "org.kde.ark.DndExtract",
                                                       "extractSelectedFilesTo");
    call.setArguments({"/home/me"});
    pending = SessionBus().Connect("target").asyncCall(call);
    ASSERT_TRUE(WaitFor([&] { return answered.has_value(); }));
    EXPECT_TRUE(*answered);
}

TEST_F(PromisedFileDragTest, SaysInTheLogThatNoFolderWasNamed) {
    Target target;
    ::testing::internal::CaptureStdout();
    Drag(target);
    EndPatience();
    const bool isGone = WaitFor([&] { return !IsOnTheBus(target); });
    EXPECT_THAT(::testing::internal::GetCapturedStdout(), HasSubstr(kLogLine));
    EXPECT_TRUE(isGone) << "the offer is still on the bus";
    EXPECT_THAT(folders, IsEmpty());
}

TEST_F(PromisedFileDragTest, SaysNothingWhenAFolderWasNamed) {
    Target target;
    ::testing::internal::CaptureStdout();
    Drag(target);
    EXPECT_EQ(Call(target, "/home/me").type(), QDBusMessage::ReplyMessage);
    EndPatience();
    const bool isGone = WaitFor([&] { return !IsOnTheBus(target); });
    EXPECT_THAT(::testing::internal::GetCapturedStdout(), Not(HasSubstr(kLogLine)));
    EXPECT_TRUE(isGone) << "the offer is still on the bus";
}

TEST_F(PromisedFileDragTest, LeavesNothingBehindWhenRefused) {
    Target target;
    target.action = Qt::IgnoreAction;
    ::testing::internal::CaptureStdout();
    Drag(target);
    EXPECT_EQ(source->findChild<QTimer*>(), nullptr) << "waits for a folder";
    const bool isOnTheBus = IsOnTheBus(target);
    EXPECT_THAT(::testing::internal::GetCapturedStdout(), Not(HasSubstr(kLogLine)));
    EXPECT_FALSE(isOnTheBus);
    EXPECT_THAT(folders, IsEmpty());
}

TEST_F(PromisedFileDragTest, EndsWithItsSource) {
    Target target;
    Drag(target);
    source.reset();
    EXPECT_FALSE(IsOnTheBus(target));
    RunLoopPasses(10);
    EXPECT_THAT(folders, IsEmpty());
}

} // namespace
