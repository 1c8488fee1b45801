#pragma once
// Pane positions in stage pixels, read and written the way the layout code
// thinks of them: Left, Top, Width and Height as separate properties, and
// saved rectangles as {Top, Left, Height, Width}.

#include <QWidget>

namespace mirabend {

struct Rect4 {
    int top = 0;
    int left = 0;
    int height = 0;
    int width = 0;
    bool operator==(const Rect4& o) const
    {
        return top == o.top && left == o.left && height == o.height && width == o.width;
    }
};

namespace pane {

inline int Left(const QWidget* w) { return w->x(); }
inline int Top(const QWidget* w) { return w->y(); }
inline int Width(const QWidget* w) { return w->width(); }
inline int Height(const QWidget* w) { return w->height(); }

inline void setLeft(QWidget* w, int v) { w->move(v, w->y()); }
inline void setTop(QWidget* w, int v) { w->move(w->x(), v); }
inline void setWidth(QWidget* w, int v) { w->resize(v < 0 ? 0 : v, w->height()); }
inline void setHeight(QWidget* w, int v) { w->resize(w->width(), v < 0 ? 0 : v); }

inline Rect4 rect(const QWidget* w) { return {Top(w), Left(w), Height(w), Width(w)}; }
inline void setRect(QWidget* w, const Rect4& r)
{
    w->setGeometry(r.left, r.top, r.width < 0 ? 0 : r.width, r.height < 0 ? 0 : r.height);
}

} // namespace pane
} // namespace mirabend

namespace mirabend::pane {

// A pane's own Visible flag, independent of whether its window is on screen.
inline bool Visible(const QWidget* w) { return !w->isHidden(); }
inline void setVisible(QWidget* w, bool v) { w->setVisible(v); }

} // namespace mirabend::pane
