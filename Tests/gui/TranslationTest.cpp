#include "Translation.h"
#include "Alert.h"
#include "AsyncSocketErrors.h"
#include "Hermetic.h"
#include "TranslatedTexts.h"
#include "WidgetText.h"
#include "WindowFixture.h"

#include <QtGui/QClipboard>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QRadioButton>
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

/// There before the windows of the fixture, as in the program.
struct sGerman {
    Translation mTranslation{QStringList{"de"}};
};

bool HasRoom(const QPushButton* zpButton) {
    return zpButton->width() >= zpButton->sizeHint().width();
}

class InGerman : private sGerman, public WindowFixture {
protected:
    void PressConnect() {
        Meanwhile meanwhile;
        meanwhile.WhenShown("Gerät auswählen", [this](QWidget& zrDialog) { TypeAddress(zrDialog); });
        Press("Verbinden");
    }

    void Connect() {
        PressConnect();
        ASSERT_TRUE(mController.IsConnected());
    }

    /// What an alert says that comes up meanwhile, as title and message.
    Names Alert(const std::string& zTitle, const std::function<void()>& zAction) {
        Names texts;
        Meanwhile meanwhile;
        meanwhile.WhenShown(zTitle, [&texts](QWidget& zrAlert) {
            const auto& box = dynamic_cast<QMessageBox&>(zrAlert);
            texts = {box.text().toStdString(), box.informativeText().toStdString()};
            Click<QPushButton>(zrAlert, "OK");
        });
        zAction();
        return texts;
    }

private:
    void TypeAddress(QWidget& zrDialog) {
        Click<QRadioButton>(zrDialog, "IP-Adresse eingeben");
        const QStringList octets = QString::fromStdString(mDevice.Address()).split('.');
        for (int part = 1; part <= 4; ++part) {
            const std::string name = "Adressteil " + std::to_string(part);
            Control<QLineEdit>(zrDialog, name.c_str()).setText(octets[part - 1]);
        }
        Click<QPushButton>(zrDialog, "OK");
    }
};

// --- Windows ---

TEST_F(InGerman, TheMainWindowHasGermanWordsAndItsKeys) {
    for (const char* name :
         {"Verbinden", "Zurück", "Ordner erstellen", "Löschen", "Hochladen", "Herunterladen"}) {
        EXPECT_EQ(MenuEntry(name).text(), Button(name).text()) << name;
    }
    EXPECT_EQ(Status(), "Drücken Sie auf „Verbinden“, um zu beginnen");
    EXPECT_EQ(MenuEntry("Beenden").shortcut(), QKeySequence("Ctrl+Q"));
    auto& table = Control<DeviceTableView>(mWindow, "Ordner auf dem Gerät");
    EXPECT_THAT(table.accessibleDescription().toStdString(),
                StartsWith("Drücken Sie auf „Verbinden“ und wählen Sie dann"));
    EXPECT_EQ(table.model()->headerData(2, Qt::Horizontal).toString().toStdString(), "Änderungsdatum");
}

TEST_F(InGerman, TheSmallestWindowHasRoomForEveryButton) {
    for (const int points : {mWindow.font().pointSize(), 16}) {
        QFont font = mWindow.font();
        font.setPointSize(points);
        mWindow.setFont(font);
        mWindow.resize(1, 1);
        const QList<QPushButton*> buttons = mWindow.centralWidget()->findChildren<QPushButton*>();
        EXPECT_TRUE(WaitFor([&] { return std::ranges::all_of(buttons, HasRoom); })) << points << " points";
        EXPECT_GE(mWindow.width(), 640);
        EXPECT_GE(mWindow.height(), 360);
    }
}

TEST_F(InGerman, AListingAndTheStatusAreInGerman) {
    mDevice.AddFile("song.wav");
    mDevice.AddFile("plain");
    mDevice.AddFolder("Takes");
    Connect();
    EXPECT_EQ(Status(), "Mit „Scripted“ verbunden");
    EXPECT_TRUE(Button("Trennen").isEnabled());
    const QAbstractItemModel& model = *Control<DeviceTableView>(mWindow, "Ordner auf dem Gerät").model();
    Names types;
    for (int row = 0; row < model.rowCount(); ++row) {
        types.push_back(model.index(row, 1).data().toString().toStdString());
    }
    EXPECT_THAT(types, ElementsAre("Datei", "Ordner", "wav-Datei"));
}

TEST_F(InGerman, AFailedDownloadSaysWhyInGerman) {
    const TestFolder folder;
    const std::string path = folder.Path().string() + "/song.wav";
    mPanel.mAnswer = {folder.Path().string()};
    mDevice.AddFile("song.wav");
    mDevice.mOnCommand = [](const std::string& zCommand) {
        const bool isDownload = zCommand == ScriptedDevice::DownloadCommand("song.wav");
        return isDownload ? std::optional(ScriptedDevice::LengthPrefix(1073741825)) : std::nullopt;
    };
    Connect();
    Control<DeviceTableView>(mWindow, "Ordner auf dem Gerät").selectRow(0);
    EXPECT_THAT(Alert("Herunterladen fehlgeschlagen", [this] { Press("Herunterladen"); }),
                ElementsAre("Herunterladen fehlgeschlagen", path + " ist zu groß zum Herunterladen"));
    EXPECT_EQ(Status(), path + " ist zu groß zum Herunterladen");
    EXPECT_EQ(mPanel.mRequests.back().title, "Zielordner für das Herunterladen auswählen");
}

