#include "shell/slideshow/NoPresentationProgram.h"

#include <QTimer>

namespace mirabend {

namespace {
const char* const kMissing = "Mirabend was built without LibreOffice's SDK";
}

void NoPresentationProgram::prepare() {
    QTimer::singleShot(0, this, [this] { Q_EMIT prepared({ShowError::NoProgram, kMissing}); });
}

ShowFailure NoPresentationProgram::startShow(const QString&, NativeHandle, QSize) {
    return {ShowError::NoProgram, kMissing};
}

ShowFailure NoPresentationProgram::go(SlideMove) {
    return {ShowError::NoProgram, kMissing};
}

} // namespace mirabend
