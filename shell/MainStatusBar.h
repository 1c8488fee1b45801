#pragma once
// `StatusBar1`: six text panels, addressed 1-based. Panel 1 holds the
// recording status, panel 4 the output caption, panel 5 the clock, panel 6
// the presentation mode — the program's single source of truth for it.
//
// Thread contract: UI thread only.

#include <QStatusBar>
#include <array>

class QLabel;

namespace mirabend {

class MainStatusBar : public QStatusBar {
    Q_OBJECT
public:
    static constexpr int kPanels = 6;
    explicit MainStatusBar(QWidget* parent = nullptr);

    QString panelText(int index) const;
    void setPanelText(int index, const QString& text);
    QLabel* panel(int index) const;

private:
    std::array<QLabel*, kPanels> m_panels{};
};

} // namespace mirabend
