#include "Settings.h"

#include "CommonUtils_OSX.h"
#include "Hermetic.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Settings : public ::testing::Test {
protected:
    Settings() { mSettings.FilePath = mFolder / kName; }

    /// Loads a file of this content into fresh settings.
    bool LoadText(const std::string& content) {
        mFolder.Write(kName, content);
        return mSettings.Load();
    }

    void ExpectDefaults() const {
        EXPECT_TRUE(mSettings.ConnectionAuto);
        EXPECT_EQ(mSettings.RecentDeviceName, "");
        EXPECT_EQ(mSettings.RecentDeviceIP, "");
        EXPECT_EQ(mSettings.RecentUploadPath, "");
        EXPECT_EQ(mSettings.RecentDownloadPath, "");
    }

    std::ptrdiff_t EntriesInFolder() const {
        return std::distance(fs::directory_iterator(mFolder.Path()), fs::directory_iterator());
    }

    static constexpr const char* kName = "Settings.xml";
    TestFolder mFolder;
    cSettings mSettings;
};

std::string Document(const std::string& attributes) {
    return "<?xml version=\"1.0\" ?>\n<Quillbox>\n    <Settings " + attributes + " />\n</Quillbox>\n";
}

void FillWithText(cSettings& settings) {
    settings.ConnectionAuto = false;
    settings.RecentDeviceName = "Studio";
    settings.RecentDeviceIP = "192.168.1.20";
    settings.RecentUploadPath = "/home/anna/Samples";
    settings.RecentDownloadPath = "/home/anna/Music/New";
}

TEST_F(Settings, BelongInTheDocumentsFolder) {
    EXPECT_EQ(cSettings().FilePath, GetDocumentsFolder() + "/Settings.xml");
}

TEST_F(Settings, StartWithDefaultsWhenThereIsNoFile) {
    EXPECT_FALSE(mSettings.Load());
    ExpectDefaults();
    EXPECT_EQ(EntriesInFolder(), 0);
}

TEST_F(Settings, AreWrittenInTheDocumentedLayout) {
    FillWithText(mSettings);
    ASSERT_TRUE(mSettings.Save());
    EXPECT_EQ(mFolder.Read(kName), "<?xml version=\"1.0\" ?>\n"
                                   "<Quillbox>\n"
                                   "    <!-- Settings -->\n"
                                   "    <Settings ConnectionAuto=\"false\" RecentDeviceName=\"Studio\""
                                   " RecentDeviceIP=\"192.168.1.20\" RecentUploadPath=\"/home/anna/Samples\""
                                   " RecentDownloadPath=\"/home/anna/Music/New\" />\n"
                                   "</Quillbox>\n");
    EXPECT_EQ(EntriesInFolder(), 1);
}

TEST_F(Settings, AreWrittenWithAllAttributesWhenEmpty) {
    ASSERT_TRUE(mSettings.Save());
    EXPECT_NE(
        mFolder.Read(kName).find("<Settings ConnectionAuto=\"true\" RecentDeviceName=\"\" RecentDeviceIP=\"\""
                                 " RecentUploadPath=\"\" RecentDownloadPath=\"\" />"),
        std::string::npos);
}

TEST_F(Settings, ComeBackAsTheyWere) {
    const std::vector<std::string> texts = {
        "plain",         "Rock & Roll",         "<a href=\"x\">'y'</a>", "Ærø/日本/\U0001f3b5",
        "tab\tand\nend", "  spaces  at  ends ", "&amp; &#65; %s",        "bell\x07",
        "&#x41;",        "&#x\"/><Other a=\"",
    };
    for (const std::string& text : texts) {
        FillWithText(mSettings);
        mSettings.RecentDeviceName = text;
        mSettings.RecentDownloadPath = "/x/" + text;
        ASSERT_TRUE(mSettings.Save());
        cSettings loaded;
        loaded.FilePath = mSettings.FilePath;
        ASSERT_TRUE(loaded.Load());
        EXPECT_FALSE(loaded.ConnectionAuto);
        EXPECT_EQ(loaded.RecentDeviceName, text);
        EXPECT_EQ(loaded.RecentDeviceIP, "192.168.1.20");
        EXPECT_EQ(loaded.RecentUploadPath, "/home/anna/Samples");
        EXPECT_EQ(loaded.RecentDownloadPath, "/x/" + text);
    }
}

TEST_F(Settings, EscapeWhatXmlEscapes) {
    mSettings.RecentUploadPath = "/R&B";
    ASSERT_TRUE(mSettings.Save());
    EXPECT_NE(mFolder.Read(kName).find("RecentUploadPath=\"/R&amp;B\""), std::string::npos);
}

TEST_F(Settings, StayReadableWithAnIllFormedDeviceName) {
    mSettings.RecentDeviceIP = "10.0.0.2";
    mSettings.RecentDeviceName = "caf\xe9";
    ASSERT_TRUE(mSettings.Save());
    mSettings.RecentDeviceIP.clear();
    ASSERT_TRUE(mSettings.Load());
    EXPECT_EQ(mSettings.RecentDeviceIP, "10.0.0.2");
    EXPECT_EQ(mSettings.RecentDeviceName, "caf\ufffd");
}

