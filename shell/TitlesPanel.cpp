#include "shell/TitlesPanel.h"

#include "shell/CaptionBar.h"
#include "shell/Stage.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace mirabend {

TitlesPanel::TitlesPanel(Stage& stage, QWidget* parent)
    : QWidget(parent)
    , m_stage(stage)
    , m_title(new QLineEdit(this))
    , m_presenter(new QLineEdit(this))
{
    m_title->setObjectName(QStringLiteral("title_txt"));
    m_presenter->setObjectName(QStringLiteral("presenter_txt"));
    m_title->setPlaceholderText(tr("Title of the talk"));
    m_presenter->setPlaceholderText(tr("Your name"));
    auto* form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Title"), m_title);
    form->addRow(tr("Presenter"), m_presenter);

    auto* alignRow = new QHBoxLayout;
    const struct {
        const char* name;
        const char* tip;
        int alignment;
    } swatches[] = {{"Picture9", QT_TR_NOOP("Align left"), 0},
                    {"Picture10", QT_TR_NOOP("Centre"), 2},
                    {"Picture11", QT_TR_NOOP("Align right"), 1}};
    for (const auto& swatch : swatches) {
        auto* button = new QToolButton(this);
        button->setObjectName(QString::fromLatin1(swatch.name));
        button->setToolTip(tr(swatch.tip));
        button->setIcon(CaptionBar::alignmentIcon(swatch.alignment));
        const int alignment = swatch.alignment;
        connect(button, &QToolButton::clicked, this, [this, alignment] { applyAlignment(alignment); });
        alignRow->addWidget(button);
    }
    alignRow->addStretch(1);
    form->addRow(tr("Align"), alignRow);
    m_toolbar4 = new CaptionBar(stage, *this, this);
    form->addRow(m_toolbar4);

    connect(m_title, &QLineEdit::textChanged, this, &TitlesPanel::refreshCaptions);
    connect(m_presenter, &QLineEdit::textChanged, this, &TitlesPanel::refreshCaptions);
}

void TitlesPanel::refreshCaptions()
{
    // Both captions are refreshed on either change.
    m_stage.title_lb()->setText(m_title->text());
    m_stage.presenter_lb()->setText(m_presenter->text());
}

void TitlesPanel::applyAlignment(int alignment)
{
    const Qt::Alignment flag = alignment == 1 ? Qt::AlignRight : alignment == 2 ? Qt::AlignHCenter : Qt::AlignLeft;
    m_title->setAlignment(flag | Qt::AlignVCenter);
    m_stage.title_lb()->setAlignment(flag | Qt::AlignVCenter);
    m_presenter->setAlignment(flag | Qt::AlignVCenter);
    m_stage.presenter_lb()->setAlignment(flag | Qt::AlignVCenter);
}

} // namespace mirabend
