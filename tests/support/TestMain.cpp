#include <QApplication>
#include <gtest/gtest.h>

/// Every test program has a QApplication: timers, widgets and file watchers need one. As in the
/// game it is never deleted, because the sensor's threads end after main().
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    new QApplication(argc, argv);
    return RUN_ALL_TESTS();
}
