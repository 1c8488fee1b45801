#include "whiteboard/ui/DrawPanel.h"

#include "whiteboard/model/ToolTable.h"
#include "whiteboard/ui/ColorPalette.h"
#include "whiteboard/ui/OptionPickers.h"
#include "whiteboard/ui/ToolPalette.h"
#include "whiteboard/ui/Whiteboard.h"

#include <QComboBox>
#include <QFontComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace mirabend {

namespace {

QIcon lineStyleIcon(Qt::PenStyle style, bool insideFrame) {
    QPixmap pixmap(48, 12);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    if (insideFrame) {
        p.setPen(QPen(Qt::black, 3));
        p.drawRect(2, 2, 44, 8);
    } else {
        p.setPen(QPen(Qt::black, 1, style));
        p.drawLine(0, 6, 48, 6);
    }
    return QIcon(pixmap);
}

QIcon fillStyleIcon(Qt::BrushStyle style) {
    QPixmap pixmap(24, 12);
    pixmap.fill(Qt::white);
    QPainter p(&pixmap);
    p.setPen(Qt::black);
    p.setBrush(QBrush(Qt::black, style));
    p.drawRect(0, 0, 23, 11);
    return QIcon(pixmap);
}

QToolButton* commandButton(const QString& name, const QString& text, const QString& tip, QWidget* parent) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setText(text);
    b->setToolTip(tip);
    b->setFocusPolicy(Qt::NoFocus);
    b->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return b;
}

} // namespace

DrawPanel::DrawPanel(Whiteboard& board, QWidget* parent)
    : QWidget(parent)
    , m_board(board)
    , m_tools(new ToolPalette(this))
    , m_widths(new OptionPicker(true, this))
    , m_fills(new OptionPicker(false, this))
    , m_palette(new ColorPalette(this)) {
    setObjectName(QStringLiteral("drawPanel"));
    // The task pane is narrow: everything fits its width without scrolling sideways.
    setMaximumWidth(222);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(6);
    column->addWidget(m_tools);

    auto* options = new QHBoxLayout;
    options->setSpacing(6);
    for (OptionPicker* picker : {m_widths, m_fills}) {
        QSizePolicy keep = picker->sizePolicy();
        keep.setRetainSizeWhenHidden(true);
        picker->setSizePolicy(keep);
        options->addWidget(picker, 0, Qt::AlignTop);
    }
    options->addWidget(buildStyles(), 1, Qt::AlignTop);
    column->addLayout(options);
    column->addWidget(m_palette);
    column->addWidget(buildFilterAndFont());
    column->addWidget(buildCommands());

    CanvasEditor& editor = m_board.editor();
    connect(m_tools, &ToolPalette::toolPressed, this, [this](int tool) { m_board.optTools_MouseDown(tool); });
    connect(m_tools, &ToolPalette::toolClicked, this, [this](int tool) { m_board.optTools_Click(tool); });
    connect(m_tools, &ToolPalette::hovered, this, [this] {
        if (m_board.revealPane)
            m_board.revealPane();
    });
    connect(m_widths, &OptionPicker::picked, this,
            [&editor](int value) { editor.state().WidthIndex = static_cast<qint16>(value); });
    connect(m_fills, &OptionPicker::picked, this, [&editor](int value) { editor.state().FillMode = value; });
    connect(m_palette, &ColorPalette::swatchPressed, this,
            [&editor](int button, QRgb color) { editor.swatchDown(button, color); });
    connect(m_palette, &ColorPalette::foreDoubleClicked, this, [this] { m_board.lblForeColor_DblClick(); });
    connect(m_palette, &ColorPalette::fillDoubleClicked, this, [this] { m_board.lblFillColor_DblClick(); });
}

