#include "DatagramPeer.h"
#include "WindowFixture.h"

#include <QtWidgets/QListWidget>
#include <QtWidgets/QRadioButton>

#include <cstdlib>

namespace {

constexpr std::uint16_t kDiscoveryPort = 10245;

class DiscoveryWindowTest : public WindowFixture {
protected:
    /// Announces a device at the address of the scripted one until the dialog has news of it.
    bool HearsOfDevice(QWidget& dialog) {
        auto& refresh = Control<QPushButton>(dialog, "Refresh");
        DatagramPeer announcer(mDevice.Address());
        return WaitFor([&] {
            announcer.Send("Phone:FileServer:10240;", kDiscoveryPort);
            return refresh.accessibleDescription() == QStringLiteral("New devices were found");
        });
    }

    /// Waits for the device and lists it.
    bool FindInDialog(QWidget& dialog) {
        const bool heard = HearsOfDevice(dialog);
        Click<QPushButton>(dialog, "Refresh");
        auto& list = Control<QListWidget>(dialog, "Devices");
        return heard && list.count() == 1 && list.item(0)->text() == QStringLiteral("Phone");
    }

    /// Presses Connect, waits for the device in the list and cancels the dialog.
    void ExpectDeviceInDialog() {
        bool found = false;
        Meanwhile meanwhile;
        meanwhile.WhenShown("Select Device", [&](QWidget& dialog) {
            Control<QRadioButton>(dialog, "Use found device").click();
            found = FindInDialog(dialog);
            Click<QPushButton>(dialog, "Cancel");
        });
        Press("Connect");
        EXPECT_TRUE(found);
    }
};

TEST_F(DiscoveryWindowTest, TheProgramAnnouncesItself) {
    DatagramPeer listener("0.0.0.0", kDiscoveryPort);
    listener.Join("225.1.1.1");
    ASSERT_TRUE(WaitFor([&] { return listener.HasDatagram(); }));
    EXPECT_EQ(listener.Receive(), "mac:StreamPlayer:10241;");
}

TEST_F(DiscoveryWindowTest, ADeviceThatAnnouncesItselfIsFound) {
    ExpectDeviceInDialog();
}

/// A machine whose network comes only after the program.
class LateNetworkTest : public DiscoveryWindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(std::system("ip route del 224.0.0.0/4"), 0);
        DiscoveryWindowTest::SetUp();
    }
};

TEST_F(LateNetworkTest, RefreshStartsWhatCouldNotBeStartedBefore) {
    bool found = false;
    Meanwhile meanwhile;
    meanwhile.WhenShown("Select Device", [&](QWidget& dialog) {
        EXPECT_EQ(std::system("ip route add 224.0.0.0/4 dev lo"), 0);
        Control<QRadioButton>(dialog, "Use found device").click();
        Click<QPushButton>(dialog, "Refresh");
        found = FindInDialog(dialog);
        Click<QPushButton>(dialog, "Cancel");
    });
    Press("Connect");
    EXPECT_TRUE(found);
}

TEST_F(LateNetworkTest, OpeningTheDialogStartsItToo) {
    ASSERT_EQ(std::system("ip route add 224.0.0.0/4 dev lo"), 0);
    bool heard = false;
    Meanwhile meanwhile;
    meanwhile.WhenShown("Select Device", [&](QWidget& dialog) {
        heard = HearsOfDevice(dialog);
        Click<QPushButton>(dialog, "Cancel");
    });
    Press("Connect");
    EXPECT_TRUE(heard);
}

} // namespace
