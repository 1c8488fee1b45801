#include "shell/MainStatusBar.h"

#include <QLabel>

namespace mirabend {

MainStatusBar::MainStatusBar(QWidget* parent) : QStatusBar(parent)
{
    setObjectName(QStringLiteral("StatusBar1"));
    setSizeGripEnabled(true);
    // Widths suit their content: status, two spare panels, output caption,
    // clock, mode.
    const int minimumWidths[kPanels] = {110, 60, 60, 170, 90, 110};
    const int stretches[kPanels] = {1, 1, 1, 2, 0, 0};
    for (int i = 0; i < kPanels; ++i) {
        auto* label = new QLabel(this);
        label->setObjectName(QStringLiteral("StatusBar1_panel%1").arg(i + 1));
        label->setMinimumWidth(minimumWidths[i]);
        label->setFrameShape(QFrame::StyledPanel);
        label->setFrameShadow(QFrame::Sunken);
        label->setContentsMargins(4, 0, 4, 0);
        addPermanentWidget(label, stretches[i]);
        m_panels[static_cast<std::size_t>(i)] = label;
    }
}

QLabel* MainStatusBar::panel(int index) const
{
    if (index < 1 || index > kPanels)
        return nullptr;
    return m_panels[static_cast<std::size_t>(index - 1)];
}

QString MainStatusBar::panelText(int index) const
{
    QLabel* label = panel(index);
    return label ? label->text() : QString();
}

void MainStatusBar::setPanelText(int index, const QString& text)
{
    if (QLabel* label = panel(index))
        label->setText(text);
}

} // namespace mirabend
