#include "Browser.h"
#include "SelectFixture.h"

#include "Alert.h"
#include "ModalSession.h"
#include "RunLoop.h"
#include "WaitFor.h"

#include <QtGui/QAccessible>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <gmock/gmock.h>

#include <array>
#include <stdexcept>

namespace {

using ::testing::ElementsAre;

// --- Opening ---

TEST_F(Selection, OpensForFoundDevicesByDefault) {
    mDevices.Add("Studio", "10.0.0.7");
    const SelectController& dialog = Open();
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Select Device"));
    EXPECT_EQ(dialog.GetResult(), 0);
    EXPECT_EQ(dialog.GetPortNumber(), 10240);
    EXPECT_FALSE(dialog.isModal());
    ExpectMode(true);
}

TEST_F(Selection, WithoutASourceThereAreNoDevices) {
    mpDialog = std::make_unique<SelectController>(&mMain);
    mpDialog->Init(nullptr);
    EXPECT_EQ(mpDialog->numberOfRowsInTableView(), 0);
    EXPECT_EQ(List().count(), 0);
}

struct sModeCase {
    bool hasDevices;
    bool connectionAuto;
    bool foundDevice;
};

TEST_F(Selection, OnlyAnEmptyListAfterATypedAddressOpensForTyping) {
    for (const sModeCase& row :
         {sModeCase{false, false, false}, {false, true, true}, {true, false, true}, {true, true, true}}) {
        mDevices.records.clear();
        if (row.hasDevices) {
            mDevices.Add("Studio", "10.0.0.7");
        }
        GetSettings().ConnectionAuto = row.connectionAuto;
        Open();
        ExpectMode(row.foundDevice);
    }
}

struct sAddressCase {
    const char* recent;
    std::vector<std::string> octets;
};

TEST_F(Selection, TheLastAddressFillsTheFieldsIfItHasFourParts) {
    const std::vector<std::string> untouched(4, "");
    const std::array<sAddressCase, 7> cases = {{{"192.168.1.20", {"192", "168", "1", "20"}},
                                                {"...", {"", "", "", ""}},
                                                {"a.b..d", {"a", "b", "", "d"}},
                                                {"10.0.0", untouched},
                                                {"10.0.0.1.2", untouched},
                                                {"10", untouched},
                                                {"", untouched}}};
    for (const sAddressCase& row : cases) {
        GetSettings().RecentDeviceIP = row.recent;
        Open();
        EXPECT_EQ(Octets(), row.octets) << row.recent;
    }
}

TEST_F(Selection, NoDevicesAfterATypedAddressShowsTheAddressForTyping) {
    GetSettings().ConnectionAuto = false;
    GetSettings().RecentDeviceIP = "192.168.1.20";
    Open();
    ExpectMode(false);
    EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20"));
}

// --- The list ---

TEST_F(Selection, ListsTheDevicesInOrderAsPlainText) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("<b>Stage</b>\n", "10.0.0.8");
    const SelectController& dialog = Open();
    ASSERT_EQ(List().count(), 2);
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("Studio"));
    EXPECT_EQ(List().item(1)->text(), QStringLiteral(u"<b>Stage</b>\u240A"));
    EXPECT_EQ(dialog.numberOfRowsInTableView(), 2);
    EXPECT_EQ(dialog.tableViewObjectValueForTableColumn("name", 0), "Studio");
    EXPECT_EQ(dialog.tableViewObjectValueForTableColumn("anything", 1), "<b>Stage</b>\n");
}

TEST_F(Selection, ARowOutsideTheListHasNoText) {
    mDevices.Add("Studio", "10.0.0.7");
    const SelectController& dialog = Open();
    for (const int row : {-1, 1, 2000}) {
        EXPECT_EQ(dialog.tableViewObjectValueForTableColumn("name", row), std::nullopt);
    }
}

class UnreadableNames : public SelectController {
public:
    using SelectController::SelectController;

protected:
    std::string FetchName(const cListEntry& /*zrEntry*/) const override {
        throw std::runtime_error("unreadable");
    }
};

TEST_F(Selection, ANameThatCannotBeFetchedIsLogged) {
    mDevices.Add("Studio", "10.0.0.7");
    UnreadableNames dialog(&mMain);
    ::testing::internal::CaptureStdout();
    dialog.Init(&mDevices);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Bad name identifier\n");
    EXPECT_EQ(dialog.numberOfRowsInTableView(), 1);
}

struct sPreselection {
    const char* recent;
    int row;
};

