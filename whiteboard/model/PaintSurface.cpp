#include "whiteboard/model/PaintSurface.h"

#include <QPainter>
#include <QPainterPath>
#include <vector>

namespace mirabend {

namespace {

Qt::PenStyle penStyle(int drawStyle) {
    switch (drawStyle) {
    case StyleDash:
        return Qt::DashLine;
    case StyleDot:
        return Qt::DotLine;
    case StyleDashDot:
        return Qt::DashDotLine;
    case StyleDashDotDot:
        return Qt::DashDotDotLine;
    case StyleTransparent:
        return Qt::NoPen;
    default:
        return Qt::SolidLine;
    }
}

Qt::BrushStyle brushStyle(int fillStyle) {
    switch (fillStyle) {
    case FillSolid:
        return Qt::SolidPattern;
    case FillHorizontal:
        return Qt::HorPattern;
    case FillVertical:
        return Qt::VerPattern;
    case FillUpwardDiagonal:
        return Qt::BDiagPattern;
    case FillDownwardDiagonal:
        return Qt::FDiagPattern;
    case FillCross:
        return Qt::CrossPattern;
    case FillDiagonalCross:
        return Qt::DiagCrossPattern;
    default:
        return Qt::NoBrush;
    }
}

// Whether a pixel of a hatched flood fill takes the fill colour: the hatch
// repeats every eight pixels, as the brush patterns do.
bool hatchCovers(int fillStyle, int x, int y) {
    const auto on = [](int v) {
        return ((v % 8) + 8) % 8 == 0;
    };
    switch (fillStyle) {
    case FillSolid:
        return true;
    case FillHorizontal:
        return on(y);
    case FillVertical:
        return on(x);
    case FillUpwardDiagonal:
        return on(x + y);
    case FillDownwardDiagonal:
        return on(x - y);
    case FillCross:
        return on(x) || on(y);
    case FillDiagonalCross:
        return on(x + y) || on(x - y);
    default:
        return false;
    }
}

constexpr QRgb kRgbMask = 0xffffff;

} // namespace

// A painter set up from the surface's attributes: XOR or copy, never
// antialiased, pen and brush as the classic attributes say.
class SurfacePainter : public QPainter {
public:
    SurfacePainter(PaintSurface& s, bool withBrush)
        : QPainter(&s.image()) {
        setRenderHint(QPainter::Antialiasing, false);
        if (s.DrawMode == 7)
            setCompositionMode(QPainter::RasterOp_SourceXorDestination);
        QPen pen(QColor::fromRgb(s.ForeColor), qMax(1, s.DrawWidth), penStyle(s.DrawStyle), Qt::RoundCap,
                 Qt::RoundJoin);
        setPen(pen);
        if (withBrush)
            setBrush(QBrush(QColor::fromRgb(s.FillColor), brushStyle(s.FillStyle)));
        else
            setBrush(Qt::NoBrush);
    }
};

PaintSurface::PaintSurface(QSize size, QRgb backColor)
    : m_image(size, QImage::Format_RGB32)
    , m_back(backColor | 0xff000000) {
    m_image.fill(m_back);
}

void PaintSurface::setImage(const QImage& image) {
    m_image = image.convertToFormat(QImage::Format_RGB32);
    touch(m_image.rect());
}

void PaintSurface::growTo(QSize size) {
    const QSize wanted = m_image.size().expandedTo(size);
    if (wanted != m_image.size())
        resizeTo(wanted);
}

void PaintSurface::resizeTo(QSize size) {
    if (size == m_image.size() || size.isEmpty())
        return;
    QImage grown(size, QImage::Format_RGB32);
    grown.fill(m_back);
    QPainter p(&grown);
    p.drawImage(0, 0, m_image);
    p.end();
    m_image = grown;
    touch(m_image.rect());
}

void PaintSurface::clear() {
    m_image.fill(m_back);
    touch(m_image.rect());
}

QRgb PaintSurface::pixel(QPoint p) const {
    return contains(p) ? (m_image.pixel(p) | 0xff000000) : m_back;
}

QRect PaintSurface::normalised(QPoint a, QPoint b) const {
    return QRect(QPoint(qMin(a.x(), b.x()), qMin(a.y(), b.y())),
                 QSize(qAbs(b.x() - a.x()), qAbs(b.y() - a.y())));
}

void PaintSurface::segment(QPoint a, QPoint b) {
    // A segment of no length draws nothing, as on the platform: the rubber
    // bands rely on it when they start and end at the press point.
    if (a == b)
        return;
    SurfacePainter p(*this, false);
    p.drawLine(a, b);
    touch(QRect(a, b).normalized());
}

void PaintSurface::dot(QPoint p) {
    if (DrawWidth <= 1) {
        if (contains(p)) {
            QRgb& px = reinterpret_cast<QRgb*>(m_image.scanLine(p.y()))[p.x()];
            px = DrawMode == 7 ? (px ^ (ForeColor & kRgbMask)) : (ForeColor | 0xff000000);
        }
        touch(QRect(p, QSize(1, 1)));
        return;
    }
    SurfacePainter painter(*this, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(ForeColor));
    const int d = DrawWidth;
    painter.drawEllipse(QRect(p.x() - d / 2, p.y() - d / 2, d, d));
    touch(QRect(p, QSize(1, 1)));
}

void PaintSurface::box(QPoint a, QPoint b) {
    if (a == b)
        return;
    QRect r = normalised(a, b);
    if (DrawStyle == StyleInsideSolid && DrawWidth > 1)
        r.adjust(DrawWidth / 2, DrawWidth / 2, -(DrawWidth / 2), -(DrawWidth / 2));
    if (solidBox(r, ForeColor)) {
        touch(r);
        return;
    }
    SurfacePainter p(*this, true);
    p.drawRect(r);
    touch(r);
}

bool PaintSurface::solidBox(const QRect& r, QRgb color) {
    // A solid outline is four bands that never overlap (so the XOR pen
    // leaves no hole at the corners) and the fill inside them: plain fills,
    // far cheaper than stroking, which keeps a rubber band across a full-HD
    // canvas well inside a frame.
    if (DrawStyle != StyleSolid && DrawStyle != StyleInsideSolid && DrawStyle != StyleTransparent)
        return false;
    if (FillStyle != FillTransparent && FillStyle != FillSolid)
        return false;
    const int w = qMax(1, DrawWidth);
    const int lo = w / 2;
    const int hi = (w - 1) / 2;
    const QRect outer(QPoint(r.left() - lo, r.top() - lo), QPoint(r.right() + 1 + hi, r.bottom() + 1 + hi));
    const QRect inner(QPoint(r.left() + hi + 1, r.top() + hi + 1), QPoint(r.right() - lo, r.bottom() - lo));
    QPainter p(&m_image);
    if (DrawMode == 7)
        p.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    const QColor pen = QColor::fromRgb(color);
    if (DrawStyle == StyleTransparent) {
        // no outline
    } else if (inner.isEmpty()) {
        p.fillRect(outer, pen);
        return true;
    } else {
        p.fillRect(QRect(QPoint(outer.left(), outer.top()), QPoint(outer.right(), inner.top() - 1)), pen);
        p.fillRect(QRect(QPoint(outer.left(), inner.bottom() + 1), QPoint(outer.right(), outer.bottom())),
                   pen);
        p.fillRect(QRect(QPoint(outer.left(), inner.top()), QPoint(inner.left() - 1, inner.bottom())), pen);
        p.fillRect(QRect(QPoint(inner.right() + 1, inner.top()), QPoint(outer.right(), inner.bottom())), pen);
    }
    if (FillStyle == FillSolid && !inner.isEmpty())
        p.fillRect(inner, QColor::fromRgb(FillColor));
    return true;
}

void PaintSurface::boxInColor(QPoint a, QPoint b, QRgb color) {
    if (a == b)
        return;
    const int fill = FillStyle;
    FillStyle = FillTransparent;
    const bool done = solidBox(normalised(a, b), color);
    FillStyle = fill;
    if (!done) {
        const QRgb saved = ForeColor;
        ForeColor = color;
        {
            SurfacePainter p(*this, false);
            p.drawRect(normalised(a, b));
        }
        ForeColor = saved;
    }
    touch(normalised(a, b));
}

void PaintSurface::filledBox(QPoint a, QPoint b, QRgb color) {
    const QRect r = normalised(a, b);
    QPainter p(&m_image);
    if (DrawMode == 7)
        p.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    p.fillRect(r.adjusted(0, 0, 1, 1), QColor::fromRgb(color));
    touch(r);
}

void PaintSurface::ellipse(const QRect& box) {
    QRect r = box;
    if (DrawStyle == StyleInsideSolid && DrawWidth > 1)
        r.adjust(DrawWidth / 2, DrawWidth / 2, -(DrawWidth / 2), -(DrawWidth / 2));
    SurfacePainter p(*this, true);
    p.drawEllipse(r);
    touch(r);
}

void PaintSurface::roundRect(QPoint a, QPoint b) {
    if (a == b)
        return;
    const QRect r = normalised(a, b);
    SurfacePainter p(*this, true);
    p.drawRoundedRect(r, 5, 5);
    touch(r);
}

void PaintSurface::polygon(const QPolygon& points) {
    if (points.size() < 2)
        return;
    SurfacePainter p(*this, true);
    p.drawPolygon(points);
    touch(points.boundingRect());
}

void PaintSurface::bezier(const QPolygon& fourPoints) {
    if (fourPoints.size() != 4)
        return;
    QPainterPath path(fourPoints[0]);
    path.cubicTo(fourPoints[1], fourPoints[2], fourPoints[3]);
    SurfacePainter p(*this, false);
    p.drawPath(path);
    touch(fourPoints.boundingRect());
}

void PaintSurface::disc(QPoint centre, int radius) {
    SurfacePainter p(*this, true);
    p.setPen(QPen(QColor::fromRgb(ForeColor), 1));
    p.drawEllipse(centre, radius, radius);
    touch(QRect(centre - QPoint(radius, radius), QSize(2 * radius + 1, 2 * radius + 1)));
}

void PaintSurface::text(QPoint topLeft, const QString& text, const QFont& font) {
    QPainter p(&m_image);
    p.setFont(font);
    p.setPen(QColor::fromRgb(ForeColor));
    const QRect bounds = p.boundingRect(QRect(topLeft, QSize(m_image.width(), m_image.height())),
                                        Qt::AlignLeft | Qt::AlignTop, text);
    p.drawText(bounds, Qt::AlignLeft | Qt::AlignTop, text);
    touch(bounds);
}

void PaintSurface::drawImage(QPoint topLeft, const QImage& image) {
    QPainter p(&m_image);
    p.drawImage(topLeft, image);
    touch(QRect(topLeft, image.size()));
}

void PaintSurface::floodFill(QPoint start) {
    if (!contains(start) || FillStyle == FillTransparent)
        return;
    const int w = m_image.width();
    const int h = m_image.height();
    const QRgb target = m_image.pixel(start) & kRgbMask;
    const QRgb colour = FillColor | 0xff000000;
    // Scanline fill over a visited mask, so a fill in the colour already
    // there (or a hatch that keeps some pixels) still ends.
    std::vector<unsigned char> seen(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), 0);
    std::vector<QPoint> stack{start};
    int minX = start.x(), maxX = start.x(), minY = start.y(), maxY = start.y();
    const auto matches = [&](const QRgb* line, int x, int y) {
        return !seen[static_cast<std::size_t>(y) * static_cast<std::size_t>(w) +
                     static_cast<std::size_t>(x)] &&
               (line[x] & kRgbMask) == target;
    };
    while (!stack.empty()) {
        const QPoint p = stack.back();
        stack.pop_back();
        auto* line = reinterpret_cast<QRgb*>(m_image.scanLine(p.y()));
        if (!matches(line, p.x(), p.y()))
            continue;
        int left = p.x();
        while (left > 0 && matches(line, left - 1, p.y()))
            --left;
        int right = p.x();
        while (right < w - 1 && matches(line, right + 1, p.y()))
            ++right;
        for (int x = left; x <= right; ++x) {
            seen[static_cast<std::size_t>(p.y()) * static_cast<std::size_t>(w) +
                 static_cast<std::size_t>(x)] = 1;
            if (hatchCovers(FillStyle, x, p.y()))
                line[x] = colour;
        }
        minX = qMin(minX, left);
        maxX = qMax(maxX, right);
        minY = qMin(minY, p.y());
        maxY = qMax(maxY, p.y());
        for (int ny : {p.y() - 1, p.y() + 1}) {
            if (ny < 0 || ny >= h)
                continue;
            const auto* next = reinterpret_cast<const QRgb*>(m_image.constScanLine(ny));
            bool inRun = false;
            for (int x = left; x <= right; ++x) {
                const bool match = !seen[static_cast<std::size_t>(ny) * static_cast<std::size_t>(w) +
                                         static_cast<std::size_t>(x)] &&
                                   (next[x] & kRgbMask) == target;
                if (match && !inRun)
                    stack.emplace_back(x, ny);
                inRun = match;
            }
        }
    }
    touch(QRect(QPoint(minX, minY), QPoint(maxX, maxY)));
}

void PaintSurface::touch(const QRect& r) {
    const int m = qMax(1, DrawWidth) + 2;
    m_dirty |= r.normalized().adjusted(-m, -m, m + 1, m + 1);
}

QRect PaintSurface::takeDirty() {
    const QRect r = m_dirty & m_image.rect();
    m_dirty = QRect();
    return r;
}

} // namespace mirabend
