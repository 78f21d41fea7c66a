#include "Hermetic.h"

#include <QtCore/QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const HermeticHome home;
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
