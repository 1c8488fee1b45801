#include "whiteboard/ui/ToolPalette.h"

#include "util/ProgramFolder.h"
#include "whiteboard/model/EditorState.h"
#include "whiteboard/model/ToolTable.h"

#include <QButtonGroup>
#include <QEvent>
#include <QGridLayout>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

namespace mirabend {

namespace {

// The button picture: the tool's cursor picture where it has one.
QIcon toolIcon(int tool) {
    const char* file = toolInfo(tool).cursorFile;
    if (tool == ToolLine || tool == ToolRectangle || tool == ToolEllipse || tool == ToolArrow ||
        tool == ToolRoundRect || tool == ToolPolygon || tool == ToolSelect || tool == ToolBezier)
        file = nullptr;
    if (file) {
        const QString path = ProgramFolder::dataFile(QString::fromLatin1(file));
        const QImage picture(path, "CUR");
        if (!picture.isNull())
            return QIcon(QPixmap::fromImage(picture));
    }
    QImage image(32, 32, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::black, 2));
    switch (tool) {
    case ToolSelect:
        p.setPen(QPen(Qt::black, 1.5, Qt::DashLine));
        p.drawRect(5, 7, 22, 18);
        break;
    case ToolLine:
        p.drawLine(5, 27, 27, 5);
        break;
    case ToolRectangle:
        p.drawRect(5, 8, 22, 16);
        break;
    case ToolEllipse:
        p.drawEllipse(4, 8, 24, 16);
        break;
    case ToolArrow:
        p.drawLine(5, 27, 26, 6);
        p.drawLine(26, 6, 16, 8);
        p.drawLine(26, 6, 24, 16);
        break;
    case ToolRoundRect:
        p.drawRoundedRect(5, 8, 22, 16, 5, 5);
        break;
    case ToolPolygon:
        p.drawPolygon(QPolygon({QPoint(5, 26), QPoint(9, 6), QPoint(27, 12), QPoint(20, 27)}));
        break;
    case ToolBezier: {
        QPainterPath path(QPointF(4, 26));
        path.cubicTo(8, 0, 24, 32, 28, 6);
        p.drawPath(path);
        break;
    }
    default:
        p.drawText(image.rect(), Qt::AlignCenter, QString(QLatin1Char(toolInfo(tool).key)));
        break;
    }
    p.end();
    return QIcon(QPixmap::fromImage(image));
}

} // namespace

ToolPalette::ToolPalette(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("toolPalette"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    auto* group = new QButtonGroup(this);
    group->setExclusive(true);
    for (int tool = 0; tool < ToolCount; ++tool) {
        auto* b = new QToolButton(this);
        b->setObjectName(QStringLiteral("optTools"));
        b->setProperty("index", tool);
        b->setCheckable(true);
        b->setFocusPolicy(Qt::NoFocus);
        b->setAutoRaise(true);
        b->setIcon(toolIcon(tool));
        b->setIconSize(QSize(22, 22));
        b->setFixedSize(30, 30);
        const ToolInfo& info = toolInfo(tool);
        b->setToolTip(tr("%1 (%2)").arg(tr(info.name)).arg(QLatin1Char(info.key)));
        b->installEventFilter(this);
        group->addButton(b, tool);
        grid->addWidget(b, tool / 6, tool % 6);
        connect(b, &QToolButton::pressed, this, [this, tool] { Q_EMIT toolPressed(tool); });
        connect(b, &QToolButton::clicked, this, [this, tool] { Q_EMIT toolClicked(tool); });
        m_buttons.push_back(b);
    }
    grid->setColumnStretch(6, 1);
}

void ToolPalette::showTool(int tool) {
    if (tool >= 0 && tool < static_cast<int>(m_buttons.size()))
        m_buttons[static_cast<std::size_t>(tool)]->setChecked(true);
}

bool ToolPalette::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Enter)
        Q_EMIT hovered();
    return QWidget::eventFilter(watched, event);
}

} // namespace mirabend
