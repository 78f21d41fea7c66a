#include "ThemeIcon.h"

#include "Alert.h"
#include "Contrast.h"
#include "Hermetic.h"
#include "WindowFixture.h"

#include <QtCore/QDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// The icon theme of the desktop, which the tests write themselves; at first it has no icons.
class Theme {
public:
    Theme() {
        mFolder.Write("testing/index.theme", "[Icon Theme]\nName=Testing\nComment=Testing\nDirectories=16\n\n"
                                             "[16]\nSize=16\nType=Fixed\n");
        QIcon::setThemeSearchPaths({QString::fromStdString(mFolder.Path().string())});
        QIcon::setThemeName(QStringLiteral("testing"));
    }

    ~Theme() {
        QIcon::setThemeName({});
        QIcon::setThemeSearchPaths(mPaths);
    }

    Theme(const Theme&) = delete;
    Theme& operator=(const Theme&) = delete;

    /// Adds icons, plain squares in this theme's colour.
    void Add(const std::vector<std::string>& zNames) {
        QImage square(16, 16, QImage::Format_ARGB32);
        square.fill(kColour);
        for (const std::string& name : zNames) {
            const std::string file = mFolder.Write("testing/16/" + name + ".png", "");
            ASSERT_TRUE(square.save(QString::fromStdString(file)));
        }
        QIcon::setThemeSearchPaths(QIcon::themeSearchPaths()); // looked at anew
    }

    static bool IsSourceOf(const QIcon& zIcon) {
        return zIcon.pixmap(QSize(16, 16), 1.0).toImage().pixelColor(8, 8) == QColor(kColour);
    }

private:
    static constexpr Qt::GlobalColor kColour = Qt::magenta;
    TestFolder mFolder;
    QStringList mPaths = QIcon::themeSearchPaths();
};