// A device chooses its own name, and what it likes must not cost people their settings.
TEST_F(Settings, StayReadableWithAnyDeviceName) {
    for (const char mark : {'=', '<', '"', '\x01'}) {
        for (const std::size_t length : {1023U, 1024U, 400'000U}) {
            FillWithText(mSettings);
            mSettings.RecentUploadPath = std::string(1023, mark);
            mSettings.RecentDeviceName = std::string(length, mark);
            ASSERT_TRUE(mSettings.Save());
            cSettings loaded;
            loaded.FilePath = mSettings.FilePath;
            loaded.Load();
            EXPECT_EQ(loaded.RecentDeviceName, length > 1023 ? "" : mSettings.RecentDeviceName);
            EXPECT_EQ(loaded.RecentUploadPath, mSettings.RecentUploadPath);
            EXPECT_EQ(loaded.RecentDownloadPath, "/home/anna/Music/New");
        }
    }
}

TEST_F(Settings, ReadTheWordTrueInAnyLetterCase) {
    const std::vector<std::pair<std::string, bool>> cases = {
        {"true", true}, {"TRUE", true},   {"True", true}, {"yes", false},
        {"1", false},   {"false", false}, {"", false},
    };
    for (const auto& [text, expected] : cases) {
        mSettings.ConnectionAuto = !expected;
        EXPECT_TRUE(LoadText(Document("ConnectionAuto=\"" + text + "\"")));
        EXPECT_EQ(mSettings.ConnectionAuto, expected) << text;
    }
}

TEST_F(Settings, LeaveFieldsWithoutAttributeAsTheyAre) {
    FillWithText(mSettings);
    EXPECT_TRUE(LoadText(Document("RecentDeviceIP=\"10.0.0.9\"")));
    EXPECT_FALSE(mSettings.ConnectionAuto);
    EXPECT_EQ(mSettings.RecentDeviceName, "Studio");
    EXPECT_EQ(mSettings.RecentDeviceIP, "10.0.0.9");
    EXPECT_EQ(mSettings.RecentUploadPath, "/home/anna/Samples");
    EXPECT_EQ(mSettings.RecentDownloadPath, "/home/anna/Music/New");
}

TEST_F(Settings, AreReadFromARootOfAnyName) {
    EXPECT_TRUE(LoadText(
        "<Other><First/><Settings RecentDeviceName='One'/><Settings RecentDeviceName='Two'/></Other>"));
    EXPECT_EQ(mSettings.RecentDeviceName, "One");
}

TEST_F(Settings, AreReadFromAFileWithByteOrderMark) {
    EXPECT_TRUE(LoadText("\ufeff" + Document("RecentDeviceName=\"Über\"")));
    EXPECT_EQ(mSettings.RecentDeviceName, "Über");
}

TEST_F(Settings, KeepDefaultsForAFileWithoutThem) {
    EXPECT_TRUE(LoadText("<Quillbox><Others RecentDeviceName='One'/></Quillbox>"));
    EXPECT_FALSE(LoadText("<!-- nothing but a comment -->"));
    ExpectDefaults();
}

TEST_F(Settings, KeepDefaultsForAMalformedFile) {
    const std::string whole = Document("RecentDeviceName=\"One\"");
    const std::vector<std::string> cases = {
        "",
        "   \n",
        "no markup at all",
        "<Quillbox>",
        "<Quillbox><Settings RecentDeviceName=\"One\"",
        "<Quillbox><Settings RecentDeviceName=\"One /></Quillbox>",
        R"(<Quillbox><Settings RecentDeviceName="One" RecentDeviceName="Two" /></Quillbox>)",
        Document("RecentDeviceName=\"caf\xe9\""),
        Document("RecentDeviceName=\"\xe9t\xe9 of one\""),
        "<Quillbox><Settings RecentDeviceName=\"\xe9",
        "<a b=\"\xef",
        whole.substr(0, 40) + '\0' + whole.substr(40),
        whole + '\0',
        std::string("<Quillbox> \0", 12),
    };
    for (const std::string& content : cases) {
        SCOPED_TRACE(content);
        EXPECT_TRUE(LoadText(content));
        ExpectDefaults();
        mSettings.RecentDeviceName.clear();
    }
}

TEST_F(Settings, KeepDefaultsForEveryCutFile) {
    const std::string whole = Document("ConnectionAuto=\"false\" RecentDeviceName=\"&amp;é\"");
    const std::size_t end = whole.rfind("</Quillbox");
    for (std::size_t length = 0; length < end; ++length) {
        LoadText(whole.substr(0, length));
        ExpectDefaults();
    }
    LoadText(whole);
    EXPECT_EQ(mSettings.RecentDeviceName, "&é");
}

std::string Repeated(const std::string& text, std::size_t size) {
    std::string repeated;
    repeated.reserve(size + text.size());
    while (repeated.size() < size) {
        repeated += text;
    }
    return repeated;
}

std::string ManyAttributes(std::size_t count) {
    std::string attributes;
    for (std::size_t i = 0; i < count; ++i) {
        attributes += "a" + std::to_string(i) + "='' ";
    }
    return attributes;
}

// Each of these would take the parser seconds, or the whole stack.
TEST_F(Settings, KeepDefaultsForAFileThatIsTooMuchForTheParser) {
    const std::string name = "RecentDeviceName=\"One\"";
    const std::vector<std::string> cases = {
        Repeated("<a>", 1'000'000),
        "<Quillbox><Settings " + ManyAttributes(80'000) + name + " /></Quillbox>",
        "<Quillbox><Settings " + name + " />" + std::string(1'048'576, ' ') + "</Quillbox>",
    };
    for (const std::string& content : cases) {
        EXPECT_TRUE(LoadText(content)) << content.substr(0, 30);
        ExpectDefaults();
    }
    EXPECT_TRUE(
        LoadText("<Quillbox><Settings " + name + " />" + std::string(1'000'000, ' ') + "</Quillbox>"));
    EXPECT_EQ(mSettings.RecentDeviceName, "One");
}

TEST_F(Settings, KeepDefaultsForAHugeFile) {
    mFolder.Write(kName, Document("RecentDeviceName=\"One\""));
    fs::resize_file(mSettings.FilePath, 5'000'000'000);
    mSettings.Load();
    ExpectDefaults();
}

TEST_F(Settings, ReadAndWriteNothingButOrdinaryFiles) {
    const std::string& path = mSettings.FilePath;
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(mSettings.Load());
    EXPECT_FALSE(mSettings.Save());
    EXPECT_EQ(fs::status(path).type(), fs::file_type::fifo);
    fs::remove(path);

    fs::create_directory(path);
    EXPECT_FALSE(mSettings.Load());
    EXPECT_FALSE(mSettings.Save());
    EXPECT_TRUE(fs::is_directory(path));
    fs::remove(path);

    // A link to a device, not the device: what goes wrong here must not replace /dev/null.
    ASSERT_EQ(::mkfifo((mFolder / "pipe").c_str(), 0600), 0);
    fs::create_symlink("pipe", path);
    EXPECT_FALSE(mSettings.Load());
    EXPECT_FALSE(mSettings.Save());
    EXPECT_EQ(fs::status(mFolder / "pipe").type(), fs::file_type::fifo);
    ExpectDefaults();
}

TEST_F(Settings, AreWrittenThroughALinkOfTheUser) {
    mFolder.Write("elsewhere/kept.xml", "old");
    fs::create_symlink("elsewhere/kept.xml", mSettings.FilePath);
    mSettings.RecentDeviceName = "One";
    ASSERT_TRUE(mSettings.Save());
    EXPECT_TRUE(fs::is_symlink(mSettings.FilePath));
    EXPECT_NE(mFolder.Read("elsewhere/kept.xml").find("One"), std::string::npos);
}

TEST_F(Settings, AreNotWrittenWithoutFolder) {
    mSettings.FilePath = mFolder / "missing/Settings.xml";
    EXPECT_FALSE(mSettings.Save());
    EXPECT_FALSE(fs::exists(mFolder / "missing"));
}

/// Saves while files can have at most 64 bytes, which stands for a full disk.
bool SaveOnFullDisk(const cSettings& settings) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{64, old.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const bool saved = settings.Save();
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, SIG_DFL);
    return saved;
}

TEST_F(Settings, SurviveAFullDisk) {
    FillWithText(mSettings);
    ASSERT_TRUE(mSettings.Save());
    const std::string before = mFolder.Read(kName);
    // The short text fails only when the stream is closed, the long one while it is written.
    for (const std::size_t length : {10U, 1000U}) {
        mSettings.RecentUploadPath.assign(length, '&'); // five bytes each in the file
        EXPECT_FALSE(SaveOnFullDisk(mSettings)) << length;
        EXPECT_EQ(mFolder.Read(kName), before) << length;
        EXPECT_EQ(EntriesInFolder(), 1) << length;
    }
}

TEST_F(Settings, LeaveNoStreamOpen) {
    const auto openFiles = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openFiles();
    LoadText("<!-- no element -->");
    LoadText("<broken");
    LoadText(Document(""));
    mSettings.Save();
    EXPECT_EQ(openFiles(), before);
}

// In a process of its own, since the settings are made once.
TEST(GetSettingsDeathTest, LoadsOnceAndGivesTheSameEveryTime) {
    const auto check = [] {
        std::ofstream(GetDocumentsFolder() + "/Settings.xml") << Document("RecentDeviceName=\"One\"");
        const bool loaded = GetSettings().RecentDeviceName == "One" && GetSettings().ConnectionAuto;
        GetSettings().RecentDeviceName = "Two";
        return loaded && GetSettings().RecentDeviceName == "Two";
    };
    EXPECT_EXIT(std::exit(check() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

} // namespace
