// mirabend-hwaccel: shows which hardware video encoders this machine offers,
// so the user can tell whether "Use Mirabend Hardware Acceleration" will help.
//   mirabend-hwaccel            a small window listing the encoders
//   mirabend-hwaccel --minimized the same window, started minimised
//   mirabend-hwaccel --list     the list on standard output
#include "recording/ui/hwaccel/HardwareEncoders.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    const auto encoders = mirabend::hardwareEncoders();
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--list") == 0) {
            std::fputs(mirabend::describeHardwareEncoders(encoders).c_str(), stdout);
            return 0;
        }
    }
    QApplication app(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Mirabend Hardware Acceleration"));
    auto* layout = new QVBoxLayout(&window);
    int usable = 0;
    auto* list = new QListWidget(&window);
    for (const auto& e : encoders) {
        usable += e.available ? 1 : 0;
        auto* item = new QListWidgetItem(
            QStringLiteral("%1 - %2 (%3)")
                .arg(QString::fromStdString(e.name), QString::fromStdString(e.description),
                     e.available ? QStringLiteral("available") : QStringLiteral("not available")),
            list);
        item->setForeground(e.available ? QColor(0, 110, 0) : QColor(120, 120, 120));
    }
    auto* summary = new QLabel(&window);
    summary->setWordWrap(true);
    summary->setText(usable > 0
                         ? QStringLiteral("This machine offers %1 hardware video encoder(s).").arg(usable)
                         : QStringLiteral("This machine offers no hardware video encoder; recordings "
                                          "are encoded on the processor."));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, &window);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &window, &QWidget::close);
    layout->addWidget(summary);
    layout->addWidget(list);
    layout->addWidget(buttons);
    window.resize(520, 320);
    bool minimised = false;
    for (int i = 1; i < argc; ++i)
        minimised = minimised || std::strcmp(argv[i], "--minimized") == 0;
    if (minimised)
        window.showMinimized();
    else
        window.show();
    return app.exec();
}