QWidget* DrawPanel::buildStyles() {
    auto* box = new QWidget(this);
    auto* grid = new QVBoxLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    box->setMaximumWidth(112);
    m_lineStyle = new QComboBox(box);
    m_lineStyle->setObjectName(QStringLiteral("cboLineStyle"));
    m_lineStyle->setToolTip(tr("Line style of outlines"));
    const Qt::PenStyle pens[] = {Qt::SolidLine,      Qt::DashLine, Qt::DotLine,  Qt::DashDotLine,
                                 Qt::DashDotDotLine, Qt::NoPen,    Qt::SolidLine};
    const char* lineNames[] = {"Solid",        "Dash",        "Dot",         "Dash-dot",
                               "Dash-dot-dot", "Transparent", "Inside solid"};
    for (int i = 0; i < 7; ++i)
        m_lineStyle->addItem(lineStyleIcon(pens[i], i == 6), tr(lineNames[i]), i);
    m_fillStyle = new QComboBox(box);
    m_fillStyle->setObjectName(QStringLiteral("cboFillStyle"));
    m_fillStyle->setToolTip(tr("Fill pattern of filled shapes and flood fill"));
    const Qt::BrushStyle brushes[] = {Qt::SolidPattern, Qt::NoBrush,         Qt::HorPattern,
                                      Qt::VerPattern,   Qt::BDiagPattern,    Qt::FDiagPattern,
                                      Qt::CrossPattern, Qt::DiagCrossPattern};
    const char* fillNames[] = {"Solid",           "Transparent",       "Horizontal", "Vertical",
                               "Upward diagonal", "Downward diagonal", "Cross",      "Diagonal cross"};
    for (int i = 0; i < 8; ++i)
        m_fillStyle->addItem(fillStyleIcon(brushes[i]), tr(fillNames[i]), i);
    auto* lineLabel = new QLabel(tr("&Line:"), box);
    lineLabel->setBuddy(m_lineStyle);
    auto* fillLabel = new QLabel(tr("F&ill:"), box);
    fillLabel->setBuddy(m_fillStyle);
    grid->addWidget(lineLabel);
    grid->addWidget(m_lineStyle);
    grid->addWidget(fillLabel);
    grid->addWidget(m_fillStyle);
    CanvasEditor& editor = m_board.editor();
    connect(m_lineStyle, QOverload<int>::of(&QComboBox::activated), this,
            [&editor](int index) { editor.state().LineStyle = static_cast<qint16>(index); });
    connect(m_fillStyle, QOverload<int>::of(&QComboBox::activated), this,
            [&editor](int index) { editor.state().FillStyle = static_cast<qint16>(index); });
    return box;
}

QWidget* DrawPanel::buildFilterAndFont() {
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(3);
    m_filter = new QComboBox(box);
    m_filter->setObjectName(QStringLiteral("cboFilter"));
    m_filter->setToolTip(tr("The filter tool's filter"));
    m_applyFilter = commandButton(QStringLiteral("cmdApplyFilter"), tr("Apply"),
                                  tr("Apply the filter to the selection or the whole board"), box);
    auto* filterLabel = new QLabel(tr("Fil&ter:"), box);
    filterLabel->setBuddy(m_filter);
    grid->addWidget(filterLabel, 0, 0, 1, 3);
    grid->addWidget(m_filter, 1, 0, 1, 2);
    grid->addWidget(m_applyFilter, 1, 2);

    m_font = new QFontComboBox(box);
    m_font->setObjectName(QStringLiteral("cboTextFont"));
    m_font->setToolTip(tr("Font of the text tool"));
    m_font->setCurrentFont(m_board.editor().textFont());
    m_font->setMaximumWidth(140);
    m_font->setMinimumContentsLength(8);
    m_font->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_fontSize = new QSpinBox(box);
    m_fontSize->setObjectName(QStringLiteral("spnTextSize"));
    m_fontSize->setRange(6, 144);
    m_fontSize->setValue(m_board.editor().textFont().pointSize());
    m_fontSize->setToolTip(tr("Text size in points"));
    auto* fontLabel = new QLabel(tr("Te&xt font:"), box);
    fontLabel->setBuddy(m_font);
    grid->addWidget(fontLabel, 2, 0, 1, 3);
    grid->addWidget(m_font, 3, 0, 1, 2);
    grid->addWidget(m_fontSize, 3, 2);
    grid->setColumnStretch(0, 1);

    connect(m_filter, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { m_board.editor().setFilterNumber(m_filter->itemData(index).toInt()); });
    connect(m_applyFilter, &QToolButton::clicked, this,
            [this] { m_board.editor().runFilter(QPointF(-1, -1)); });
    const auto applyFont = [this] {
        QFont font = m_font->currentFont();
        font.setPointSize(m_fontSize->value());
        m_board.chooseTextFont(font);
    };
    connect(m_font, &QFontComboBox::currentFontChanged, this, applyFont);
    connect(m_fontSize, QOverload<int>::of(&QSpinBox::valueChanged), this, applyFont);
    return box;
}

