#pragma once
// The two option pickers of the Draw bar: `fraOptDot`, eight line-width
// cells (two columns, four rows) with the marker `lblDot`, and `fraOptFill`,
// three fill-mode cells with the marker `lblFill`. Both are hit-tested in
// their own twips, as designed; a press outside every cell changes nothing.
//
// Thread contract: UI thread only.

#include <QWidget>

class QLabel;

namespace mirabend {

class OptionPicker : public QWidget {
    Q_OBJECT
public:
    // `fraOptDot` when `widths`, else `fraOptFill`.
    OptionPicker(bool widths, QWidget* parent = nullptr);

    int value() const { return m_value; }
    // Moves the marker without telling anyone.
    void setValue(int value);
    // Twips from pixels at this screen's resolution.
    int twips(double pixels) const;
    QRect cellPixels(int value) const;

Q_SIGNALS:
    void picked(int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    int pixels(int twipsValue) const;

    bool m_widths;
    int m_value = 0;
    QLabel* m_marker;
};

} // namespace mirabend
