#include "DirectSave.h"
#include "LocalUrl.h"
#include "XdndProperty.h"

#include <QtCore/QSysInfo>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using namespace std::string_literals;

/// The property as the test, in the place of the target, reads and writes it.
class ScriptedProperty : public DirectSaveProperty {
public:
    explicit ScriptedProperty(std::string* text, bool hasSource = true)
        : mpText(text), mHasSource(hasSource) {}

    bool SetPromise(const std::string& zName) override {
        *mpText = mHasSource ? zName : *mpText;
        return mHasSource;
    }

    std::string ReadPromise() override { return *mpText; }

private:
    std::string* mpText;
    bool mHasSource;
};

class DirectSaveTest : public ::testing::Test {
protected:
    DirectSave Make(const std::string& name, bool hasSource = true) {
        return DirectSave(std::make_unique<ScriptedProperty>(&property, hasSource), name,
                          [this](const std::string& folder) { folders.push_back(folder); });
    }

    /// A drag that was dropped, and whose target writes this URL and asks.
    QByteArray AnswerTo(const std::string& url) {
        DirectSave way = Make("first.wav");
        way.OnStarted();
        way.OnDropped();
        property = url;
        return way.Data("XdndDirectSave0");
    }

    std::string property;
    std::vector<std::string> folders;
};

TEST_F(DirectSaveTest, OffersItsFormatAlone) {
    EXPECT_EQ(Make("first.wav").Formats(), QStringList{"XdndDirectSave0"});
}

TEST_F(DirectSaveTest, PromisesTheFirstNameOnceTheDragHasStarted) {
    DirectSave way = Make("gämma ü%20.wav");
    EXPECT_EQ(property, "");
    way.OnStarted();
    EXPECT_EQ(property, "gämma ü%20.wav");
}

TEST_F(DirectSaveTest, PromisesOnlyWhatAFileCanBeCalled) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a/b//c", "a_b__c"}, {"/", "_"},  {"a\0b"s, "a_b"}, {"", "_"},
        {".", "_"},           {"..", "_"}, {"...", "..."}};
    for (const auto& [name, promised] : cases) {
        Make(name).OnStarted();
        EXPECT_EQ(property, promised) << name;
    }
}

