#include "whiteboard/model/ShapeGeometry.h"

#include <cmath>
#include <cstdlib>

namespace mirabend {

QPoint constrainEnd(QPoint start, QPoint pointer, int shift, bool axisSnap) {
    const int dx = std::abs(pointer.x() - start.x());
    const int dy = std::abs(pointer.y() - start.y());
    if (shift == 1) {
        if (dy >= dx)
            return {pointer.x(), pointer.y() <= start.y() ? start.y() - dx : start.y() + dx};
        return {pointer.x() <= start.x() ? start.x() - dy : start.x() + dy, pointer.y()};
    }
    if (shift == 2 && axisSnap)
        return dy < dx ? QPoint(pointer.x(), start.y()) : QPoint(start.x(), pointer.y());
    return pointer;
}

std::optional<QRect> ellipseBox(QPoint p1, QPoint p2) {
    if (p1.x() == p2.x())
        return std::nullopt;
    // The centre and the larger half extent give the radius; the aspect
    // gives the other radius, so the ellipse fills the box between corners.
    const double cx = (p1.x() + p2.x()) / 2.0;
    const double cy = (p1.y() + p2.y()) / 2.0;
    const double rx = std::abs(p2.x() - p1.x()) / 2.0;
    const double ry = std::abs(p2.y() - p1.y()) / 2.0;
    return QRect(static_cast<int>(std::lround(cx - rx)), static_cast<int>(std::lround(cy - ry)),
                 static_cast<int>(std::lround(2 * rx)), static_cast<int>(std::lround(2 * ry)));
}

std::array<QPoint, 2> arrowHead(QPoint p1, QPoint p2) {
    constexpr double kPi = 3.14159265358979;
    constexpr double kLength = 10.0;
    const int dx = p2.x() - p1.x();
    const int dy = p2.y() - p1.y();
    const double a = dx == 0 ? 90.0 : std::atan(static_cast<double>(dy) / dx) * 180.0 / kPi;
    int s = 0;
    if (dx != 0)
        s = dx > 0 ? 1 : -1;
    else if (dy != 0)
        s = dy > 0 ? 1 : -1;
    const auto rad = [](double degrees) {
        return degrees * kPi / 180.0;
    };
    // Round half to even, as 16-bit coordinates are.
    const auto coordinate = [](double v) {
        return static_cast<int>(static_cast<qint16>(std::nearbyint(v)));
    };
    return {QPoint(coordinate(p2.x() - kLength * std::cos(rad(a + 45)) * s),
                   coordinate(p2.y() - kLength * std::sin(rad(a + 45)) * s)),
            QPoint(coordinate(p2.x() - kLength * std::cos(rad(45 - a)) * s),
                   coordinate(p2.y() + kLength * std::sin(rad(45 - a)) * s))};
}

QVector<QPoint> sprayDots(QPoint centre, int size, std::mt19937& random) {
    // The square of the size is a 16-bit product.
    const auto square = static_cast<qint16>(size * size);
    const int count = static_cast<int>(std::nearbyint(square * 0.25));
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    QVector<QPoint> dots;
    dots.reserve(count);
    const double left = centre.x() - size / 2.0;
    const double top = centre.y() - size / 2.0;
    for (int i = 0; i < count; ++i) {
        const double r1 = unit(random);
        const double r2 = unit(random);
        dots.append(QPoint(static_cast<int>(std::floor(left + size * r1)),
                           static_cast<int>(std::floor(top + size * r2))));
    }
    return dots;
}

std::array<QPoint, 4> bezierHandles(QPoint centre) {
    // An arch: from the bottom left up over the top corners to the bottom right.
    return {centre + QPoint(-50, 50), centre + QPoint(-50, -50), centre + QPoint(50, -50),
            centre + QPoint(50, 50)};
}

namespace {
constexpr int kColumns[] = {75, 325, 575};
constexpr int kRows[] = {150, 400, 650, 900, 1150};
constexpr int kFillCells[][2] = {{125, 425}, {450, 750}, {775, 1075}};
} // namespace

int widthCellAt(int xTwips, int yTwips) {
    if (xTwips < kColumns[0] || xTwips >= kColumns[2] || yTwips < kRows[0] || yTwips >= kRows[4])
        return -1;
    const int column = xTwips < kColumns[1] ? 0 : 1;
    int row = 0;
    while (yTwips >= kRows[row + 1])
        ++row;
    return row * 2 + column;
}

QRect widthCellTwips(int widthIndex) {
    const int row = widthIndex / 2;
    const int column = widthIndex % 2;
    return QRect(QPoint(kColumns[column], kRows[row]), QPoint(kColumns[column + 1] - 1, kRows[row + 1] - 1));
}

int fillCellAt(int yTwips) {
    for (int mode = 0; mode < 3; ++mode) {
        if (yTwips >= kFillCells[mode][0] && yTwips <= kFillCells[mode][1])
            return mode;
    }
    return -1;
}

QRect fillCellTwips(int fillMode) {
    return QRect(QPoint(75, kFillCells[fillMode][0]), QPoint(575, kFillCells[fillMode][1]));
}

} // namespace mirabend
