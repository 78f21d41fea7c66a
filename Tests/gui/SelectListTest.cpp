#include "SelectFixture.h"

#include "WrappingLabel.h"

#include <QtCore/QScopeGuard>
#include <QtGui/QHelpEvent>
#include <QtGui/QTextDocument>
#include <QtWidgets/QLayout>
#include <QtWidgets/QToolTip>

#include <array>
#include <functional>
#include <set>

namespace {

constexpr const char* kLooking =
    "Looking for devices. If yours does not appear, check that it is on the same network, that its file "
    "server is on, and that this computer's firewall lets UDP port 10245 in.";
constexpr const char* kCannotLook =
    "Devices cannot be looked for at the moment. Check the network connection and press Refresh.";
constexpr const char* kCannotLookTyping =
    "Devices cannot be looked for at the moment. Check the network connection, choose \"Use found device\" "
    "and press Refresh.";
constexpr const char* kNews = "New devices were found. Press Refresh to see them.";
constexpr const char* kNewsTyping =
    "New devices were found. To see them, choose \"Use found device\" and press Refresh.";

// What assistive tools say of the list and the button while there is nothing else to say.
constexpr const char* kDevices = "The devices found on the network";
constexpr const char* kRefresh = "Lists the devices found so far";

class SelectionList : public Selection {
protected:
    WrappingLabel& HintLabel() { return *mpDialog->findChild<WrappingLabel*>(); }

    /// The line under the list as people and assistive tools get it; "" while there is none.
    std::string Hint() {
        WrappingLabel& label = HintLabel();
        if (!label.isVisible()) {
            EXPECT_EQ(AccessibleText(List(), QAccessible::Description), kDevices);
            return "";
        }
        EXPECT_EQ(label.textFormat(), Qt::PlainText);
        EXPECT_EQ(AccessibleText(label, QAccessible::Name), label.text());
        EXPECT_EQ(AccessibleText(List(), QAccessible::Description), label.text());
        return label.text().toStdString();
    }

    void ExpectNewsOnTheButton(bool zNews) {
        QPushButton& button = RefreshButton();
        EXPECT_EQ(button.text(), QStringLiteral("&Refresh"));
        EXPECT_EQ(button.icon().isNull(), !zNews);
        EXPECT_EQ(AccessibleText(button, QAccessible::Description),
                  zNews ? QStringLiteral("New devices were found") : QString(kRefresh));
    }

    bool WaitForHint(const char* zText) {
        return WaitFor([&] { return Hint() == zText; });
    }