TEST_F(Selection, TheLastDeviceIsPreselected) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    mDevices.Add("Stage", "10.0.0.9");
    for (const sPreselection& row : {sPreselection{"Studio", 0}, {"Stage", 2}, {"stage", 0}, {"", 0}}) {
        GetSettings().RecentDeviceName = row.recent;
        Open();
        EXPECT_EQ(List().currentRow(), row.row) << row.recent;
        EXPECT_EQ(List().selectedItems().size(), 1);
    }
}

TEST_F(Selection, TheListChangesOnRefreshOnly) {
    mDevices.Add("Studio", "10.0.0.7");
    Open();
    mDevices.records.clear();
    mDevices.Add("Stage", "10.0.0.8");
    mDevices.Add("Cellar", "10.0.0.9");
    RunLoopPasses(3);
    EXPECT_EQ(List().count(), 1);
    EXPECT_EQ(mpDialog->tableViewObjectValueForTableColumn("", 0), "Studio");
    Press("Refresh");
    ASSERT_EQ(List().count(), 2);
    EXPECT_EQ(List().item(1)->text(), QStringLiteral("Cellar"));
    EXPECT_EQ(List().currentRow(), 0);
}

TEST_F(Selection, RefreshReplacesTheSelection) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    GetSettings().RecentDeviceName = "Stage";
    Open();
    List().setCurrentRow(0);
    Press("Refresh");
    EXPECT_EQ(List().currentRow(), 1);
    EXPECT_EQ(List().selectedItems().size(), 1);
}

// --- Modes ---

TEST_F(Selection, TheRadioButtonsSwitchTheMode) {
    mDevices.Add("Studio", "10.0.0.7");
    Open();
    Click<QRadioButton>(*mpDialog, "Enter IP address");
    ExpectMode(false);
    Click<QRadioButton>(*mpDialog, "Use found device");
    ExpectMode(true);
    Control<QPushButton>(*mpDialog, "OK").setFocus();
    Click<QRadioButton>(*mpDialog, "Use found device");
    ExpectMode(true);
}

TEST_F(Selection, AssistiveToolsSwitchTheModeToo) {
    Open();
    QAccessible::queryAccessibleInterface(&TypedButton())
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::toggleAction());
    ExpectMode(false);
}

TEST_F(Selection, MnemonicsSwitchTheMode) {
    Open();
    QTest::keyClick(&List(), Qt::Key_E, Qt::AltModifier);
    EXPECT_TRUE(WaitFor([this] { return TypedButton().isChecked(); })); // the press is animated
    ExpectMode(false);
    QTest::keyClick(&Octet(1), Qt::Key_U, Qt::AltModifier);
    EXPECT_TRUE(WaitFor([this] { return FoundButton().isChecked(); }));
    ExpectMode(true);
}

// --- Address fields ---

struct sOctetCase {
    const char* entered;
    const char* shown;
};

TEST_F(Selection, AFieldAlwaysShowsANumberInRange) {
    GetSettings().ConnectionAuto = false;
    Open();
    const std::array<sOctetCase, 17> cases = {{{"", "0"},
                                               {"300", "255"},
                                               {"255", "255"},
                                               {"256", "255"},
                                               {"-4", "0"},
                                               {"12x", "12"},
                                               {"x12", "0"},
                                               {"007", "7"},
                                               {"0", "0"},
                                               {" 42", "42"},
                                               {"1 2", "1"},
                                               {"99999999999999999999", "255"},
                                               {"4294967297", "255"},
                                               {"-99999999999999999999", "0"},
                                               {"12.", "12"},
                                               {".", "0"},
                                               {"1.5", "1"}}};
    for (const sOctetCase& row : cases) {
        Octet(2).setText(QString::fromUtf8(row.entered));
        mpDialog->controlTextDidChange(Octet(2));
        EXPECT_EQ(Octet(2).text().toStdString(), row.shown) << row.entered;
    }
}

TEST_F(Selection, TypingAnAddressWalksThroughTheFields) {
    GetSettings().ConnectionAuto = false;
    GetSettings().RecentDeviceIP = "1.2.3.4";
    Open();
    for (const char key : std::string("192.168.1.20")) {
        QTest::keyClick(mpDialog->focusWidget(), key);
    }
    EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20"));
    EXPECT_EQ(mpDialog->focusWidget(), &Octet(4));
}

TEST_F(Selection, ADotLeavesItsNumberAndGoesToTheNextField) {
    GetSettings().ConnectionAuto = false;
    Open();
    QTest::keyClicks(&Octet(1), QStringLiteral("192."));
    EXPECT_EQ(Octet(1).text(), QStringLiteral("192"));
    EXPECT_EQ(mpDialog->focusWidget(), &Octet(2));
    Octet(4).setFocus();
    QTest::keyClick(&Octet(4), '.');
    EXPECT_EQ(Octet(4).text(), QStringLiteral("0"));
    EXPECT_NE(mpDialog->focusWidget(), &Octet(4));
}

