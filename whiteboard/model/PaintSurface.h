#pragma once
// The picture surface the whiteboard draws on: a QImage with the drawing
// attributes of a classic picture box (pen mode, line style, pen width, pen
// and fill colour, fill style), which the handlers set before each drawing
// operation. Nothing is antialiased, so anything drawn twice under the XOR
// pen vanishes bit for bit.
//
// Thread contract: UI thread only (or one thread per surface).

#include <QFont>
#include <QImage>
#include <QPolygon>
#include <QRect>
#include <QRgb>

namespace mirabend {

// Line styles (`DrawStyle`).
enum : int {
    StyleSolid = 0,
    StyleDash = 1,
    StyleDot = 2,
    StyleDashDot = 3,
    StyleDashDotDot = 4,
    StyleTransparent = 5,
    StyleInsideSolid = 6
};

// Fill styles (`FillStyle`).
enum : int {
    FillSolid = 0,
    FillTransparent = 1,
    FillHorizontal = 2,
    FillVertical = 3,
    FillUpwardDiagonal = 4,
    FillDownwardDiagonal = 5,
    FillCross = 6,
    FillDiagonalCross = 7
};

class PaintSurface {
public:
    explicit PaintSurface(QSize size = QSize(640, 480), QRgb backColor = qRgb(255, 255, 255));

    // Drawing attributes, set by the handlers before each operation.
    int DrawMode = 13;
    int DrawStyle = StyleSolid;
    int DrawWidth = 1;
    QRgb ForeColor = qRgb(0, 0, 0);
    QRgb FillColor = qRgb(0, 0, 0);
    int FillStyle = FillTransparent;
    QRgb BackColor() const { return m_back; }
    // The colour c as the XOR pen must draw it to show c on the back colour.
    QRgb xorColor(QRgb c) const { return (m_back ^ c) & 0xffffff; }

    QImage& image() { return m_image; }
    const QImage& image() const { return m_image; }
    // Replaces the picture (undo, a history step of another size, a pasted board).
    void setImage(const QImage& image);
    // Grows the picture to at least `size`, the new part in the back colour.
    void growTo(QSize size);
    // Resizes to exactly `size`, keeping the top-left part.
    void resizeTo(QSize size);
    // Fills the whole picture with the back colour.
    void clear();

    QRgb pixel(QPoint p) const;
    bool contains(QPoint p) const { return m_image.rect().contains(p); }

    // Operations, in the current attributes.
    void segment(QPoint a, QPoint b);
    void dot(QPoint p); // one pixel in ForeColor, whatever the width
    void box(QPoint a, QPoint b);
    void boxInColor(QPoint a, QPoint b, QRgb color); // outline only
    void filledBox(QPoint a, QPoint b, QRgb color);  // solid, pen and fill one colour
    void ellipse(const QRect& box);
    void roundRect(QPoint a, QPoint b); // corner ellipse 10 x 10
    void polygon(const QPolygon& points);
    void bezier(const QPolygon& fourPoints);
    void disc(QPoint centre, int radius); // brush stamp: filled circle with outline
    void text(QPoint topLeft, const QString& text, const QFont& font);
    void drawImage(QPoint topLeft, const QImage& image);
    // Surface fill of the colour found at `p` in FillColor and FillStyle.
    void floodFill(QPoint p);

    // The part of the picture changed since the last call.
    QRect takeDirty();

private:
    bool solidBox(const QRect& r, QRgb color);
    void touch(const QRect& r);
    QRect normalised(QPoint a, QPoint b) const;

    QImage m_image;
    QRgb m_back;
    QRect m_dirty;
};

} // namespace mirabend
