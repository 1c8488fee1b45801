// Test main for widget tests: one QApplication for the whole executable. The
// platform comes from QT_QPA_PLATFORM (offscreen under CTest).
#include <QApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleMock(&argc, argv);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
