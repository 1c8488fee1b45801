// The caption bar: Toolbar4's keys and the alignment swatches act on the
// title and presenter fields and both info bar captions, and the captions are
// always refreshed together.
#include "shell/CaptionBar.h"

#include "ShellFixture.h"

#include <QLabel>
#include <QToolButton>

namespace mirabend::test {
namespace {

class CaptionBarTest : public ShellTest {
protected:
    CaptionBar* toolbar4() { return window->findChild<CaptionBar*>(QStringLiteral("Toolbar4")); }
    QLineEdit* field(const char* name) { return window->findChild<QLineEdit*>(QLatin1String(name)); }
    // Horizontal alignment of the four controls, in the designed order.
    QList<Qt::Alignment> alignments() {
        return {field("title_txt")->alignment() & Qt::AlignHorizontal_Mask,
                stage().title_lb()->alignment() & Qt::AlignHorizontal_Mask,
                field("presenter_txt")->alignment() & Qt::AlignHorizontal_Mask,
                stage().presenter_lb()->alignment() & Qt::AlignHorizontal_Mask};
    }
};

TEST_F(CaptionBarTest, AlignmentKeysAndSwatchesSetAllFourControls) {
    ASSERT_NE(toolbar4(), nullptr);
    // Text field alignment values are 0 left, 1 right, 2 centre: "center" is
    // 2 and "right" is 1, not in key order.
    const struct {
        const char* control; // Toolbar4 key or swatch name
        bool swatch;
        Qt::Alignment expected;
    } cases[] = {{"right", false, Qt::AlignRight},      {"center", false, Qt::AlignHCenter},
                 {"left", false, Qt::AlignLeft},        {"Picture11", true, Qt::AlignRight},
                 {"Picture10", true, Qt::AlignHCenter}, {"Picture9", true, Qt::AlignLeft}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.control);
        // Start from a different alignment, so each case must change all four.
        toolbar4()->Toolbar4_ButtonClick(c.expected == Qt::AlignLeft ? QStringLiteral("right")
                                                                     : QStringLiteral("left"));
        if (c.swatch) {
            auto* swatch = window->findChild<QToolButton*>(QLatin1String(c.control));
            ASSERT_NE(swatch, nullptr);
            swatch->click();
        } else {
            toolbar4()->click(toolbar4()->position(QLatin1String(c.control)));
        }
        EXPECT_EQ(alignments(), QList<Qt::Alignment>(4, c.expected));
    }
}

TEST_F(CaptionBarTest, ShowHideAndUnknownKeys) {
    QWidget* bar = stage().infobar_pic();
    const struct {
        const char* key;
        bool visibleBefore;
        bool visibleAfter;
    } cases[] = {{"show", false, true}, {"hide", true, false}, {"Show", false, false}, {"", true, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.key);
        bar->setVisible(c.visibleBefore);
        toolbar4()->Toolbar4_ButtonClick(QLatin1String(c.key));
        EXPECT_EQ(!bar->isHidden(), c.visibleAfter);
    }
    toolbar4()->Toolbar4_ButtonClick(QStringLiteral("center"));
    toolbar4()->Toolbar4_ButtonClick(QStringLiteral("middle"));
    EXPECT_EQ(alignments(), QList<Qt::Alignment>(4, Qt::AlignHCenter)) << "an unknown key changes nothing";
}

TEST_F(CaptionBarTest, EitherFieldRefreshesBothCaptions) {
    field("title_txt")->setText(QStringLiteral("Talk"));
    stage().title_lb()->setText(QStringLiteral("stale"));
    field("presenter_txt")->setText(QStringLiteral("Ana"));
    EXPECT_EQ(stage().title_lb()->text(), QStringLiteral("Talk"))
        << "typing the presenter rewrites the title";
    EXPECT_EQ(stage().presenter_lb()->text(), QStringLiteral("Ana"));
}

} // namespace
} // namespace mirabend::test
