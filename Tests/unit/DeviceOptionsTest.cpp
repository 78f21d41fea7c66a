#include "Hermetic.h"
#include "Options.h"

#include <gmock/gmock.h>

#include <chrono>

namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class DeviceOptions : public ::testing::Test {
protected:
    Options Read(const QStringList& more) const {
        return ReadOptions(QStringList{"quillbox-device", "--root", Root()} + more);
    }

    QString Root() const { return QString::fromStdString(mFolder.Path().string()); }

    TestFolder mFolder;
};

TEST_F(DeviceOptions, HaveDefaults) {
    const Options options = Read({});
    EXPECT_EQ(options.message, "");
    EXPECT_FALSE(options.helpWanted);
    EXPECT_EQ(options.root, Root());
    EXPECT_EQ(options.port, 10240);
    EXPECT_EQ(options.address, QHostAddress("127.0.0.1"));
    EXPECT_EQ(options.identity.name, "quillbox-device");
    EXPECT_EQ(options.identity.rights, "cd-");
    EXPECT_EQ(options.identity.version, "1.10");
    EXPECT_TRUE(options.announcements.IsEmpty());
}

TEST_F(DeviceOptions, AreTaken) {
    const Options options = Read({"--port", "0", "--address=::1", "--name", "Enregistreur d'été", "--rights",
                                  "--r", "--protocol-version", "1.09"});
    EXPECT_EQ(options.message, "");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.address, QHostAddress("::1"));
    EXPECT_EQ(options.identity.name, "Enregistreur d'été");
    EXPECT_EQ(options.identity.rights, "--r");
    EXPECT_EQ(options.identity.version, "1.09");
}

TEST_F(DeviceOptions, AskForAnnouncements) {
    const Options toGroup = Read({"--announce"});
    EXPECT_EQ(toGroup.message, "");
    EXPECT_TRUE(toGroup.announcements.toGroup);
    EXPECT_EQ(toGroup.announcements.host, "");
    EXPECT_EQ(toGroup.announcements.port, 10245);
    EXPECT_EQ(toGroup.announcements.period, std::chrono::seconds(4));
    const Options toHost = Read({"--announce-to", "localhost"});
    EXPECT_EQ(toHost.message, "");
    EXPECT_FALSE(toHost.announcements.toGroup);
    EXPECT_EQ(toHost.announcements.host, "localhost");
    const Options toBoth = Read({"--announce", "--announce-to=127.0.0.1"});
    EXPECT_TRUE(toBoth.announcements.toGroup);
    EXPECT_EQ(toBoth.announcements.host, "127.0.0.1");
}

TEST_F(DeviceOptions, OnlyAnnouncedNamesAreWithoutSeparators) {
    for (const char* name : {"a:b", "a;b", ":", "a\nb", "a\rb", " a", "\ta", "\u00a0a", "a\u2028b"}) {
        EXPECT_EQ(Read({"--name", name}).message, "") << name;
        EXPECT_THAT(Read({"--announce", "--name", name}).message,
                    StartsWith("--name must not contain : or ;"))
            << name;
        EXPECT_THAT(Read({"--announce-to", "localhost", "--name", name}).message,
                    StartsWith("--name must not contain : or ;"))
            << name;
    }
    EXPECT_EQ(Read({"--announce", "--name", "Enregistreur d'été, 2"}).message, "");
}

TEST_F(DeviceOptions, TheIdBelongsToTheFolder) {
    const TestFolder other;
    const std::string id = Read({}).identity.id;
    EXPECT_THAT(id, ::testing::MatchesRegex("[0-9a-f]{16}"));
    EXPECT_EQ(Read({"--name", "Renamed"}).identity.id, id);
    EXPECT_NE(Read({"--root", QString::fromStdString(other.Path().string())}).identity.id, id);
}

TEST_F(DeviceOptions, HelpNamesEveryOption) {
    const Options options = ReadOptions({"quillbox-device", "--help"});
    EXPECT_TRUE(options.helpWanted);
    for (const char* name : {"--root", "--port", "--address", "--name", "--rights", "--protocol-version",
                             "--announce", "--announce-to", "--help"}) {
        EXPECT_THAT(options.message, HasSubstr(name));
    }
    EXPECT_THAT(options.message, Not(HasSubstr("--help-all"))); // which there is not
}

struct BadCase {
    QStringList arguments;
    std::string complaint;
};

void PrintTo(const BadCase& c, std::ostream* stream) {
    *stream << c.complaint.size() << " bytes of complaint";
}

class BadOptions : public DeviceOptions, public ::testing::WithParamInterface<BadCase> {};

TEST_P(BadOptions, AreExplained) {
    const Options options = Read(GetParam().arguments);
    EXPECT_FALSE(options.helpWanted);
    EXPECT_THAT(options.message, StartsWith(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, BadOptions,
    ::testing::Values(BadCase{{"--root", ""}, "--root is required"},
                      BadCase{{"--root", "/dev/null"}, "--root is no folder: /dev/null"},
                      BadCase{{"--root", "/no/such"}, "--root is no folder: /no/such"},
                      BadCase{{"--port", "65536"}, "--port takes a number from 0 to 65535"},
                      BadCase{{"--port", "http"}, "--port takes a number from 0 to 65535"},
                      BadCase{{"--port=-1"}, "--port takes a number from 0 to 65535"},
                      BadCase{{"--address", "nowhere"}, "--address takes an IP address"},
                      BadCase{{"--name", ""}, "--name must not be empty"},
                      BadCase{{"--name", "a\"b"}, "--name must not be empty"},
                      BadCase{{"--rights", "cd"}, "--rights takes three characters"},
                      BadCase{{"--rights", "CD-"}, "--rights takes three characters"},
                      BadCase{{"--rights", "dc-"}, "--rights takes three characters"},
                      BadCase{{"--protocol-version", "one"}, "--protocol-version takes a number"},
                      BadCase{{"--protocol-version", "1."}, "--protocol-version takes a number"},
                      BadCase{{"--announce-to", "::1"}, "--announce-to takes an IPv4 address"},
                      BadCase{{"--announce-to", "two words"}, "--announce-to takes an IPv4 address"},
                      BadCase{{"surplus"}, "Unexpected argument: surplus"},
                      BadCase{{"--colour"}, "Unknown option 'colour'"}));

TEST(DeviceOptionsAlone, TheRootIsRequired) {
    EXPECT_EQ(ReadOptions({"quillbox-device"}).message, "--root is required");
}

} // namespace
