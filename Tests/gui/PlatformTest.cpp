#include "Browser.h"
#include "Hermetic.h"
#include "TerminationSignals.h"
#include "UserGuide.h"
#include "WaitFor.h"
#include "WidgetText.h"

#include <QtCore/QTranslator>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <gtest/gtest.h>

namespace {

// --- TerminationSignals ---

/// Puts a handler in place for the time of a test.
class FormerHandler {
public:
    FormerHandler(int zSignal, void (*zHandler)(int)) : mSignal(zSignal) {
        struct sigaction action = {};
        action.sa_handler = zHandler;
        ::sigaction(zSignal, &action, &mFormer);
    }

    ~FormerHandler() { ::sigaction(mSignal, &mFormer, nullptr); }

    FormerHandler(const FormerHandler&) = delete;
    FormerHandler& operator=(const FormerHandler&) = delete;

    bool IsInPlace(void (*zHandler)(int)) const {
        struct sigaction now = {};
        ::sigaction(mSignal, nullptr, &now);
        return now.sa_handler == zHandler;
    }

private:
    int mSignal;
    struct sigaction mFormer = {};
};

volatile std::sig_atomic_t sNoted = 0;

void NoteFormer(int /*zSignal*/) {
    sNoted = 1;
}

class TerminationSignal : public ::testing::TestWithParam<int> {};

TEST_P(TerminationSignal, IsHandledOnTheEventLoop) {
    const FormerHandler former(GetParam(), NoteFormer);
    int calls = 0;
    {
        const TerminationSignals watch([&] { ++calls; });
        ASSERT_EQ(::raise(GetParam()), 0);
        EXPECT_EQ(calls, 0) << "called from the handler itself";
        EXPECT_TRUE(WaitFor([&] { return calls > 0; }));
    }
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(former.IsInPlace(NoteFormer));
}

TEST_P(TerminationSignal, StaysIgnoredWhereItWasIgnored) {
    const FormerHandler former(GetParam(), SIG_IGN);
    int calls = 0;
    const TerminationSignals watch([&] { ++calls; });
    EXPECT_TRUE(former.IsInPlace(SIG_IGN));
    ASSERT_EQ(::raise(GetParam()), 0);
    RunLoopPasses(3);
    EXPECT_EQ(calls, 0);
}

INSTANTIATE_TEST_SUITE_P(All, TerminationSignal, ::testing::ValuesIn(TerminationSignals::kSignals));

TEST(TerminationSignals, ManySignalsWakeTheLoopOnlyAsOftenAsItLooks) {
    const FormerHandler former(SIGTERM, NoteFormer);
    int calls = 0;
    const TerminationSignals watch([&] { ++calls; });
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(::raise(SIGTERM), 0);
    }
    EXPECT_TRUE(WaitFor([&] { return calls > 0; }));
    RunLoopPasses(3);
    EXPECT_EQ(calls, 1);
}

TEST(TerminationSignals, TheCallMayEndTheObject) {
    const FormerHandler former(SIGTERM, NoteFormer);
    bool called = false;
    std::unique_ptr<TerminationSignals> watch;
    watch = std::make_unique<TerminationSignals>([&] {
        watch.reset();
        called = true;
    });
    ASSERT_EQ(::raise(SIGTERM), 0);
    EXPECT_TRUE(WaitFor([&] { return called; }));
    EXPECT_TRUE(former.IsInPlace(NoteFormer));
}

// --- WidgetText ---

struct sTextCase {
    const char* name;
    std::string bytes;
    QString shown;
};

class WidgetText : public ::testing::TestWithParam<sTextCase> {};

TEST_P(WidgetText, IsShown) {
    EXPECT_EQ(ToWidgetText(GetParam().bytes), GetParam().shown);
}

// NOLINTBEGIN(misc-misleading-bidirectional): that is what these are about
const std::vector<sTextCase> kTextCases = {
    {"Empty", "", QString()},
    {"Plain", "Kick 01.wav", QStringLiteral("Kick 01.wav")},
    {"Utf8", "gr\xC3\xBC\xC3\x9F \xF0\x9F\x8E\xB5", QStringLiteral(u"gr\u00FC\u00DF \U0001F3B5")},
    {"TwoSpaces", "replaced.  Do", QStringLiteral("replaced.  Do")},
    {"CutTwoByteCharacter", "abc\xC3", QStringLiteral("abc")},
    {"CutThreeByteCharacter", "abc\xE2\x82", QStringLiteral("abc")},
    {"CutFourByteCharacter", "abc\xF0\x9F\x8E", QStringLiteral("abc")},
    {"OnlyACutCharacter", "\xE2", QString()},
    {"InvalidByte", "a\xFFz", QStringLiteral(u"a\uFFFDz")},
    {"InvalidLastByte", "a\xFF", QStringLiteral(u"a\uFFFD")},
    {"BrokenInTheMiddle", "a\xC3z", QStringLiteral(u"a\uFFFDz")},
    {"LineFeed", "a\nb", QStringLiteral(u"a\u240Ab")},
    {"TabAndReturn", "a\t\rb", QStringLiteral(u"a\u2409\u240Db")},
    {"ZeroByte", std::string("a\0b", 3), QStringLiteral(u"a\u2400b")},
    {"Escape", "\x1B[0m", QStringLiteral(u"\u241B[0m")},
    {"Delete", "a\x7F", QStringLiteral(u"a\u2421")},
    {"LaterControl", "a\xC2\x85z", QStringLiteral(u"a\uFFFDz")},
    {"LineSeparator", "a\xE2\x80\xA8z", QStringLiteral(u"a\uFFFDz")},
    {"RightToLeftOverride",
     "a\xE2\x80\xAE"
     "gnp.wav",
     QStringLiteral(u"a\uFFFDgnp.wav")},
    {"Isolate", "a\xE2\x81\xA6z", QStringLiteral(u"a\uFFFDz")},
    {"Markup", "<b>a</b> & %s", QStringLiteral("<b>a</b> & %s")},
};
// NOLINTEND(misc-misleading-bidirectional)

