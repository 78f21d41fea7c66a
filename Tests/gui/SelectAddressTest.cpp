#include "SelectFixture.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QInputMethodEvent>
#include <QtWidgets/QMenu>
#include <gmock/gmock.h>

#include <array>

namespace {

using ::testing::ElementsAre;

/// The dialog open for typing, over the address 1.2.3.4.
class PastedAddress : public Selection {
protected:
    void SetUp() override {
        Selection::SetUp();
        GetSettings().ConnectionAuto = false;
        GetSettings().RecentDeviceIP = "1.2.3.4";
        Open();
    }

    void TearDown() override { QGuiApplication::clipboard()->clear(); }

    static void Copy(const char* zText) { QGuiApplication::clipboard()->setText(QString::fromUtf8(zText)); }

    /// Pastes into a field without touching its selection and caret.
    void Paste(int zOctet, const char* zText) {
        Copy(zText);
        QTest::keyClick(&Octet(zOctet), Qt::Key_V, Qt::ControlModifier);
    }
};

TEST_F(PastedAddress, FillsAllFieldsFromAnyOfThem) {
    for (int octet = 1; octet <= 4; ++octet) {
        Open();
        Octet(octet).setFocus();
        Octet(octet).selectAll();
        Paste(octet, "192.168.10.20");
        EXPECT_THAT(Octets(), ElementsAre("192", "168", "10", "20")) << octet;
        EXPECT_EQ(mpDialog->focusWidget(), &Octet(4)) << octet;
    }
    Press("OK");
    EXPECT_EQ(mpDialog->GetIPAddressStr(), "192.168.10.20");
}

struct sWholeAddress {
    const char* pasted;
    std::vector<std::string> octets;
};

TEST_F(PastedAddress, MayHaveWhiteSpaceAroundItAndIsClamped) {
    const std::array<sWholeAddress, 5> cases = {{{"  192.168.1.20  ", {"192", "168", "1", "20"}},
                                                 {"\t192.168.1.20\r\n", {"192", "168", "1", "20"}},
                                                 {"300.256.007.0", {"255", "255", "7", "0"}},
                                                 {"99999999999999999999.1.2.3", {"255", "1", "2", "3"}},
                                                 {"0.0.0.0", {"0", "0", "0", "0"}}}};
    for (const sWholeAddress& row : cases) {
        Open();
        Paste(1, row.pasted);
        EXPECT_EQ(Octets(), row.octets) << row.pasted;
        EXPECT_EQ(mpDialog->focusWidget(), &Octet(4)) << row.pasted;
    }
}

TEST_F(PastedAddress, DoesNotMindWhatTheFieldHolds) {
    for (const int caret : {0, 1, 2}) {
        Octet(2).setText(QStringLiteral("12"));
        Octet(2).deselect();
        Octet(2).setCursorPosition(caret);
        Paste(2, "192.168.1.20");
        EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20")) << caret;
    }
}

TEST_F(PastedAddress, ComesByTheContextMenuToo) {
    Copy("192.168.1.20");
    const std::unique_ptr<QMenu> menu(Octet(3).createStandardContextMenu());
    for (QAction* action : menu->actions()) {
        if (action->text().startsWith(QStringLiteral("&Paste"))) {
            action->trigger();
        }
    }
    EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20"));
}

TEST_F(PastedAddress, ComesByAnInputMethodToo) {
    Octet(1).selectAll();
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("192.168.1.20"));
    QCoreApplication::sendEvent(&Octet(1), &event);
    EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20"));
}

TEST_F(PastedAddress, WhatElseIsOnTheClipboardDoesNotCount) {
    Copy("192.168.1.2");
    Octet(1).clear();
    QInputMethodEvent event;
    event.setCommitString(QStringLiteral("192.168.1.20"));
    QCoreApplication::sendEvent(&Octet(1), &event);
    EXPECT_THAT(Octets(), ElementsAre("192", "168", "1", "20"));
}

TEST_F(PastedAddress, TakesTheClipboardOnlyWhenItIsPasted) {
    Copy("192.168.1.20");
    Octet(1).selectAll();
    QTest::keyClicks(&Octet(1), QStringLiteral("10."));
    QTest::keyClicks(mpDialog->focusWidget(), QStringLiteral("9."));
    EXPECT_THAT(Octets(), ElementsAre("10", "9", "3", "4"));
    EXPECT_EQ(mpDialog->focusWidget(), &Octet(3));
}

struct sPastedText {
    const char* pasted;
    const char* octet;
    int focus;
};

TEST_F(PastedAddress, AnythingElsePastedIsAsIfTyped) {
    const std::array<sPastedText, 11> cases = {{{"192.168.1", "192", 2},
                                                {"1.2.3.4.5", "1", 2},
                                                {"12.13.14.15.", "12", 3},
                                                {"12.13.14.x", "12", 2},
                                                {"12. 13.14.15", "12", 2},
                                                {"12..14.15", "12", 2},
                                                {"-12.13.14.15", "0", 2},
                                                {"http://12.13.14.15", "0", 2},
                                                {"12.13.14.15:10240", "12", 2},
                                                {"77", "77", 2},
                                                {"77.", "77", 3}}};
    for (const sPastedText& row : cases) {
        Open();
        Octet(2).setFocus();
        Octet(2).selectAll();
        Paste(2, row.pasted);
        EXPECT_THAT(Octets(), ElementsAre("1", row.octet, "3", "4")) << row.pasted;
        EXPECT_EQ(mpDialog->focusWidget(), &Octet(row.focus)) << row.pasted;
    }
}

} // namespace
