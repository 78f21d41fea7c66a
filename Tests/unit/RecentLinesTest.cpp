#include "RecentLines.h"

#include "CommonUtils.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

constexpr std::size_t kLongest = cRecentLines::kLongestLine;

std::vector<std::string> LinesOf(std::string_view zText) {
    cRecentLines recent;
    recent.Add(zText);
    return recent.Lines();
}

// --- Lines ---

TEST(RecentLines, EndAtLineFeedsHoweverTheyArrive) {
    EXPECT_THAT(LinesOf(""), IsEmpty());
    EXPECT_THAT(LinesOf("one\ntwo\n"), ElementsAre("one", "two"));
    EXPECT_THAT(LinesOf("\n\nthree\n"), ElementsAre("", "", "three"));
    EXPECT_THAT(LinesOf("one\ntw"), ElementsAre("one", "tw"));
    const std::string text = "first line\n\nlast\nopen";
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        cRecentLines recent;
        recent.Add(text.substr(0, cut));
        recent.Add(text.substr(cut));
        EXPECT_THAT(recent.Lines(), ElementsAre("first line", "", "last", "open")) << cut;
    }
}

TEST(RecentLines, AreTheLastOnesFromOldToNew) {
    cRecentLines recent;
    for (std::size_t number = 1; number <= 3 * cRecentLines::kLines + 7; ++number) {
        recent.Add(std::to_string(number) + '\n');
        const std::vector<std::string> lines = recent.Lines();
        ASSERT_THAT(lines, SizeIs(std::min(number, cRecentLines::kLines)));
        EXPECT_EQ(lines.back(), std::to_string(number));
        EXPECT_EQ(lines.front(), std::to_string(number - lines.size() + 1));
    }
    recent.Add("open");
    EXPECT_THAT(recent.Lines(), SizeIs(cRecentLines::kLines));
    EXPECT_EQ(recent.Lines().back(), "open");
}

TEST(RecentLines, AShortOneTakesTheWholePlaceOfALongOne) {
    cRecentLines recent;
    recent.Add(std::string(300, 'x') + '\n');
    for (std::size_t i = 0; i < cRecentLines::kLines; ++i) {
        recent.Add("y\n");
    }
    EXPECT_THAT(recent.Lines(), ::testing::Each("y"));
}

// --- Hostile texts ---

TEST(RecentLines, OneThatIsTooLongIsCut) {
    const std::string most(kLongest, 'x');
    EXPECT_THAT(LinesOf(most + "\nnext"), ElementsAre(most, "next"));
    EXPECT_THAT(LinesOf(most + "y\nnext"), ElementsAre(most + "\u2026", "next"));
    EXPECT_THAT(LinesOf(most + most + most + "\nnext"), ElementsAre(most + "\u2026", "next"));
}

TEST(RecentLines, AreCutBetweenCharacters) {
    for (const std::string character : {"\u00e9", "\u20ac", "\U0001F600"}) {
        for (std::size_t before = 0; before < 4; ++before) {
            std::string kept(before, '.');
            while (kept.size() + character.size() <= kLongest) {
                kept += character;
            }
            EXPECT_THAT(LinesOf(kept + character + character), ElementsAre(kept + "\u2026"))
                << character << before;
        }
    }
}

TEST(RecentLines, AnEndlessOneTakesNoMoreThanItsPlace) {
    cRecentLines recent;
    const std::string much(1U << 20U, 'x');
    for (int i = 0; i < 1000; ++i) {
        recent.Add(much);
        recent.Add("y");
    }
    recent.Add("\nnext\n");
    EXPECT_THAT(recent.Lines(), ElementsAre(std::string(kLongest, 'x') + "\u2026", "next"));
}

TEST(RecentLines, AreReadableWhateverTheBytes) {
    using namespace std::string_view_literals;
    EXPECT_THAT(LinesOf("a\0b\tc\x1b[31m\r\n"sv), ElementsAre("a?b?c?[31m?"));
    EXPECT_THAT(LinesOf("\xFF\xC3(\n"), ElementsAre("\uFFFD\uFFFD("));
    const std::vector<std::string> broken = LinesOf(std::string(5000, '\x80'));
    ASSERT_THAT(broken, SizeIs(1));
    EXPECT_THAT(broken[0], MatchesRegex("(\uFFFD)+\u2026"));
}

// --- The program's log ---

TEST(RecentLog, HoldsWhatHasBeenWritten) {
    DebugPrint("\n"); // ends what others have begun
    DebugPrintf("New device host: %s\n", "10.0.0.1");
    DebugPrint("100% %s\n");
    DebugPrint(std::string("written\0not written\n", 20));
    DebugPrint(" either\n");
    std::vector<std::string> lines = RecentLog().Lines();
    ASSERT_THAT(lines, SizeIs(Ge(3U)));
    lines.erase(lines.begin(), lines.end() - 3);
    EXPECT_THAT(lines, ElementsAre("New device host: 10.0.0.1", "100% %s", "written either"));
}

} // namespace
