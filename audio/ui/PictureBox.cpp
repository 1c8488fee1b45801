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

QImage& PictureBox::image()
{
    const QSize wanted = size().expandedTo(QSize(1, 1));
    if (wanted != m_image.size()) {
        m_image = QImage(wanted, QImage::Format_RGB32);
        m_image.fill(m_background);
    }
    return m_image;
}

void PictureBox::Cls()
{
    image().fill(m_background);
    update();
}

void PictureBox::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.drawImage(0, 0, image());
}

void PictureBox::resizeEvent(QResizeEvent*)
{
    image();
}

} // namespace mirabend
