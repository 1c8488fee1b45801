// libFuzzer target for the notes' RTF reader: any bytes must read without a
// crash, a hang or a memory error, and what was read must write out as RTF
// that reads back without damage.
#include "whiteboard/notes/rtf/RtfReader.h"
#include "whiteboard/notes/rtf/RtfWriter.h"

#include <QGuiApplication>
#include <QTextDocument>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    // Fonts need a GUI application; the offscreen platform needs no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QTextDocument document;
    mirabend::readRtf(input, document);
    const QByteArray written = mirabend::writeRtf(document);
    QTextDocument again;
    if (mirabend::readRtf(written, again).failure)
        std::abort(); // our own output must always read cleanly
    return 0;
}