TEST_F(InGerman, ARefusedConnectionSaysWhyInGerman) {
    mDevice.SwitchOff();
    PressConnect();
    EXPECT_EQ(Status(), "Verbindung abgelehnt (unter dieser Adresse und diesem Port antwortet nichts)");
}

TEST_F(InGerman, AnAlertHasGermanButtons) {
    Meanwhile meanwhile;
    meanwhile.WhenShown("Dateien löschen", [](QWidget& zrAlert) {
        EXPECT_EQ(static_cast<QMessageBox&>(zrAlert).informativeText().toStdString(),
                  "Möchten Sie sie ersetzen?");
        Click<QPushButton>(zrAlert, "Abbrechen");
    });
    EXPECT_EQ(ShowAlert(&mWindow, "Delete files", "Do you want to replace it?", AlertOkCancel), 0);
}

TEST_F(InGerman, TheNoteAboutDiagnosticsIsGermanAndTheyAreNot) {
    Meanwhile meanwhile;
    meanwhile.WhenShown("Diagnosedaten kopiert", [](QWidget& zrNote) {
        EXPECT_THAT(dynamic_cast<QMessageBox&>(zrNote).informativeText().toStdString(),
                    StartsWith("Fügen Sie sie dort ein, wo Sie um Hilfe bitten."));
        Click<QPushButton>(zrNote, "OK");
    });
    Choose("Diagnosedaten kopieren");
    EXPECT_THAT(QApplication::clipboard()->text().toStdString(), HasSubstr("The last lines of the log:"));
}

// --- Texts ---

TEST_F(InGerman, EachTextThatComesWithANameIsTranslatedAroundIt) {
    for (const std::string source : TextsAroundNames()) {
        const std::size_t mark = source.find("%s");
        for (const std::string name : {"/home/me/a - b %s.wav", "'", "\xFF"}) {
            std::string text = source;
            std::string expected = Translated(source);
            EXPECT_NE(expected, source);
            expected.replace(expected.find("%s"), 2, name);
            EXPECT_EQ(TranslatedMessage(text.replace(mark, 2, name)), expected);
        }
    }
    EXPECT_EQ(TranslatedMessage("/a/song.wav - failed to write fil"), "/a/song.wav - failed to write fil");
    EXPECT_EQ(TranslatedMessage("'"), "'");
}

TEST_F(InGerman, AReasonFollowsItsName) {
    EXPECT_EQ(NameAndReason("%s %d.wav", "Path too long"), "%s %d.wav – Pfad zu lang");
    EXPECT_EQ(NameAndReason("song.wav", "in no catalogue %s"), "song.wav – in no catalogue %s");
}

TEST_F(InGerman, WhatTheSystemSaysOfAConnectionIsTranslatedWhereItSpeaksEnglish) {
    for (const int code :
         {ECONNREFUSED, EHOSTUNREACH, ENETUNREACH, ENETDOWN, EHOSTDOWN, ETIMEDOUT, ECONNRESET, ECONNABORTED,
          EPIPE, EACCES, EPERM, EADDRNOTAVAIL, EINVAL, EMFILE, ENFILE}) {
        const SocketError error = MakeErrnoError(code);
        EXPECT_NE(Translated(error.description), error.description);
    }
}

// --- Languages ---

class Languages : public ::testing::Test {
protected:
    static std::string WordFor(const QStringList& zLanguages) {
        const Translation translation(zLanguages);
        return Translated("Delete files");
    }
};

TEST_F(Languages, TheFirstOneThatIsKnownCounts) {
    EXPECT_EQ(WordFor({"de"}), "Dateien löschen");
    EXPECT_EQ(WordFor({"de-AT"}), "Dateien löschen");
    EXPECT_EQ(WordFor({"fr-CA", "de"}), "Supprimer des fichiers");
    EXPECT_EQ(WordFor({"it-IT", "it", "fr"}), "Supprimer des fichiers");
    EXPECT_EQ(WordFor({"en-GB", "de"}), "Delete files");
    EXPECT_EQ(WordFor({"it"}), "Delete files");
    EXPECT_EQ(WordFor({}), "Delete files");
}

TEST_F(Languages, TheToolkitSpeaksTheSameOneAndNoOther) {
    const auto cancel = [](const QStringList& zLanguages) {
        const Translation translation(zLanguages);
        return QCoreApplication::translate("QPlatformTheme", "Cancel").toStdString();
    };
    EXPECT_EQ(cancel({"de"}), "Abbrechen");
    EXPECT_EQ(cancel({"fr"}), "Annuler");
    EXPECT_EQ(cancel({"it"}), "Cancel");
}

TEST_F(Languages, TheToolkitBorrowsWordsThatItsOwnCatalogueLacks) {
    const auto folder = [](const QStringList& zLanguages) {
        const Translation translation(zLanguages);
        return QCoreApplication::translate("QAbstractFileIconProvider", "Folder", "All other platforms")
            .toStdString();
    };
    EXPECT_EQ(folder({"fr"}), "Dossier");
    EXPECT_EQ(folder({"de"}), "Verzeichnis");
    EXPECT_EQ(folder({"it"}), "Folder");
}

TEST_F(Languages, WithoutATranslationTextsStayWhatTheyAre) {
    const Translation translation(QLocale::c());
    for (const std::string text :
         {"/a/\xFF.wav too large to download", "Connected to '%s'", "\xFF\xC3", ""}) {
        EXPECT_EQ(TranslatedMessage(text), text);
    }
    EXPECT_EQ(NameAndReason("\xFF", "Path too long"), "\xFF - Path too long");
}

} // namespace
