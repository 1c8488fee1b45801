#pragma once
// A display surface that keeps what was drawn on it, like a picture box with
// a persistent image: drawing code paints into image(), the widget shows it.
// Its scale is pixels.
//
// Thread contract: UI thread only.

#include <QColor>
#include <QImage>
#include <QWidget>

namespace mirabend {

class PictureBox : public QWidget {
    Q_OBJECT
public:
    explicit PictureBox(QWidget* parent = nullptr, QColor background = QColor(12, 14, 20));

    // The image, kept at the widget's size (also before the widget is shown).
    QImage& image();
    QColor background() const { return m_background; }
    // Inner size in the picture's units (pixels).
    int scaleWidth() { return image().width(); }
    int scaleHeight() { return image().height(); }
    // Fills the image with the background colour.
    void Cls();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QColor m_background;
    QImage m_image;
};

} // namespace mirabend
