#include "recording/engine/OverlayStage.h"

#include <QGuiApplication>

namespace mirabend {

bool overlayPossible() { return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr; }

void paintOverlay(QImage& frame, const OverlaySettings& settings, const QDateTime& now)
{
    // The drawing itself belongs to the overlay library (recording/overlay);
    // it is linked in here once it is part of the build.
    (void)frame;
    (void)settings;
    (void)now;
}

} // namespace mirabend
