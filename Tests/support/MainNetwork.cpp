#include "Hermetic.h"
#include "PrivateNetwork.h"

#include <QtCore/QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const HermeticHome home;
    ::testing::InitGoogleTest(&argc, argv);
    if (!EnterPrivateNetwork() && !::testing::GTEST_FLAG(list_tests)) {
        return kSkippedStatus;
    }
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