QImage Picture(const QIcon& zIcon, int zSide, QIcon::Mode zMode = QIcon::Normal) {
    return zIcon.pixmap(QSize(zSide, zSide), 1.0, zMode).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// How much of a picture shows something, between 0 and 1.
double CoveredPart(const QImage& zPicture) {
    int covered = 0;
    for (int y = 0; y < zPicture.height(); ++y) {
        for (int x = 0; x < zPicture.width(); ++x) {
            covered += zPicture.pixelColor(x, y).alpha() > 127 ? 1 : 0;
        }
    }
    return zPicture.isNull() ? 0 : covered / static_cast<double>(zPicture.width() * zPicture.height());
}

bool IsDrawn(const QIcon& zIcon) {
    return CoveredPart(Picture(zIcon, 16)) > 0.1 && CoveredPart(Picture(zIcon, 64)) > 0.1;
}

/// How much of an icon, drawn on a background, stands out from it.
double VisiblePart(const QIcon& zIcon, int zSide, const QColor& zBackground, double zContrast) {
    QImage picture(zSide, zSide, QImage::Format_RGB32);
    picture.fill(zBackground);
    QPainter(&picture).drawImage(0, 0, Picture(zIcon, zSide));
    int visible = 0;
    for (int y = 0; y < zSide; ++y) {
        for (int x = 0; x < zSide; ++x) {
            visible += Contrast(picture.pixelColor(x, y), zBackground) >= zContrast ? 1 : 0;
        }
    }
    return visible / static_cast<double>(zSide * zSide);
}

// --- The program's own icons ---

std::vector<std::string> OwnNames() {
    std::vector<std::string> names;
    for (const QString& file : QDir(QStringLiteral(":/quillbox")).entryList({QStringLiteral("*.svg")})) {
        names.push_back(file.chopped(4).toStdString());
    }
    return names;
}

TEST(OwnIconTest, EachIsDrawnInEverySize) {
    const Theme empty;
    ASSERT_GT(OwnNames().size(), 15U);
    for (const std::string& name : OwnNames()) {
        for (const int side : {16, 22, 32, 64}) {
            const QImage picture = Picture(ThemeIcon(name), side);
            EXPECT_EQ(picture.size(), QSize(side, side)) << name;
            EXPECT_GT(CoveredPart(picture), 0.1) << name << " at " << side;
        }
    }
}

TEST(OwnIconTest, NoTwoLookTheSame) {
    const Theme empty;
    const std::vector<std::string> names = OwnNames();
    for (std::size_t one = 0; one < names.size(); ++one) {
        for (std::size_t other = one + 1; other < names.size(); ++other) {
            EXPECT_NE(Picture(ThemeIcon(names[one]), 16), Picture(ThemeIcon(names[other]), 16))
                << names[one] << ' ' << names[other];
        }
    }
}

struct sBackground {
    const char* colour;
    double contrast;
};

TEST(OwnIconTest, EachStandsOutOnLightAndDarkAndSelectedBackgrounds) {
    const Theme empty;
    for (const auto& [colour, contrast] :
         {sBackground{"#ffffff", 3}, {"#efefef", 3}, {"#353535", 3}, {"#232629", 3}, {"#308cc6", 2.5}}) {
        for (const std::string& name : OwnNames()) {
            if (contrast < 3 && name == "quillbox") {
                continue; // in no row, and as blue as what is selected
            }
            for (const int side : {16, 22, 32}) {
                EXPECT_GT(VisiblePart(ThemeIcon(name), side, QColor(colour), contrast), 0.08)
                    << name << " at " << side << " on " << colour;
            }
        }
    }
}

TEST(OwnIconTest, ASelectedOneIsNotTintedAndADisabledOneLooksDifferent) {
    const Theme empty;
    for (const std::string& name : OwnNames()) {
        const QImage normal = Picture(ThemeIcon(name), 16);
        EXPECT_EQ(Picture(ThemeIcon(name), 16, QIcon::Selected), normal) << name;
        EXPECT_NE(Picture(ThemeIcon(name), 16, QIcon::Disabled), normal) << name;
    }
}

TEST(OwnIconTest, AnUnknownNameHasNone) {
    const Theme empty;
    EXPECT_TRUE(ThemeIcon("no-such-icon").isNull());
    EXPECT_TRUE(ThemeIcon("").isNull());
}

// --- The desktop's theme ---

TEST(ThemeIconTest, TheThemesIconComesFirstAndOursIsForWhatItLacks) {
    Theme theme;
    theme.Add({"folder", "audio-x-generic"});
    EXPECT_TRUE(Theme::IsSourceOf(ThemeIcon("folder")));
    EXPECT_TRUE(Theme::IsSourceOf(ThemeIcon("audio-x-generic")));
    EXPECT_FALSE(Theme::IsSourceOf(ThemeIcon("image-x-generic")));
    EXPECT_TRUE(IsDrawn(ThemeIcon("image-x-generic")));
}

TEST(ThemeIconTest, AThemesIconOfAShorterNameIsNotMeant) {
    Theme theme;
    theme.Add({"help", "image"});
    for (const char* name : {"help-contents", "image-x-generic"}) {
        EXPECT_FALSE(Theme::IsSourceOf(ThemeIcon(name))) << name;
        EXPECT_TRUE(IsDrawn(ThemeIcon(name))) << name;
    }
}

TEST(ThemeIconTest, TheButtonsAreOfOneHand) {
    Theme theme;
    const std::vector<std::string> buttons = {"network-connect", "network-disconnect", "go-up",
                                              "folder-new",      "edit-delete",        "document-send",
                                              "document-save"};
    theme.Add({buttons.begin() + 1, buttons.end()});
    for (const std::string& name : buttons) {
        EXPECT_FALSE(Theme::IsSourceOf(ThemeIcon(name))) << name;
        EXPECT_TRUE(IsDrawn(ThemeIcon(name))) << name;
    }
    theme.Add({buttons.front()});
    for (const std::string& name : buttons) {
        EXPECT_TRUE(Theme::IsSourceOf(ThemeIcon(name))) << name;
    }
}

// --- Kinds of files ---

struct sKindCase {
    const char* extension;
    const char* icon;
};

TEST(FileKindTest, IsToldByTheExtension) {
    for (const auto& [extension, icon] : {sKindCase{"wav", "audio-x-generic"},
                                          {"AIFF", "audio-x-generic"},
                                          {"mp3", "audio-x-generic"},
                                          {"Jpeg", "image-x-generic"},
                                          {"txt", "text-x-generic"},
                                          {"mp4", "video-x-generic"},
                                          {"zip", "package-x-generic"},
                                          {"7z", "package-x-generic"},
                                          {"bin", "application-octet-stream"},
                                          {"wave", "application-octet-stream"},
                                          {"", "application-octet-stream"},
                                          {"\xFF", "application-octet-stream"}}) {
        EXPECT_EQ(IconNameForExtension(extension), icon) << extension;
    }
}

// --- Where people see them ---

struct sEmptyTheme {
    const Theme mTheme;
};

/// The program on a desktop whose theme has no icons.
class IconsOfWindows : private sEmptyTheme, public WindowFixture {
protected:
    QImage RowPicture(int zRow) {
        return Picture(Table().model()->index(zRow, 0).data(Qt::DecorationRole).value<QIcon>(), 16);
    }

    /// What the alert of that title shows beside its texts, once it has been answered.
    QImage AlertPicture(const char* zTitle, const std::function<void()>& zShow) {
        QImage picture;
        Meanwhile meanwhile;
        meanwhile.WhenShown(zTitle, [&](QWidget& zrAlert) {
            picture = dynamic_cast<QMessageBox&>(zrAlert).iconPixmap().toImage();
            QTest::keyClick(&zrAlert, Qt::Key_Escape);
        });
        zShow();
        return picture;
    }
};

TEST_F(IconsOfWindows, EveryButtonHasOne) {
    const QImage connect = Picture(Button("Connect").icon(), 16);
    EXPECT_TRUE(IsDrawn(Button("Connect").icon()));
    ASSERT_TRUE(ConnectTo(mDevice));
    for (const char* name : {"Disconnect", "Back", "Create Folder", "Delete", "Upload", "Download"}) {
        EXPECT_TRUE(IsDrawn(Button(name).icon())) << name;
        EXPECT_EQ(Picture(MenuEntry(name).icon(), 16), Picture(Button(name).icon(), 16)) << name;
    }
    EXPECT_NE(Picture(Button("Disconnect").icon(), 16), connect);
}

TEST_F(IconsOfWindows, EveryMenuEntryHasOne) {
    for (const QAction* menu : mWindow.menuBar()->actions()) {
        for (const QAction* entry : menu->menu()->actions()) {
            const bool hasMark = entry->isCheckable();
            EXPECT_TRUE(entry->isSeparator() || hasMark || IsDrawn(entry->icon()))
                << entry->text().toStdString();
        }
    }
}

TEST_F(IconsOfWindows, RowsTellTheKindsOfFilesApart) {
    mDevice.AddFolder("Music");
    for (const char* name : {"a.wav", "b.txt", "c.png", "d.mp4", "e.zip", "f.bin"}) {
        mDevice.AddFile(name);
    }
    ASSERT_TRUE(ConnectTo(mDevice));
    ASSERT_EQ(RowNames().size(), 7U);
    for (int row = 0; row < 7; ++row) {
        EXPECT_GT(CoveredPart(RowPicture(row)), 0.1) << row;
        for (int other = 0; other < row; ++other) {
            EXPECT_NE(RowPicture(row), RowPicture(other)) << row << ' ' << other;
        }
    }
}

TEST_F(IconsOfWindows, AlertsShowTheirKindAndAboutTheProgram) {
    const auto alert = [this](int zKind) {
        return AlertPicture("Title", [&] { ShowAlert(&mWindow, "Title", "Message", zKind); });
    };
    QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
    const QImage about = AlertPicture("Quillbox 9.8.7", [this] { Choose("About Quillbox"); });
    EXPECT_EQ(alert(AlertYesNo), alert(AlertOkCancel));
    EXPECT_NE(alert(AlertOk), alert(AlertYesNo));
    EXPECT_NE(alert(AlertOk), about);
    for (const QImage& picture : {alert(AlertOk), alert(AlertYesNo), about}) {
        EXPECT_GE(picture.width(), 32);
        EXPECT_GT(CoveredPart(picture), 0.1);
    }
}

} // namespace
