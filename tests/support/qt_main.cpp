// Test main for widget tests: one QApplication for the whole executable. The
// platform comes from QT_QPA_PLATFORM (offscreen under CTest).
#include <QApplication>
#include <cstdlib>
#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleMock(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