INSTANTIATE_TEST_SUITE_P(Cases, WidgetText, ::testing::ValuesIn(kTextCases),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST(WidgetTextEdge, WhatIsTypedComesBackAsUtf8) {
    EXPECT_EQ(FromWidgetText(QStringLiteral(u"gr\u00FC\u00DF \U0001F3B5")),
              "gr\xC3\xBC\xC3\x9F \xF0\x9F\x8E\xB5");
    EXPECT_EQ(FromWidgetText(QString()), "");
}

class OneWord : public QTranslator {
public:
    QString translate(const char* zContext, const char* zSource, const char* /*zDisambiguation*/,
                      int /*zNumber*/) const override {
        return QByteArray(zContext) == "Quillbox" && QByteArray(zSource) == "No" ? QStringLiteral(u"N\u00E3o")
                                                                                 : QString();
    }

    bool isEmpty() const override { return false; }
};

TEST(WidgetTextEdge, ATranslationIsLookedUpByItsEnglishText) {
    OneWord translator;
    ASSERT_TRUE(QCoreApplication::installTranslator(&translator));
    EXPECT_EQ(Translated("No"), "N\xC3\xA3o");
    EXPECT_EQ(Translated(std::string("No")), "N\xC3\xA3o");
    EXPECT_EQ(Translated("Yes"), "Yes");
    QCoreApplication::removeTranslator(&translator);
    EXPECT_EQ(Translated("No"), "No");
}

TEST(WidgetTextEdge, WhatFillsATextIsWholeHoweverLong) {
    const std::string name(3000, '%');
    EXPECT_EQ(Filled("Connected to '%s'", name.c_str()), "Connected to '" + name + "'");
    EXPECT_EQ(Filled("File %d of %d", 3, 20), "File 3 of 20");
    EXPECT_EQ(Filled("%s - %s", "\xFF\xC3", "\xE2\x82"), "\xFF\xC3 - \xE2\x82");
    EXPECT_EQ(Filled("%s", ""), "");
}

TEST(WidgetTextEdge, WithoutATranslationTheBytesStay) {
    EXPECT_EQ(Translated(std::string("cut off \xE2\x82")), "cut off \xE2\x82");
    EXPECT_EQ(Translated(""), "");
}

// --- The user guide ---

TEST(UserGuide, WhereThereIsNoneThatIsSaidAndLogged) {
    const Browser browser;
    const TestFolder folder;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(OpenUserGuide(QString::fromStdString(folder / "bin")),
              "It was not found. Installing Quillbox again brings it back.");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "User guide not found\n");
    EXPECT_TRUE(browser.Opened().isEmpty());
}

TEST(UserGuide, WithoutABrowserItsPlaceIsSaid) {
    // On this platform of the toolkit nothing opens addresses unless a test does.
    const TestFolder folder;
    const std::string guide = folder.Write("share/doc/quillbox/user-guide.html", "<h1>Guide</h1>");
    std::filesystem::create_directory(folder / "bin");
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(OpenUserGuide(QString::fromStdString(folder / "bin")),
              "No web browser could be started. The guide is the file '" + guide + "'.");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "User guide cannot be opened\n");
}

TEST(UserGuide, OpensTheOneOfTheDataFolders) {
    const TestFolder folder;
    const QByteArray former = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(folder.Path().string()));
    const std::string guide = folder.Write("doc/quillbox/user-guide.html", "<h1>Guide</h1>");
    const Browser browser;
    EXPECT_EQ(OpenUserGuide(QString::fromStdString(folder / "bin")), "");
    qputenv("XDG_DATA_HOME", former);
    ASSERT_EQ(browser.Opened().size(), 1);
    EXPECT_EQ(browser.Opened().first(), QUrl::fromLocalFile(QString::fromStdString(guide)));
}

TEST(UserGuide, OpensTheOneBesideTheProgramFirst) {
    const TestFolder folder;
    const std::string guide = folder.Write("share/doc/quillbox/user-guide.html", "<h1>Guide</h1>");
    std::filesystem::create_directory(folder / "bin");
    const Browser browser;
    OpenUserGuide(QString::fromStdString(folder / "bin"));
    ASSERT_EQ(browser.Opened().size(), 1);
    EXPECT_EQ(browser.Opened().first(), QUrl::fromLocalFile(QString::fromStdString(guide)));
}

} // namespace