    /// What a row's tool tip looks like to people, after the toolkit's guess whether it is rich text.
    QString ShownToolTip(int zRow) {
        const QPoint place = List().visualItemRect(List().item(zRow)).center();
        QHelpEvent event(QEvent::ToolTip, place, List().viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(List().viewport(), &event);
        const QString text = QToolTip::text();
        QToolTip::hideText();
        if (!Qt::mightBeRichText(text)) {
            return text;
        }
        QTextDocument document;
        document.setHtml(text);
        return document.toPlainText();
    }

    QString RowDescription(int zRow) {
        return QAccessible::queryAccessibleInterface(&List())->child(zRow)->text(QAccessible::Description);
    }

    /// Nothing of the line is cut, nothing lies outside the window or over something else.
    void ExpectWholeHint() {
        const WrappingLabel& label = HintLabel();
        if (label.isVisible()) {
            EXPECT_GE(label.height(), label.heightForWidth(label.width()));
            EXPECT_GE(label.y(), List().geometry().bottom());
            EXPECT_LT(label.geometry().bottom(), TypedButton().y());
            EXPECT_LT(label.geometry().right(), RefreshButton().x());
        }
        for (const QWidget* child : mpDialog->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            EXPECT_TRUE(!child->isVisible() || mpDialog->rect().contains(child->geometry()))
                << child->objectName().toStdString();
        }
    }

    /// Leads the open dialog through every state of the line and tells zLook of each. Every press has it
    /// look at the live list at once.
    void ShowEveryHint(const std::function<void()>& zLook) {
        std::set<std::string> shown;
        for (const bool canStart : {true, false}) {
            mDevices.canStart = canStart;
            for (const bool hasNews : {true, false}) {
                mDevices.records.clear();
                Click<QRadioButton>(*mpDialog, "Use found device");
                Press("Refresh");
                if (hasNews) {
                    mDevices.Add("Studio", "10.0.0.7");
                }
                for (const char* mode : {"Enter IP address", "Use found device"}) {
                    Click<QRadioButton>(*mpDialog, mode);
                    shown.insert(Hint());
                    zLook();
                }
            }
        }
        mDevices.Add("Studio", "10.0.0.7");
        Press("Refresh");
        shown.insert(Hint());
        zLook();
        EXPECT_EQ(shown,
                  (std::set<std::string>{"", kLooking, kCannotLook, kCannotLookTyping, kNews, kNewsTyping}));
    }
};

// --- Starting to listen ---

struct sLateDeviceList : sDeviceList {
    bool EnsureListening() override {
        if (records.empty()) {
            Add("Studio", "10.0.0.7");
        }
        return true;
    }
};

TEST_F(SelectionList, TheSourceIsStartedBeforeItIsRead) {
    sLateDeviceList devices;
    SelectController dialog(&mMain);
    dialog.Init(&devices);
    EXPECT_EQ(dialog.numberOfRowsInTableView(), 1);
    devices.records.clear();
    dialog.OnRefreshButton();
    EXPECT_EQ(dialog.numberOfRowsInTableView(), 1);
}

TEST_F(SelectionList, AFailedStartIsTriedAgainOnRefreshAndOnOpening) {
    mDevices.canStart = false;
    Open();
    EXPECT_EQ(mDevices.starts, 1);
    EXPECT_EQ(Hint(), kCannotLook);
    Press("Refresh");
    EXPECT_EQ(mDevices.starts, 2);
    EXPECT_EQ(Hint(), kCannotLook);
    mDevices.canStart = true;
    Press("Refresh");
    EXPECT_EQ(Hint(), kLooking);
    mDevices.canStart = false;
    Press("Refresh");
    EXPECT_EQ(Hint(), kCannotLook);
    mDevices.canStart = true;
    Open();
    EXPECT_EQ(mDevices.starts, 5);
    EXPECT_EQ(Hint(), kLooking);
}

TEST_F(SelectionList, NothingButOpeningAndRefreshStartsTheSource) {
    mDevices.canStart = false;
    Open();
    mDevices.Add("Studio", "10.0.0.7");
    ASSERT_TRUE(WaitForHint(kNews)); // the live list has been looked at
    EXPECT_EQ(mDevices.starts, 1);
}

TEST_F(SelectionList, InitAndLoadingMayComeInAnyOrder) {
    GetSettings().RecentDeviceIP = "1.2.3.4";
    GetSettings().ConnectionAuto = false;
    mDevices.Add("Studio", "10.0.0.7");
    for (const bool initFirst : {false, true}) {
        mpDialog = std::make_unique<SelectController>(&mMain);
        if (!initFirst) {
            mpDialog->windowDidLoad();
            EXPECT_EQ(mpDialog->numberOfRowsInTableView(), 0);
        }
        mpDialog->Init(&mDevices);
        if (initFirst) {
            mpDialog->windowDidLoad();
        }
        ShowActive(*mpDialog);
        ExpectMode(true);
        EXPECT_EQ(List().count(), 1);
        EXPECT_EQ(List().currentRow(), 0);
        EXPECT_EQ(Octets(), (std::vector<std::string>{"1", "2", "3", "4"}));
    }
}

// --- The line under the list ---

TEST_F(SelectionList, AnEmptyListSaysWhatToCheck) {
    Open();
    EXPECT_EQ(Hint(), kLooking);
    ExpectNewsOnTheButton(false);
    Click<QRadioButton>(*mpDialog, "Enter IP address");
    EXPECT_EQ(Hint(), kLooking);
}

TEST_F(SelectionList, WithoutASourceItSaysSoToo) {
    mpDialog = std::make_unique<SelectController>(&mMain);
    mpDialog->Init(nullptr);
    ShowActive(*mpDialog);
    EXPECT_EQ(Hint(), kLooking);
    Press("Refresh");
    EXPECT_EQ(Hint(), kLooking);
}

TEST_F(SelectionList, AFilledListNeedsNoWords) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.canStart = false;
    Open();
    EXPECT_EQ(Hint(), "");
    mDevices.records.clear();
    Press("Refresh");
    EXPECT_EQ(Hint(), kCannotLook);
    mDevices.Add("Studio", "10.0.0.7");
    Press("Refresh");
    EXPECT_EQ(Hint(), "");
}

TEST_F(SelectionList, WhileTypingItDoesNotSendPeopleToADisabledButton) {
    mDevices.canStart = false;
    Open();
    Click<QRadioButton>(*mpDialog, "Enter IP address");
    EXPECT_EQ(Hint(), kCannotLookTyping);
    mDevices.Add("Studio", "10.0.0.7");
    EXPECT_TRUE(WaitForHint(kNewsTyping));
    Click<QRadioButton>(*mpDialog, "Use found device");
    EXPECT_EQ(Hint(), kNews);
    mDevices.records.clear();
    EXPECT_TRUE(WaitForHint(kCannotLook));
}

TEST_F(SelectionList, TheLineIsWholeAtAnySizeAndMovesNothing) {
    Open();
    for (const QSize& size : {mpDialog->minimumSize(), mpDialog->size(), QSize(900, 700)}) {
        mpDialog->resize(size);
        ASSERT_TRUE(WaitFor([&] { return mpDialog->size() == size; }));
        const QRect button = RefreshButton().geometry();
        const QPoint list = List().pos();
        ShowEveryHint([&] {
            mpDialog->layout()->activate();
            ExpectWholeHint();
            EXPECT_EQ(mpDialog->size(), size);
            EXPECT_EQ(RefreshButton().geometry(), button);
            EXPECT_EQ(List().pos(), list);
        });
    }
}

TEST_F(SelectionList, TheLineIsWholeInLargeLetters) {
    const QFont usual = QApplication::font();
    const auto restore = qScopeGuard([&] { QApplication::setFont(usual); });
    Open();
    const int usualHeight = mpDialog->minimumHeight();
    QFont large = usual;
    large.setPointSizeF(usual.pointSizeF() * 2);
    QApplication::setFont(large); // while the dialog is up, as in the settings of the desktop
    ASSERT_TRUE(WaitFor([&] { return mpDialog->minimumHeight() > usualHeight; }));
    mpDialog->resize(mpDialog->minimumSize());
    ShowEveryHint([&] {
        mpDialog->layout()->activate();
        ExpectWholeHint();
    });
}

// --- Devices heard of since ---

TEST_F(SelectionList, NewDevicesShowOnTheButtonAndUnderTheList) {
    mDevices.Add("Studio", "10.0.0.7");
    Open();
    ExpectNewsOnTheButton(false);
    const QSize plainSize = RefreshButton().size();
    mDevices.Add("Stage", "10.0.0.8");
    ASSERT_TRUE(WaitForHint(kNews));
    ExpectNewsOnTheButton(true);
    EXPECT_EQ(List().count(), 1) << "the list changes on Refresh only";
    EXPECT_EQ(RefreshButton().size(), plainSize);
    EXPECT_EQ(RefreshButton().size(), RefreshButton().size().expandedTo(RefreshButton().sizeHint()));
    QTest::keyClick(&List(), Qt::Key_R, Qt::AltModifier);
    ASSERT_TRUE(WaitFor([this] { return List().count() == 2; })); // the press is animated
    EXPECT_EQ(Hint(), "");
    ExpectNewsOnTheButton(false);
}

TEST_F(SelectionList, AFirstDeviceIsNewsInsteadOfTheSearch) {
    Open();
    EXPECT_EQ(Hint(), kLooking);
    mDevices.Add("Studio", "10.0.0.7");
    ASSERT_TRUE(WaitForHint(kNews));
    ExpectNewsOnTheButton(true);
    EXPECT_EQ(List().count(), 0);
    mDevices.records.clear();
    ASSERT_TRUE(WaitForHint(kLooking)) << "it has gone again";
    ExpectNewsOnTheButton(false);
}

TEST_F(SelectionList, AnotherNameOrFewerDevicesAreNoNews) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    mDevices.Add("Cellar", "10.0.0.9");
    Open();
    mDevices.records.erase(mDevices.records.begin());
    mDevices.records[0].nameValue = "Hall";
    RunLoopFor(std::chrono::milliseconds(1200)); // at least two looks at the live list
    EXPECT_EQ(Hint(), "");
    ExpectNewsOnTheButton(false);
    mDevices.Add("Stage", "10.0.0.10");
    ASSERT_TRUE(WaitForHint(kNews)) << "a device is its address, not its name";
}

