// The start-up procedure of the mirabend executable: command-line modes and
// --help/--version first, then the widget library, then the main window.
#include "TerminationSignals.h"
#include "recording/ui/UnfinishedRecordings.h"
#include "shell/Mirabend_frm.h"
#include "shell/StartUp.h"
#include "shell/wiring/ShellWiring.h"
#include "util/CommandLineTool.h"
#include "util/QtPrompts.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QScreen>
#include <QStringList>
#include <QTimer>
#include <cstdio>
#include <cstring>

namespace {

void printHelp(const mirabend::CommandLineTool* const* tools, int count)
{
    std::printf("Usage: mirabend [PRESENTATION]\n"
                "       mirabend MODE [options]\n\n"
                "Mirabend shows your slides, camera, whiteboard, notes and a web page on one stage\n"
                "and records it with sound to a video file.\n\n"
                "  PRESENTATION         open this .ppt, .pptx or .pps file instead of the welcome show\n"
                "  -h, --help           show this help and exit\n"
                "  -v, --version        show the version and exit\n");
    for (int i = 0; i < count; ++i) {
        std::printf("\n  %s\n", tools[i]->synopsis);
        const QStringList lines = QString::fromUtf8(tools[i]->help).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString& line : lines)
            std::printf("      %s\n", qPrintable(line.trimmed()));
    }
    std::printf("\nFiles are written to the program folder when it is writable, else to\n"
                "$XDG_DATA_HOME/mirabend. The notes board is kept in\n"
                "$XDG_DATA_HOME/mirabend/notes.rtf; recordings in progress are listed under\n"
                "$XDG_STATE_HOME/mirabend and repaired at the next start if a crash cut them short.\n");
}

// The widget library is ready when the application has a screen to show the
// main window on and the toolbar pictures load.
bool initCommonControls()
{
    mirabend::Mirabend_frm::registerResources();
    if (!QGuiApplication::primaryScreen())
        return false;
    return !QIcon(QStringLiteral(":/icons/record.svg")).pixmap(16, 16).isNull();
}

} // namespace

int main(int argc, char** argv)
{
    int toolCount = 0;
    const mirabend::CommandLineTool* const* tools = mirabend::commandLineTools(&toolCount);
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--help") || !std::strcmp(argv[i], "-h")) {
            printHelp(tools, toolCount);
            return 0;
        }
        if (!std::strcmp(argv[i], "--version") || !std::strcmp(argv[i], "-v")) {
            std::printf("Mirabend %s\n", MIRABEND_VERSION);
            return 0;
        }
    }
    for (int t = 0; t < toolCount; ++t) {
        for (int i = 1; i < argc; ++i) {
            if (!std::strcmp(argv[i], tools[t]->option))
                return tools[t]->run(argc, argv);
        }
    }
    QString presentation;
    for (int i = 1; i < argc; ++i) {
        // A restart after a display change starts as a fresh start does.
        if (!std::strcmp(argv[i], "RESTART"))
            continue;
        if (argv[i][0] == '-') {
            std::fprintf(stderr, "mirabend: unknown option %s (see mirabend --help)\n", argv[i]);
            return 2;
        }
        presentation = QFileInfo(QString::fromLocal8Bit(argv[i])).absoluteFilePath();
    }

    QApplication::setApplicationName(QStringLiteral("mirabend"));
    QApplication::setApplicationDisplayName(QStringLiteral("Mirabend"));
    QApplication::setApplicationVersion(QStringLiteral(MIRABEND_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("mirabend"));
    QApplication app(argc, argv);
    mirabend::QtPrompts prompts;

    if (!mirabend::commonControlsReady(prompts, initCommonControls))
        return 1;

    mirabend::Mirabend_frm window(mirabend::makeShellServices(prompts));
    prompts.setParent(&window);
    window.start();
    if (!presentation.isEmpty())
        window.context().ports.slides->openFile(presentation);
    else
        window.context().ports.slides->openSlidesStart();
    // Recordings a crash left unfinished are repaired once the window shows.
    QTimer::singleShot(0, &window,
                       [&prompts, &window] { mirabend::UnfinishedRecordings(prompts).repairAll(&window); });
    // Made after the window so that it goes first: a second signal while the
    // window and the recorder wind down ends the program at once.
    mirabend::TerminationSignals terminationSignals;
    return app.exec();
}