TEST_F(DirectSaveTest, TakesTheFolderOfTheUrl) {
    EXPECT_EQ(AnswerTo("file:///home/me/Music/first.wav"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me/Music"));
}

TEST_F(DirectSaveTest, TakesTheFolderWhateverTheLeafIsCalled) {
    EXPECT_EQ(AnswerTo("file:///home/me/Music/something%2Delse"), "S");
    EXPECT_EQ(AnswerTo("file:///first.wav"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me/Music", "/"));
}

TEST_F(DirectSaveTest, DropsZeroBytesAtTheEnd) {
    EXPECT_EQ(AnswerTo("file:///home/me/first.wav\0"s), "S");
    EXPECT_EQ(AnswerTo("file:///home/you/first.wav\0\0"s), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me", "/home/you"));
}

TEST_F(DirectSaveTest, DecodesPercentSignsOnce) {
    EXPECT_EQ(AnswerTo("file:///tmp/z%C3%B6l%20%231%2520%20%3Fx/g%C3%A4mma.wav"), "S");
    EXPECT_EQ(AnswerTo("file:///tmp/it's%20a%26b/x"), "S");
    EXPECT_EQ(AnswerTo("file:///tmp/zöl/x"), "S");
    EXPECT_EQ(AnswerTo("file:///tmp/not%FFutf8/x"), "S");
    EXPECT_THAT(folders, ElementsAre("/tmp/zöl #1%20 ?x", "/tmp/it's a&b", "/tmp/zöl", "/tmp/not\xffutf8"));
}

TEST_F(DirectSaveTest, AcceptsTheNamesOfThisMachine) {
    EXPECT_EQ(AnswerTo("file://localhost/home/a/x"), "S");
    EXPECT_EQ(AnswerTo("file://" + QSysInfo::machineHostName().toStdString() + "/home/b/x"), "S");
    EXPECT_EQ(AnswerTo("file:/home/c/x"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/a", "/home/b", "/home/c"));
}

TEST_F(DirectSaveTest, RefusesWhatIsNoLocalFile) {
    for (const auto& url : {"file://elsewhere.example/home/me/x"s, "http://localhost/home/me/x"s,
                            "sftp:///home/me/x"s, "trash:/x"s, "file:home/me/x"s, "file:"s, "file://"s,
                            "file:///home/me%00/x"s, "file:///home/#me/x"s, "file:///home/?me/x"s}) {
        EXPECT_EQ(AnswerTo(url), "E") << url;
    }
    EXPECT_THAT(folders, IsEmpty());
}

TEST_F(DirectSaveTest, AnswersNothingWhileTheDragHovers) {
    for (const auto& name : {"first.wav"s, "file:///home/me/x"s, "http:name"s, "50% off: a name"s}) {
        DirectSave way = Make(name);
        way.OnStarted();
        EXPECT_EQ(way.Data("XdndDirectSave0"), "") << name;
        way.OnDropped();
        EXPECT_EQ(way.Data("XdndDirectSave0"), "") << name;
    }
    EXPECT_THAT(folders, IsEmpty());
}

TEST_F(DirectSaveTest, AnswersNothingToAPropertyWithoutUrl) {
    for (const auto& text : {""s, "\0"s, "/home/me/x"s, "other name"s}) {
        EXPECT_EQ(AnswerTo(text), "") << text;
    }
    EXPECT_THAT(folders, IsEmpty());
}

TEST_F(DirectSaveTest, StillTakesTheDropAfterRequestsInTheHover) {
    DirectSave way = Make("first.wav");
    way.OnStarted();
    EXPECT_EQ(way.Data("XdndDirectSave0"), "");
    EXPECT_EQ(way.Data("XdndDirectSave0"), "");
    property = "file:///home/me/first.wav";
    EXPECT_EQ(way.Data("XdndDirectSave0"), "") << "not dropped yet";
    EXPECT_THAT(folders, IsEmpty());
    way.OnDropped();
    EXPECT_EQ(way.Data("XdndDirectSave0"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(DirectSaveTest, StartsOnceHoweverOftenItIsAsked) {
    DirectSave way = Make("first.wav");
    way.OnStarted();
    way.OnDropped();
    property = "file:///home/me/first.wav";
    EXPECT_EQ(way.Data("XdndDirectSave0"), "S");
    EXPECT_EQ(way.Data("XdndDirectSave0"), "S");
    property = "file:///home/other/first.wav";
    EXPECT_EQ(way.Data("XdndDirectSave0"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(DirectSaveTest, TakesALocalUrlAfterARefusedOne) {
    DirectSave way = Make("first.wav");
    way.OnStarted();
    way.OnDropped();
    property = "http://elsewhere.example/x";
    EXPECT_EQ(way.Data("XdndDirectSave0"), "E");
    property = "file:///home/me/first.wav";
    EXPECT_EQ(way.Data("XdndDirectSave0"), "S");
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(DirectSaveTest, TakesNoUrlThatAFormerDragLeft) {
    property = "file:///home/me/former.wav";
    DirectSave notStarted = Make("first.wav");
    notStarted.OnDropped();
    EXPECT_EQ(notStarted.Data("XdndDirectSave0"), "");
    DirectSave withoutSource = Make("first.wav", false);
    withoutSource.OnStarted();
    withoutSource.OnDropped();
    EXPECT_EQ(withoutSource.Data("XdndDirectSave0"), "");
    EXPECT_THAT(folders, IsEmpty());
}

TEST(XdndProperty, IsNotThereWithoutX11) {
    EXPECT_EQ(XdndProperty::Make(), nullptr);
}

} // namespace
