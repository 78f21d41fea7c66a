#include "Attention.h"
#include "ClientProbe.h"
#include "DownloadFixture.h"

#include <QtWidgets/QApplication>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <memory>

namespace {

using namespace std::chrono_literals;

/// How long it takes, at the most, until people are called back: twice the second that it may.
constexpr auto kBeforeCall = 2s;

// --- By itself ---

class AttentionAfter : public ::testing::Test {
protected:
    /// An operation, or a stage of it.
    void Operate(std::chrono::milliseconds zTime) {
        mAttention.Begin();
        mNow += zTime;
        mAttention.End();
    }

    void ExpectCall() {
        EXPECT_TRUE(WaitFor([this] { return mCalls > 0; }));
        RunLoopFor(kBeforeCall);
        EXPECT_EQ(mCalls, 1);
    }

    void ExpectNoCall() {
        RunLoopFor(kBeforeCall);
        EXPECT_EQ(mCalls, 0);
    }

    int mCalls = 0;
    std::chrono::milliseconds mNow = 4711s;
    Attention mAttention{[this] { ++mCalls; }, [this] { return mNow; }};
};

TEST_F(AttentionAfter, ALongOperationThatNobodySeesEnding) {
    Operate(10s);
    ExpectCall();
}

TEST_F(AttentionAfter, AShortOperationIsNotAsked) {
    Operate(9999ms);
    ExpectNoCall();
}

TEST_F(AttentionAfter, ALongOperationIsNotAskedOfPeopleWhoLook) {
    QWidget window;
    ShowActive(window);
    Operate(1h);
    ExpectNoCall();
}

TEST_F(AttentionAfter, AWindowThatBecomesActiveAtTheEndIsLookedAt) {
    QWidget window;
    ShowActive(window);
    QApplication::setActiveWindow(nullptr);
    Operate(1h);
    QApplication::setActiveWindow(&window);
    ExpectNoCall();
}

TEST_F(AttentionAfter, StagesAreOneOperation) {
    Operate(6s);
    Operate(6s);
    ExpectCall();
}

TEST_F(AttentionAfter, AStageThatGoesOnIsNoEnd) {
    Operate(1h);
    mAttention.Begin();
    ExpectNoCall();
    mAttention.End();
    ExpectCall();
}

TEST_F(AttentionAfter, TwoOperationsAreNotOne) {
    Operate(6s);
    ExpectNoCall();
    Operate(6s);
    ExpectNoCall();
}

TEST_F(AttentionAfter, AnEndWithoutABeginIsNothing) {
    mAttention.End();
    ExpectNoCall();
}

// --- In the program ---

class AttentionOfTheProgram : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFile("a.wav", "content");
        AnswerPartly("a.wav", "content", 3);
        Connect();
        ControllerProbe::UseAttention(
            mController, std::make_unique<Attention>([this] { ++mCalls; }, [this] { return mNow; }));
    }

    /// Downloads the file, of which the second half comes that late.
    void DownloadFor(std::chrono::milliseconds zTime) {
        Meanwhile meanwhile;
        meanwhile.WhenShown(ProgressTitle(), [this, zTime](QWidget&) {
            mNow += zTime;
            SendRest("a.wav");
        });
        Download({"a.wav"});
    }

    int mCalls = 0;
    std::chrono::milliseconds mNow{};
};

TEST_F(AttentionOfTheProgram, IsAskedForAfterALongDownload) {
    DownloadFor(10s);
    QApplication::setActiveWindow(nullptr);
    EXPECT_TRUE(WaitFor([this] { return mCalls > 0; }));
}

TEST_F(AttentionOfTheProgram, IsAskedForWhileAMessageTellsWhyItFailed) {
    mAnswersAlerts = false;
    Meanwhile meanwhile;
    meanwhile
        .WhenShown(ProgressTitle(),
                   [this](QWidget&) {
                       mNow += 10s;
                       mDevice.ResetConnection();
                   })
        .When(
            "the active message",
            [] { return WindowInFront(kFailed) != nullptr && QApplication::activeWindow() != nullptr; },
            [] { QApplication::setActiveWindow(nullptr); })
        .When("the call", [this] { return mCalls > 0; })
        .Answer(kFailed, "OK");
    Download({"a.wav"});
}

TEST_F(AttentionOfTheProgram, IsNotAskedForAfterAShortDownloadNorForPeopleWhoLook) {
    DownloadFor(9s);
    QApplication::setActiveWindow(nullptr);
    RunLoopFor(kBeforeCall);
    EXPECT_EQ(mCalls, 0);
    std::filesystem::remove(mFolder / "a.wav");
    DownloadFor(10s);
    QApplication::setActiveWindow(&mWindow);
    RunLoopFor(kBeforeCall);
    EXPECT_EQ(mCalls, 0);
}

} // namespace
