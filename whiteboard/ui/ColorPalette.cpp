#include "whiteboard/ui/ColorPalette.h"

#include "whiteboard/model/ToolTable.h"

#include <QGridLayout>
#include <QMouseEvent>

namespace mirabend {

SwatchLabel::SwatchLabel(const QString& name, QRgb color, QWidget* parent)
    : QLabel(parent)
    , m_color(color) {
    setObjectName(name);
    setColor(color);
}

void SwatchLabel::setColor(QRgb color) {
    m_color = color | 0xff000000;
    setStyleSheet(QStringLiteral("background: %1; border: 1px solid #5a6270;").arg(QColor(m_color).name()));
}

void SwatchLabel::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT pressed(1);
    else if (event->button() == Qt::RightButton)
        Q_EMIT pressed(2);
}

void SwatchLabel::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT doubleClicked();
}

ColorPalette::ColorPalette(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("palette"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(1);

    // Fore colour in front, fill colour behind it, as paint programs show them.
    auto* pair = new QWidget(this);
    pair->setFixedSize(30, 23);
    m_fill = new SwatchLabel(QStringLiteral("lblFillColor"), qRgb(255, 255, 255), pair);
    m_fill->setGeometry(11, 8, 17, 14);
    m_fill->setToolTip(tr("Fill colour: right-click a swatch, double-click to choose any colour"));
    m_fore = new SwatchLabel(QStringLiteral("lblForeColor"), qRgb(0, 0, 0), pair);
    m_fore->setGeometry(2, 1, 17, 14);
    m_fore->setToolTip(tr("Drawing colour: click a swatch, double-click to choose any colour"));
    grid->addWidget(pair, 0, 0, 2, 1);
    connect(m_fore, &SwatchLabel::doubleClicked, this, &ColorPalette::foreDoubleClicked);
    connect(m_fill, &SwatchLabel::doubleClicked, this, &ColorPalette::fillDoubleClicked);

    const auto& colors = paletteColors();
    for (int i = 0; i < kPaletteSize; ++i) {
        auto* swatch = new SwatchLabel(QStringLiteral("lblColor"), colors[static_cast<std::size_t>(i)], this);
        swatch->setProperty("index", i);
        swatch->setFixedSize(11, 11);
        swatch->setToolTip(tr("Left: drawing colour; right: fill colour"));
        grid->addWidget(swatch, i / 14, 1 + i % 14);
        connect(swatch, &SwatchLabel::pressed, this,
                [this, swatch](int button) { Q_EMIT swatchPressed(button, swatch->color()); });
        m_swatches.push_back(swatch);
    }
    grid->setColumnStretch(15, 1);
}

void ColorPalette::showColors(QRgb fore, QRgb fill) {
    m_fore->setColor(fore);
    m_fill->setColor(fill);
}

} // namespace mirabend
