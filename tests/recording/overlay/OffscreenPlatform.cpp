// CTest lists the cases by running this executable before the test
// environment (QT_QPA_PLATFORM=offscreen) applies, and without a display the
// QApplication of the test main aborts. Choose the offscreen platform before
// main() runs unless the caller chose one.
#include <QByteArray>
#include <QtGlobal>

namespace {

const bool kOffscreenChosen = [] {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen"));
    return true;
}();

} // namespace
