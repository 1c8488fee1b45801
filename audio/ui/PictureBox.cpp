#include "audio/ui/PictureBox.h"

#include <QPainter>
#include <QResizeEvent>

namespace mirabend {

PictureBox::PictureBox(QWidget* parent, QColor background)
    : QWidget(parent)
    , m_background(background)
    , m_image(1, 1, QImage::Format_RGB32)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    Cls();
}

void PictureBox::Cls()
{
    m_image.fill(m_background);
    update();
}

void PictureBox::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.drawImage(0, 0, m_image);
}

void PictureBox::resizeEvent(QResizeEvent* event)
{
    const QSize size = event->size().expandedTo(QSize(1, 1));
    if (size != m_image.size()) {
        m_image = QImage(size, QImage::Format_RGB32);
        Cls();
    }
}

} // namespace mirabend
