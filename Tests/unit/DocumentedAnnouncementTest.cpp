// What docs/protocol.md shows of an announcement is what the program hears.

#include "Announcement.h"
#include "WireExamples.h"

#include <gtest/gtest.h>

namespace {

TEST(DocumentedAnnouncement, IsUnderstood) {
    std::string heard;
    EXPECT_TRUE(ParseAnnouncements(WireExamples().at("announcement").received, [&](const Announcement& next) {
        heard += next.name + "|" + next.optionName + "|" + std::to_string(next.port) + "\n";
    }));
    EXPECT_EQ(heard, std::string("Field recorder|") + kDeviceService + "|10240\n");
}

} // namespace
