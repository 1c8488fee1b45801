#pragma once
// The colour palette `lblColor` (28 swatches) with the fore and fill colour
// swatches `lblForeColor` and `lblFillColor`. A left press on a swatch picks
// the fore colour, a right press the fill colour; a double-click on the fore
// or fill swatch opens the colour dialog.
//
// Thread contract: UI thread only.

#include <QLabel>
#include <QRgb>
#include <QWidget>
#include <functional>
#include <vector>

namespace mirabend {

// One clickable colour label.
class SwatchLabel : public QLabel {
    Q_OBJECT
public:
    SwatchLabel(const QString& name, QRgb color, QWidget* parent = nullptr);
    QRgb color() const { return m_color; }
    void setColor(QRgb color);

Q_SIGNALS:
    void pressed(int button);
    void doubleClicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QRgb m_color;
};

class ColorPalette : public QWidget {
    Q_OBJECT
public:
    explicit ColorPalette(QWidget* parent = nullptr);

    SwatchLabel* swatch(int index) const { return m_swatches[static_cast<std::size_t>(index)]; }
    SwatchLabel* lblForeColor() const { return m_fore; }
    SwatchLabel* lblFillColor() const { return m_fill; }
    // Shows the editor's colours.
    void showColors(QRgb fore, QRgb fill);

Q_SIGNALS:
    // A palette swatch pressed: button 1 left, 2 right.
    void swatchPressed(int button, QRgb color);
    void foreDoubleClicked();
    void fillDoubleClicked();

private:
    std::vector<SwatchLabel*> m_swatches;
    SwatchLabel* m_fore;
    SwatchLabel* m_fill;
};

} // namespace mirabend
