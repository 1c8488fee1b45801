// Test main for integration tests: a private Xvfb display is started before
// the QApplication, used through $DISPLAY on the xcb platform, and stopped by
// its process id when the tests end. Listing the tests starts nothing.
#include "support/XvfbServer.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>

int main(int argc, char** argv)
{
    ::testing::InitGoogleMock(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    auto xvfb = std::make_unique<mirabend::test::XvfbServer>();
    if (!xvfb->ok()) {
        std::fprintf(stderr, "Xvfb could not be started; install the xvfb package\n");
        return 1;
    }
    setenv("DISPLAY", xvfb->display().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    unsetenv("WAYLAND_DISPLAY");
    int result = 0;
    {
        QApplication app(argc, argv);
        result = RUN_ALL_TESTS();
    }
    xvfb.reset();
    return result;
}