QWidget* DrawPanel::buildCommands() {
    auto* box = new QWidget(this);
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(3);
    auto* undo = commandButton(QStringLiteral("cmdUndo"), tr("Undo"), tr("Undo the last step (Ctrl+Z)"), box);
    auto* redo =
        commandButton(QStringLiteral("cmdRedo"), tr("Redo"), tr("Redo the step undone (Ctrl+Y)"), box);
    auto* paste = commandButton(QStringLiteral("cmdPaste"), tr("Paste"),
                                tr("Paste a picture from the clipboard to place on the board (Ctrl+V)"), box);
    auto* clear = commandButton(QStringLiteral("cmdClearBoard"), tr("Clear board"),
                                tr("Wipe the board (Undo brings it back)"), box);
    auto* save = commandButton(QStringLiteral("cmdSaveBoard"), tr("Save board as..."),
                               tr("Save the board as a PNG picture"), box);
    m_previousPage = commandButton(QStringLiteral("cmdPreviousPage"), QStringLiteral("\u25c0"),
                                   tr("Previous board (Page Up)"), box);
    auto* next = commandButton(QStringLiteral("cmdNextPage"), QStringLiteral("\u25b6"),
                               tr("Next board, a new one after the last (Page Down)"), box);
    m_pageLabel = new QLabel(box);
    m_pageLabel->setObjectName(QStringLiteral("lblPage"));
    m_pageLabel->setAlignment(Qt::AlignCenter);
    for (QToolButton* b : {undo, redo, paste, clear, save})
        b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* edits = new QHBoxLayout;
    edits->setSpacing(3);
    for (QToolButton* b : {undo, redo, paste})
        edits->addWidget(b);
    grid->addLayout(edits, 0, 0, 1, 2);
    grid->addWidget(clear, 1, 0);
    grid->addWidget(save, 1, 1);
    auto* pages = new QHBoxLayout;
    pages->addWidget(m_previousPage);
    pages->addWidget(m_pageLabel, 1);
    pages->addWidget(next);
    grid->addLayout(pages, 2, 0, 1, 2);
    connect(undo, &QToolButton::clicked, this, [this] { m_board.undo(); });
    connect(redo, &QToolButton::clicked, this, [this] { m_board.redo(); });
    connect(paste, &QToolButton::clicked, this, [this] { m_board.paste(); });
    connect(clear, &QToolButton::clicked, this, [this] { m_board.clearBoard(); });
    connect(save, &QToolButton::clicked, this, [this] { m_board.saveBoardAs(); });
    connect(m_previousPage, &QToolButton::clicked, this, [this] { m_board.previousPage(); });
    connect(next, &QToolButton::clicked, this, [this] { m_board.nextPage(); });
    return box;
}

void DrawPanel::refresh() {
    const EditorState& s = m_board.editor().state();
    m_tools->showTool(s.CurrentTool);
    const ToolInfo& info = toolInfo(s.CurrentTool);
    m_widths->setVisible(info.widthPicker);
    m_fills->setVisible(info.fillPicker);
    m_widths->setValue(s.WidthIndex);
    m_fills->setValue(s.FillMode);
    m_palette->showColors(s.foreColor, s.fillColor);
    m_lineStyle->setCurrentIndex(s.LineStyle);
    m_fillStyle->setCurrentIndex(s.FillStyle);
    const auto& filters = m_board.filterChoices();
    if (static_cast<int>(filters.size()) != m_filterCount) {
        m_filterCount = static_cast<int>(filters.size());
        m_filter->clear();
        for (const FilterChoice& f : filters) {
            m_filter->addItem(f.name, f.number);
            m_filter->setItemData(m_filter->count() - 1, f.toolTip, Qt::ToolTipRole);
        }
        if (filters.empty())
            m_filter->addItem(tr("(no filters built in)"), 0);
    }
    m_filter->setEnabled(!filters.empty());
    m_applyFilter->setEnabled(!filters.empty());
    QString page = tr("Board %1 of %2").arg(m_board.currentPage() + 1).arg(m_board.pageCount());
    // A magnified board says so: Shift+click with the zoom tool goes back.
    const double zoom = m_board.editor().view().zoom;
    if (zoom != 1.0)
        page += tr(", %1x").arg(zoom);
    m_pageLabel->setText(page);
    m_previousPage->setEnabled(m_board.currentPage() > 0);
}

} // namespace mirabend