TEST_F(Selection, EmptyingAFieldLeavesNought) {
    GetSettings().ConnectionAuto = false;
    GetSettings().RecentDeviceIP = "1.2.3.4";
    Open();
    Octet(1).selectAll();
    QTest::keyClick(&Octet(1), Qt::Key_Backspace);
    EXPECT_EQ(Octet(1).text(), QStringLiteral("0"));
    QTest::keyClick(&Octet(1), Qt::Key_7);
    EXPECT_EQ(Octet(1).text(), QStringLiteral("7"));
}

// --- OK with a found device ---

TEST_F(Selection, OkTakesTheSelectedDevice) {
    mDevices.Add("Studio", "10.0.0.7", 9999);
    mDevices.Add("Stage", "10.0.0.8", 8888);
    GetSettings().RecentDeviceName = "Stage";
    GetSettings().ConnectionAuto = false;
    Open();
    Press("OK");
    EXPECT_EQ(mpDialog->GetResult(), 1);
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "10.0.0.8");
    EXPECT_EQ(mpDialog->GetPortNumber(), 10240);
    EXPECT_EQ(mpDialog->GetDeviceName(), "Stage");
    EXPECT_EQ(GetSettings().RecentDeviceName, "Stage");
    EXPECT_EQ(GetSettings().RecentDeviceIP, "10.0.0.8");
    EXPECT_TRUE(GetSettings().ConnectionAuto);
}

TEST_F(Selection, OkWithoutASelectedRowTakesTheFirst) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    GetSettings().RecentDeviceName = "Stage";
    Open();
    List().clearSelection();
    Press("OK");
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "10.0.0.7");
    EXPECT_EQ(mpDialog->GetDeviceName(), "Studio");
}

TEST_F(Selection, ReturnAndADoubleClickAreOk) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    Open();
    QTest::keyClick(&List(), Qt::Key_Down);
    QTest::keyClick(&List(), Qt::Key_Return);
    EXPECT_EQ(mpDialog->GetResult(), 1);
    EXPECT_EQ(mpDialog->GetDeviceName(), "Stage");

    GetSettings().RecentDeviceName = "Stage";
    Open();
    const QPoint place = List().visualItemRect(List().item(0)).center();
    QTest::mouseClick(List().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(List().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(mpDialog->GetResult(), 1);
    EXPECT_EQ(mpDialog->GetDeviceName(), "Studio");
}

// --- OK with a typed address ---

TEST_F(Selection, OkTakesTheTypedAddress) {
    mDevices.Add("Studio", "10.0.0.7");
    GetSettings().RecentDeviceName = "Studio";
    Open();
    Click<QRadioButton>(*mpDialog, "Enter IP address");
    for (const char key : std::string("192.168.1.20")) {
        QTest::keyClick(mpDialog->focusWidget(), key);
    }
    QTest::keyClick(mpDialog->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(mpDialog->GetResult(), 1);
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "192.168.1.20");
    EXPECT_EQ(mpDialog->GetPortNumber(), 10240);
    EXPECT_EQ(mpDialog->GetDeviceName(), "");
    EXPECT_EQ(GetSettings().RecentDeviceIP, "192.168.1.20");
    EXPECT_EQ(GetSettings().RecentDeviceName, "Studio") << "the last found device stays";
    EXPECT_FALSE(GetSettings().ConnectionAuto);
}

TEST_F(Selection, UntouchedEmptyFieldsGiveThreeDots) {
    GetSettings().ConnectionAuto = false;
    Open();
    Press("OK");
    EXPECT_EQ(mpDialog->GetResult(), 1);
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "...");
    EXPECT_EQ(GetSettings().RecentDeviceIP, "...");
}

// --- OK with an empty list ---

class EmptySelection : public Selection {
protected:
    void PressOkAndAnswer(const std::function<void(QMessageBox&)>& zAct) {
        const Answer<QMessageBox> answer(zAct);
        Press("OK");
    }
};

TEST_F(EmptySelection, OkAsksWhetherToTypeAnAddress) {
    Open();
    PressOkAndAnswer([](QMessageBox& zrBox) {
        EXPECT_EQ(zrBox.text(), QStringLiteral("No devices were found"));
        EXPECT_EQ(zrBox.informativeText(),
                  QStringLiteral("Do you wish to try manually entering an IP address?"));
        Click<QPushButton>(zrBox, "Yes");
    });
    EXPECT_EQ(mpDialog->GetResult(), 0);
    ExpectMode(false);
    EXPECT_TRUE(GetSettings().ConnectionAuto) << "nothing has been chosen yet";
}

