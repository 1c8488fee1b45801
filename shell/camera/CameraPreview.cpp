#include "shell/camera/CameraPreview.h"

#include "shell/camera/FrameImage.h"

#include <QPainter>
#include <QPainterPath>

namespace mirabend {

CameraPreview::CameraPreview(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("cameraPreview"));
    // Only the inset's shape is painted; around a rounded or round inset the
    // stage shows through.
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAutoFillBackground(false);
}

void CameraPreview::setFrame(const QVideoFrame& frame) {
    m_frame = frame;
    m_pictureStale = true;
    m_noCamera = false;
    update();
}

void CameraPreview::clear() {
    m_frame = QVideoFrame();
    m_picture = QImage();
    update();
}

void CameraPreview::setNoCamera(bool none) {
    m_noCamera = none;
    if (none) {
        m_frame = QVideoFrame();
        m_picture = QImage();
    }
    update();
}

void CameraPreview::setKeepAspect(bool keep) {
    m_keepAspect = keep;
    update();
}

void CameraPreview::setShape(InsetShape shape) {
    m_shape = shape;
    setAttribute(Qt::WA_OpaquePaintEvent, shape == InsetShape::Rectangle);
    update();
}

QRect CameraPreview::pictureRect(QSize pane, QSize picture, bool keepAspect) {
    const QRect whole(QPoint(0, 0), pane);
    if (!keepAspect || picture.isEmpty() || pane.isEmpty())
        return whole;
    const QSize fitted = picture.scaled(pane, Qt::KeepAspectRatio);
    QRect rect(QPoint(0, 0), fitted);
    rect.moveCenter(whole.center());
    return rect;
}

QPainterPath CameraPreview::outline(QSize pane, InsetShape shape) {
    QPainterPath path;
    const QRectF whole(QPointF(0, 0), QSizeF(pane));
    switch (shape) {
    case InsetShape::Rectangle:
        path.addRect(whole);
        break;
    case InsetShape::Rounded: {
        const qreal radius = std::min(whole.width(), whole.height()) * 0.12;
        path.addRoundedRect(whole, radius, radius);
        break;
    }
    case InsetShape::Circle: {
        const qreal diameter = std::min(whole.width(), whole.height());
        QRectF circle(0, 0, diameter, diameter);
        circle.moveCenter(whole.center());
        path.addEllipse(circle);
        break;
    }
    }
    return path;
}

void CameraPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, m_shape != InsetShape::Rectangle);
    const QPainterPath shape = outline(size(), m_shape);
    // A rectangle is painted whole (the stage under it is not); a picture
    // that covers it needs no background.
    const bool rectangle = m_shape == InsetShape::Rectangle;
    if (!rectangle || !m_frame.isValid() || m_keepAspect)
        painter.fillPath(shape, QColor(0x0d, 0x0f, 0x12));
    if (!rectangle)
        painter.setClipPath(shape);
    if (m_frame.isValid()) {
        QRect target = pictureRect(size(), m_frame.size(), m_keepAspect);
        if (m_shape == InsetShape::Circle && !m_keepAspect) {
            // A round inset shows the picture's middle, undistorted.
            const QRect circle = shape.boundingRect().toAlignedRect();
            target =
                QRect(QPoint(0, 0), m_frame.size().scaled(circle.size(), Qt::KeepAspectRatioByExpanding));
            target.moveCenter(circle.center());
        }
        // Each frame is converted once, at the size it is shown.
        if (m_picture.size() != target.size() || m_pictureStale) {
            m_picture = frameImage(m_frame, target.size(), std::move(m_picture));
            m_pictureStale = false;
        }
        if (!m_picture.isNull()) {
            painter.drawImage(target.topLeft(), m_picture);
            ++m_framesPainted;
        }
    } else if (m_noCamera) {
        painter.setPen(QColor(0x8a, 0x93, 0xa3));
        QFont font = painter.font();
        font.setPixelSize(std::max(10, std::min(width(), height()) / 8));
        painter.setFont(font);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, tr("No camera"));
    }
}

void CameraPreview::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    Q_EMIT shownChanged(true);
}

void CameraPreview::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    Q_EMIT shownChanged(false);
}

} // namespace mirabend
