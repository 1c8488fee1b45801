#include "shell/web/WebEngineSetup.h"

#include <QByteArray>
#include <QLoggingCategory>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <unistd.h>

namespace mirabend {

void prepareWebEngine() {
    static bool prepared = false;
    if (prepared)
        return;
    prepared = true;
    // A backend the user asked for stays theirs.
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // WebEngine reports its GL set-up on every start; users need not read it.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext.info=false"));
    if (geteuid() == 0) {
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
        if (!flags.contains("--disable-gpu"))
            qputenv("QTWEBENGINE_CHROMIUM_FLAGS", QByteArray(flags + " --disable-gpu").trimmed());
    }
}

} // namespace mirabend