// --- Addresses ---

TEST_F(SelectionList, TheAddressTellsDevicesOfOneNameApart) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Studio", "10.0.0.8");
    Open();
    const std::array<QString, 2> addresses = {QStringLiteral("10.0.0.7"), QStringLiteral("10.0.0.8")};
    for (int row = 0; row < 2; ++row) {
        EXPECT_EQ(RowDescription(row), addresses[static_cast<std::size_t>(row)]);
        EXPECT_EQ(ShownToolTip(row), addresses[static_cast<std::size_t>(row)]);
        EXPECT_EQ(QAccessible::queryAccessibleInterface(&List())->child(row)->text(QAccessible::Name),
                  QStringLiteral("Studio (%1)").arg(addresses[static_cast<std::size_t>(row)]));
    }
    QTest::keyClick(&List(), Qt::Key_Down);
    Press("OK");
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "10.0.0.8");
    EXPECT_EQ(mpDialog->GetDeviceName(), "Studio");
}

TEST_F(SelectionList, ANameOfItsOwnNeedsNoAddress) {
    mDevices.Add("Studio", "10.0.0.7");
    mDevices.Add("Stage", "10.0.0.8");
    Open();
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("Studio"));
    EXPECT_EQ(List().item(1)->text(), QStringLiteral("Stage"));
}

TEST_F(SelectionList, AnEndlessNameIsAbbreviated) {
    mDevices.Add(std::string(9000, 'x'), "10.0.0.7");
    Open();
    EXPECT_EQ(List().item(0)->text().toStdString(), std::string(189, 'x') + "\u2026" + std::string(63, 'x'));
    Press("OK");
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "10.0.0.7");
}

TEST_F(SelectionList, MarkupIsShownAsItIs) {
    mDevices.Add("<b>Studio</b>", "<b>10</b> &amp; <img src=x>");
    mDevices.Add("Stage", "fe80::1 & \"more\"");
    Open();
    EXPECT_EQ(ShownToolTip(0), QStringLiteral("<b>10</b> &amp; <img src=x>"));
    EXPECT_EQ(RowDescription(0), QStringLiteral("<b>10</b> &amp; <img src=x>"));
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("<b>Studio</b>"));
    EXPECT_EQ(ShownToolTip(1), QStringLiteral("fe80::1 & \"more\""));
}

} // namespace
