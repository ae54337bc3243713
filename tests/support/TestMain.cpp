#include <QApplication>
#include <gtest/gtest.h>

/// Every test program owns a QApplication: timers, widgets and file watchers need one.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
