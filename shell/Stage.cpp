#include "shell/Stage.h"

#include <QLabel>
#include <QTextEdit>
#include <QVBoxLayout>

namespace mirabend {

namespace {

// A pane whose content arrives with its own subsystem shows what it is for,
// so an empty pane never looks broken.
QLabel* hintLabel(QWidget* pane, const QString& text, const QString& color)
{
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(text, pane);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: %1; font-size: 15px;").arg(color));
    layout->addWidget(label);
    return label;
}

} // namespace

Stage::Stage(QWidget* parent)
    : QWidget(parent)
    , m_frmSS(new QWidget(this))
    , m_parentPic(new QWidget(this))
    , m_textBoard(new QTextEdit(this))
    , m_web(new QWidget(this))
    , m_camera(new QWidget(this))
    , m_infobar(new QWidget(this))
    , m_titleLabel(new QLabel(m_infobar))
    , m_presenterLabel(new QLabel(m_infobar))
    , m_notice(new QLabel(this))
{
    setObjectName(QStringLiteral("Picture1"));
    setFixedSize(kWidth, kHeight);
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("QWidget#Picture1 { background: qlineargradient(x1:0, y1:0, x2:0, y2:1,"
                                 " stop:0 #2b3440, stop:1 #161a20); }"));

    // The slide pane is a native window: the presentation program creates
    // its show window inside it by window id.
    m_frmSS->setObjectName(QStringLiteral("frmSS"));
    m_frmSS->setAttribute(Qt::WA_NativeWindow);
    m_frmSS->setAttribute(Qt::WA_DontCreateNativeAncestors);
    m_frmSS->setAutoFillBackground(true);
    m_frmSS->setStyleSheet(QStringLiteral("QWidget#frmSS { background: #000000; }"));

    m_parentPic->setObjectName(QStringLiteral("parentPic"));
    m_parentPic->setAttribute(Qt::WA_StyledBackground);
    m_parentPic->setStyleSheet(QStringLiteral("QWidget#parentPic { background: #ffffff; }"));
    hintLabel(m_parentPic, tr("Whiteboard"), QStringLiteral("#b0b6c0"));

    m_textBoard->setObjectName(QStringLiteral("textBoard_txt"));
    m_textBoard->setAcceptRichText(true);
    m_textBoard->setPlaceholderText(tr("Type your notes here"));

    m_web->setObjectName(QStringLiteral("WebBrowser1"));
    m_web->setAttribute(Qt::WA_StyledBackground);
    m_web->setStyleSheet(QStringLiteral("QWidget#WebBrowser1 { background: #f7f8fa; }"));
    hintLabel(m_web, tr("Web page"), QStringLiteral("#8a93a3"));

    m_camera->setObjectName(QStringLiteral("VideoCap1"));
    m_camera->setAttribute(Qt::WA_StyledBackground);
    m_camera->setStyleSheet(QStringLiteral("QWidget#VideoCap1 { background: #0d0f12; }"));
    hintLabel(m_camera, tr("No camera"), QStringLiteral("#5d6470"));

    m_infobar->setObjectName(QStringLiteral("infobar_pic"));
    m_infobar->setAttribute(Qt::WA_StyledBackground);
    m_infobar->setStyleSheet(QStringLiteral("QWidget#infobar_pic { background: qlineargradient(x1:0, y1:0, "
                                            "x2:1, y2:0, stop:0 #1f3b6f, stop:1 #3d6cb5); }"
                                            "QLabel { color: white; }"));
    m_infobar->setGeometry(10, 485, kWidth - 20, 95);
    m_titleLabel->setObjectName(QStringLiteral("title_lb"));
    m_titleLabel->setStyleSheet(QStringLiteral("font-size: 22px; font-weight: bold;"));
    m_presenterLabel->setObjectName(QStringLiteral("presenter_lb"));
    m_presenterLabel->setStyleSheet(QStringLiteral("font-size: 16px;"));
    auto* infoLayout = new QVBoxLayout(m_infobar);
    infoLayout->setContentsMargins(16, 8, 16, 8);
    infoLayout->addWidget(m_titleLabel);
    infoLayout->addWidget(m_presenterLabel);

    m_notice->setObjectName(QStringLiteral("noticeBox"));
    m_notice->setText(tr("Preparing the recorder ..."));
    m_notice->setAlignment(Qt::AlignCenter);
    m_notice->setStyleSheet(QStringLiteral("background: #fff6d5; color: #5a4500; border: 1px solid #d9b84a;"
                                           " font-size: 14px; padding: 8px;"));
    m_notice->setGeometry(kWidth / 2 - 150, kHeight / 2 - 25, 300, 50);
    m_notice->hide();

    // Designed start: the slide pane fills the stage, the camera sits in the
    // top right corner, nothing else shows until the user picks it.
    m_frmSS->setGeometry(0, 0, 580, 435);
    m_parentPic->setGeometry(0, 0, 580, 435);
    m_textBoard->setGeometry(0, 0, 580, 435);
    m_web->setGeometry(0, 0, 580, 435);
    m_camera->setGeometry(kWidth - 145 - 10, 20, 145, 109);
    m_parentPic->hide();
    m_textBoard->hide();
    m_web->hide();
    m_camera->hide();
    m_infobar->hide();
    m_notice->raise();
}

bool Stage::anyContentPaneVisible() const
{
    return !m_frmSS->isHidden() || !m_parentPic->isHidden() || !m_textBoard->isHidden() || !m_web->isHidden();
}

} // namespace mirabend
