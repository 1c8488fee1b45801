// The font picker: sorted families, the designed start choice, the edit
// field that `TheFont` sets, and the one event.
#include "util/FontComboControl.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

QStringList comboItems(const FontComboControl& control) {
    QStringList items;
    for (int i = 0; i < control.FontCombo()->count(); ++i)
        items << control.FontCombo()->itemText(i);
    return items;
}

TEST(FontComboControl, ListsTheFamiliesSortedAndChoosesTimesNewRomanOrTheFirst) {
    struct Case {
        QStringList installed;
        QStringList sorted;
        QString chosen;
    };
    const QString tnr = QStringLiteral("Times New Roman");
    const Case cases[] = {
        {{QStringLiteral("Zapf"), tnr, QStringLiteral("Arial")},
         {QStringLiteral("Arial"), tnr, QStringLiteral("Zapf")},
         tnr},
        {{QStringLiteral("Zapf"), QStringLiteral("times new roman"), QStringLiteral("DejaVu Sans")},
         {QStringLiteral("DejaVu Sans"), QStringLiteral("Zapf"), QStringLiteral("times new roman")},
         QStringLiteral("DejaVu Sans")},
        {{}, {}, QString()},
    };
    for (const Case& c : cases) {
        FontComboControl control(c.installed, nullptr);
        EXPECT_EQ(comboItems(control), c.sorted);
        EXPECT_EQ(control.curfont(), c.chosen);
        EXPECT_TRUE(control.List1()->isHidden());
        EXPECT_EQ(control.List1()->count(), c.installed.size());
        for (int i = 0; i < control.FontCombo()->count(); ++i)
            EXPECT_EQ(control.FontCombo()->itemIcon(i).cacheKey(),
                      control.FontCombo()->itemIcon(0).cacheKey());
    }
    // Without a list of its own it shows what the font database has (only
    // DejaVu here: no Times New Roman, so the first family).
    FontComboControl installed;
    const QStringList families = QFontDatabase::families();
    EXPECT_EQ(comboItems(installed).size(), families.size());
    if (!families.contains(QStringLiteral("Times New Roman"))) {
        EXPECT_EQ(installed.curfont(), comboItems(installed).value(0));
    }
}

TEST(FontComboControl, TheFontShowsAnyTextAndOnlyAPickRaisesTheEvent) {
    FontComboControl control({QStringLiteral("Beta"), QStringLiteral("Alpha")}, nullptr);
    QSignalSpy clicks(&control, &FontComboControl::Click);
    control.TheFont(QStringLiteral("No Such Font"));
    EXPECT_EQ(control.FontCombo()->currentText(), QStringLiteral("No Such Font"));
    EXPECT_EQ(control.curfont(), QStringLiteral("Alpha"));
    control.FontCombo()->setCurrentIndex(1);
    EXPECT_EQ(clicks.count(), 0) << "a change by the program is no pick";
    Q_EMIT control.FontCombo()->activated(1);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(control.curfont(), QStringLiteral("Beta"));
    control.show();
    control.resize(300, 40);
    EXPECT_EQ(control.FontCombo()->geometry(), control.rect());
}

} // namespace
} // namespace mirabend::test
