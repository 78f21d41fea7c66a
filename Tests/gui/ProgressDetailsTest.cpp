#include "ProgressDetails.h"
#include "ProgressController.h"
#include "Translation.h"
#include "WidgetDriver.h"

#include <QtCore/QLocale>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using ::testing::EndsWith;

constexpr std::uint64_t kMiB = 1 << 20;
constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

/// Texts in a language, numbers included.
class InLanguage {
public:
    explicit InLanguage(const QString& zLanguage) : mTranslation(QStringList{zLanguage}) {
        QLocale::setDefault(zLanguage.isEmpty() ? QLocale::c() : QLocale(zLanguage));
    }

    ~InLanguage() { QLocale::setDefault(QLocale::c()); }

    InLanguage(const InLanguage&) = delete;
    InLanguage& operator=(const InLanguage&) = delete;

private:
    Translation mTranslation;
};

struct sTimeText {
    std::chrono::seconds time;
    const char* text;
};

TEST(TimeLeft, IsSaidAsPeopleSayIt) {
    const std::array<sTimeText, 24> cases = {{
        {0s, "a few seconds left"},      {10s, "a few seconds left"},
        {11s, "about 10 seconds left"},  {15s, "about 20 seconds left"},
        {44s, "about 40 seconds left"},  {54s, "about 50 seconds left"},
        {55s, "about a minute left"},    {89s, "about a minute left"},
        {90s, "about 2 minutes left"},   {149s, "about 2 minutes left"},
        {150s, "about 3 minutes left"},  {569s, "about 9 minutes left"},
        {599s, "about 10 minutes left"}, {745s, "about 10 minutes left"},
        {750s, "about 15 minutes left"}, {54min, "about 55 minutes left"},
        {55min, "about an hour left"},   {89min, "about an hour left"},
        {90min, "about 2 hours left"},   {149min, "about 2 hours left"},
        {23h, "about 23 hours left"},    {24h, "more than a day left"},
        {8766h, "more than a day left"}, {1'000'000'000s, "more than a day left"},
    }};
    for (const sTimeText& row : cases) {
        EXPECT_EQ(TimeLeftText(row.time), row.text) << row.time.count();
    }
}

TEST(TimeLeft, HasNoTextWithoutATranslation) {
    const std::vector<std::chrono::seconds> times = {1s, 30s, 1min, 20min, 1h, 5h, 30h};
    std::set<std::string> texts;
    for (const char* language : {"", "de", "fr"}) {
        const InLanguage speaker(QString::fromLatin1(language));
        for (const auto time : times) {
            texts.insert(TimeLeftText(time));
        }
    }
    EXPECT_EQ(texts.size(), 3 * times.size());
}

TEST(TimeLeft, HasPluralsInGermanAndFrench) {
    {
        const InLanguage german("de");
        EXPECT_EQ(TimeLeftText(2min), "noch etwa 2 Minuten");
        EXPECT_EQ(TimeLeftText(30s), "noch etwa 30 Sekunden");
        EXPECT_EQ(TimeLeftText(3h), "noch etwa 3 Stunden");
    }
    const InLanguage french("fr");
    EXPECT_EQ(TimeLeftText(2min), "environ 2 minutes restantes");
}

/// A progress window at a time that the test makes.
class ProgressDetailsLine : public ::testing::Test {
protected:
    void SetUp() override {
        mController.UseClock([this] { return mNow; });
        mController.Init("Uploading files");
    }

    QLabel& Line() { return Control<QLabel>(mController, "Details"); }

    /// What it shows of an amount, which assistive tools are told as well.
    std::string Show(std::uint64_t zDone, std::uint64_t zTotal) {
        mController.SetAmount(zDone, zTotal);
        mController.ShowNow();
        EXPECT_EQ(Line().text(), Line().accessibleDescription());
        EXPECT_EQ(Line().isVisibleTo(&mController), !Line().text().isEmpty());
        return Line().text().toStdString();
    }

    /// The same after some seconds at a rate.
    std::string ShowAfter(int zSeconds, std::uint64_t zRate, std::uint64_t zTotal) {
        for (int second = 0; second < zSeconds; ++second) {
            Show(mDone, zTotal);
            mNow += 1s;
            mDone += zRate;
        }
        return Show(mDone, zTotal);
    }

    ProgressController mController{nullptr};
    std::chrono::milliseconds mNow = 77s;
    std::uint64_t mDone = 0;
};

TEST_F(ProgressDetailsLine, TellsMoreAsItKnowsMore) {
    EXPECT_EQ(Show(0, 100 * kMiB), "0 bytes of 100.0 MiB");
    EXPECT_EQ(ShowAfter(1, kMiB, 100 * kMiB), "1.0 MiB of 100.0 MiB · 1.0 MiB/s");
    EXPECT_EQ(ShowAfter(3, kMiB, 100 * kMiB), "4.0 MiB of 100.0 MiB · 1.0 MiB/s · about 2 minutes left");
    EXPECT_EQ(ShowAfter(50, kMiB, 100 * kMiB), "54.0 MiB of 100.0 MiB · 1.0 MiB/s · about 50 seconds left");
    EXPECT_EQ(ShowAfter(40, kMiB, 100 * kMiB), "94.0 MiB of 100.0 MiB · 1.0 MiB/s · a few seconds left");
    EXPECT_EQ(ShowAfter(6, kMiB, 100 * kMiB), "100.0 MiB of 100.0 MiB · 1.0 MiB/s");
}

TEST_F(ProgressDetailsLine, IsInThePersonsLanguage) {
    const InLanguage german("de");
    EXPECT_EQ(ShowAfter(4, kMiB / 2, 100 * kMiB),
              "2,0 MiB von 100,0 MiB · 512,0 KiB/s · noch etwa 3 Minuten");
}

TEST_F(ProgressDetailsLine, IsHiddenWhereTheWholeIsUnknownOrWrong) {
    EXPECT_EQ(Show(0, 0), "");
    EXPECT_EQ(ShowAfter(5, kMiB, 0), "");
    EXPECT_EQ(Show(6 * kMiB, 5 * kMiB), "");
    EXPECT_THAT(ShowAfter(5, kMiB, 100 * kMiB), EndsWith(" left"));
    EXPECT_EQ(Show(101 * kMiB, 100 * kMiB), "");
}

TEST_F(ProgressDetailsLine, NoNumberIsTooLarge) {
    EXPECT_EQ(ShowAfter(4, kMost / 8, kMost), "8.0 EiB of 8.0 EiB · 2.0 EiB/s · a few seconds left");
    EXPECT_EQ(Show(kMost, kMost).find('-'), std::string::npos);
}

TEST_F(ProgressDetailsLine, SaysThatNothingMovesThoughTheAmountStaysTheSame) {
    ShowAfter(10, kMiB, 100 * kMiB);
    EXPECT_TRUE(WaitFor([this] { // asked as often as while the program waits for the device
        mNow += 100ms;
        mController.SetAmount(mDone, 100 * kMiB);
        return Line().text() == QStringLiteral("10.0 MiB of 100.0 MiB · 0 bytes/s");
    }));
}

TEST_F(ProgressDetailsLine, ANewOperationBeginsAnew) {
    ShowAfter(10, kMiB, 100 * kMiB);
    mController.Init("Uploading files");
    EXPECT_EQ(Show(20 * kMiB, 100 * kMiB), "20.0 MiB of 100.0 MiB");
}

// --- Room ---

TEST_F(ProgressDetailsLine, ChangesNeitherTheWindowNorWhatIsInIt) {
    for (const int points : {mController.font().pointSize(), 20}) {
        QFont font = mController.font();
        font.setPointSize(points);
        mController.setFont(font);
        mController.Init("Uploading files");
        ShowActive(mController);
        const QWidget& button = Control<QPushButton>(mController, "Cancel");
        const QRect window = mController.geometry();
        const QRect place = button.geometry();
        mDone = 0;
        EXPECT_THAT(ShowAfter(5, kMiB, 100 * kMiB), EndsWith(" left"));
        RunLoopPasses(10);
        EXPECT_EQ(mController.geometry(), window) << points << " points";
        EXPECT_EQ(button.geometry(), place) << points << " points";
        mController.close();
    }
}

TEST_F(ProgressDetailsLine, TheLongestTextIsNotCut) {
    for (const char* language : {"", "de", "fr"}) {
        const InLanguage speaker(QString::fromLatin1(language));
        mController.Init("Uploading files");
        ShowActive(mController);
        mDone = 1002 * kMiB;
        const std::string text = ShowAfter(4, kMiB / 2, 1023 * kMiB);
        EXPECT_GT(text.size(), 60U) << text;
        const int room = Line().contentsRect().width();
        EXPECT_GE(room, Line().fontMetrics().horizontalAdvance(Line().text())) << text;
    }
}

} // namespace