TEST_F(EmptySelection, NoCancels) {
    GetSettings().RecentDeviceIP = "1.2.3.4";
    Open();
    ModalSession session(*mpDialog);
    PressOkAndAnswer([](QMessageBox& zrBox) { Click<QPushButton>(zrBox, "No"); });
    EXPECT_EQ(mpDialog->GetResult(), 2);
    EXPECT_EQ(session.RunOnce(), ModalSession::eModalResponse::Stopped);
    EXPECT_EQ(GetSettings().RecentDeviceIP, "1.2.3.4");
}

TEST_F(EmptySelection, NothingInTheDialogActsWhileTheQuestionIsUp) {
    Open();
    const ModalSession session(*mpDialog);
    PressOkAndAnswer([&](QMessageBox& zrBox) {
        Press("OK");
        Press("Cancel");
        Control<QPushButton>(*mpDialog, "OK").click(); // as an assistive tool presses it, without an event
        Control<QPushButton>(*mpDialog, "Cancel").click();
        EXPECT_EQ(mpDialog->GetResult(), 0);
        EXPECT_TRUE(zrBox.isVisible());
        Click<QPushButton>(zrBox, "Yes");
    });
    EXPECT_EQ(mpDialog->GetResult(), 0);
}

TEST_F(EmptySelection, QuittingDuringTheQuestionCancels) {
    Open();
    const ModalSession session(*mpDialog);
    PressOkAndAnswer([](QMessageBox& /*zrBox*/) { ModalSession::StopAll(); });
    EXPECT_EQ(mpDialog->GetResult(), 2);
}

// --- Leaving ---

TEST_F(Selection, TheFirstAnswerCounts) {
    mDevices.Add("Studio", "10.0.0.1");
    SelectController& dialog = Open();
    dialog.okDlg();
    dialog.cancelDlg();
    EXPECT_EQ(dialog.GetResult(), 1);
    Open().cancelDlg();
    mpDialog->okDlg();
    EXPECT_EQ(mpDialog->GetResult(), 2);
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "");
}

TEST_F(Selection, AnArrowKeySwitchesTheModeAndTakesTheKeyboardThere) {
    mDevices.Add("Studio", "10.0.0.1");
    Open();
    const ModalSession session(*mpDialog);
    FoundButton().setFocus();
    QTest::keyClick(&FoundButton(), Qt::Key_Down);
    EXPECT_TRUE(WaitFor([this] { return mpDialog->focusWidget() == &Octet(1); }));
    ExpectMode(false);
    TypedButton().setFocus();
    QTest::keyClick(&TypedButton(), Qt::Key_Up);
    EXPECT_TRUE(WaitFor([this] { return mpDialog->focusWidget() == &List(); }));
    ExpectMode(true);
}

TEST_F(Selection, CancelEscapeAndTheFrameGiveTwo) {
    mDevices.Add("Studio", "10.0.0.7");
    const std::array<std::function<void()>, 3> ways = {[this] { Press("Cancel"); },
                                                       [this] { QTest::keyClick(&List(), Qt::Key_Escape); },
                                                       [this] { EXPECT_FALSE(CloseByFrame(*mpDialog)); }};
    for (const auto& leave : ways) {
        Open();
        leave();
        EXPECT_EQ(mpDialog->GetResult(), 2);
        EXPECT_EQ(mpDialog->GetIPAddressStr(), "");
        EXPECT_EQ(GetSettings().RecentDeviceIP, "");
    }
}

TEST_F(Selection, RunsInTheCallersSession) {
    mDevices.Add("Studio", "10.0.0.7");
    Open();
    ModalSession session(*mpDialog);
    QTimer::singleShot(0, [this] { Press("OK"); });
    while (mpDialog->GetResult() == 0) {
        session.RunOnce();
        RunLoop::RunSlice(std::chrono::milliseconds(100), [this] { return mpDialog->GetResult() != 0; });
    }
    EXPECT_EQ(session.RunOnce(), ModalSession::eModalResponse::Stopped);
    session.End();
    mpDialog->close();
    EXPECT_EQ(mpDialog->GetResult(), 1) << "closing by the program is not Cancel";
}

TEST_F(Selection, HelpLeavesTheDialogAsItIs) {
    mDevices.Add("Studio", "10.0.0.7");
    Open();
    const Browser browser;
    Press("Help");
    ASSERT_EQ(browser.Opened().size(), 1);
    EXPECT_EQ(browser.Opened().first().fileName(), "user-guide.html");
    EXPECT_EQ(mpDialog->GetResult(), 0);
    EXPECT_TRUE(mpDialog->isVisible());
}

} // namespace
