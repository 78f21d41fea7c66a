#include "Hermetic.h"
#include "PrivateNetwork.h"

#include <QtWidgets/QApplication>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    const HermeticHome home;
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::unsetenv("QT_QPA_PLATFORMTHEME");
    ::unsetenv("XDG_CURRENT_DESKTOP");
    ::testing::InitGoogleTest(&argc, argv);
    // Every main window announces itself by multicast.
    if (!EnterPrivateNetwork() && !::testing::GTEST_FLAG(list_tests)) {
        return kSkippedStatus;
    }
    const QApplication application(argc, argv);
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
    return RUN_ALL_TESTS();
}
