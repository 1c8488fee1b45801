#pragma once
// The whiteboard's editor state: one object, owned by the main window's
// whiteboard and shared by every canvas handler (the canvas, its twin and
// the Draw bar read and write it).
//
// Thread contract: UI thread only.

#include <QPoint>
#include <QRgb>
#include <QVector>

namespace mirabend {

// Tool numbers: the index of a tool button in `optTools`.
enum Tool : int {
    ToolSelect = 0,
    ToolPicker = 1,
    ToolEraser = 2,
    ToolFill = 3,
    ToolPencil = 4,
    ToolLine = 5,
    ToolRectangle = 6,
    ToolEllipse = 7,
    ToolText = 8,
    ToolArrow = 9,
    ToolAirbrush = 10,
    ToolRoundRect = 11,
    ToolPolygon = 12,
    ToolBezier = 13,
    ToolFilter = 14,
    ToolZoom = 15,
    ToolBrush = 16,
    ToolHand = 17,
    ToolCount = 18
};

// Mouse buttons and shift states as the canvas handlers receive them.
enum : int { ButtonLeft = 1, ButtonRight = 2 };
enum : int { ShiftNone = 0, ShiftShift = 1, ShiftCtrl = 2 };

// Pen modes of the canvas: copy for final drawing, XOR for rubber bands.
enum : int { PenXor = 7, PenCopy = 13 };

struct EditorState {
    int CurrentTool = ToolPencil;
    bool IsDrawing = false;
    bool IsPanning = false;
    bool PolygonOpen = false;
    QPoint StartPoint;
    QPoint EndPoint;
    QVector<QPoint> PolygonPoints;
    qint16 WidthIndex = 0;
    qint16 LineStyle = 0;
    int FillMode = 0;
    qint16 FillStyle = 0;
    QRgb foreColor = qRgb(0, 0, 0);
    QRgb fillColor = qRgb(255, 255, 255);

    int penWidth() const { return WidthIndex + 1; }
};

} // namespace mirabend
