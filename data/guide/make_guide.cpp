// Build-time tool: renders the quick guide's HTML to a PDF.
#include <QFile>
#include <QGuiApplication>
#include <QPageSize>
#include <QPdfWriter>
#include <QTextDocument>
#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_guide INPUT.html OUTPUT.pdf\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    QTextDocument document;
    document.setHtml(QString::fromUtf8(in.readAll()));
    QPdfWriter writer(QString::fromLocal8Bit(argv[2]));
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setTitle(QStringLiteral("Mirabend Quick Guide"));
    writer.setCreator(QStringLiteral("Mirabend"));
    document.setPageSize(QSizeF(writer.width(), writer.height()));
    document.print(&writer);
    return 0;
}
