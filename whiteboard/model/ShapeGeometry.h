#pragma once
// The pure geometry of the shape tools: the Shift/Ctrl constraint, the
// ellipse's box, the arrow head, the airbrush's dots, the Bezier handles and
// the hit tests of the two option pickers.
//
// Thread contract: any thread (pure functions).

#include <QPoint>
#include <QRect>
#include <QVector>
#include <array>
#include <optional>
#include <random>

namespace mirabend {

// EndPoint for the pointer at `pointer`: Shift (state 1) makes a square whose
// side is the smaller extent; Ctrl (state 2) snaps to the nearer axis when
// `axisSnap` allows it; anything else follows the pointer.
QPoint constrainEnd(QPoint start, QPoint pointer, int shift, bool axisSnap);

// The box of the ellipse inscribed between two corners, or nothing while
// its width is zero.
std::optional<QRect> ellipseBox(QPoint p1, QPoint p2);

// The two ends of the arrow head's strokes (length 10 at 45 degrees either
// side of the shaft); both coincide with p2 for an arrow of no length.
std::array<QPoint, 2> arrowHead(QPoint p1, QPoint p2);

// The dots of one airbrush spray of size `size` around `centre`:
// round(size^2 / 4) dots in the size x size square centred on the pointer.
QVector<QPoint> sprayDots(QPoint centre, int size, std::mt19937& random);

// The four Bezier handles placed for a press at `centre`: start, two
// control points and end, at the corners of a 100 x 100 square.
std::array<QPoint, 4> bezierHandles(QPoint centre);

// The width picker (`fraOptDot`): the WidthIndex of the cell at a point in
// the picker's twips, or -1 outside every cell; and a cell's rectangle.
int widthCellAt(int xTwips, int yTwips);
QRect widthCellTwips(int widthIndex);

// The fill picker (`fraOptFill`): the FillMode of the cell at y (twips), or
// -1 in the gaps and outside; and a cell's rectangle.
int fillCellAt(int yTwips);
QRect fillCellTwips(int fillMode);

} // namespace mirabend
