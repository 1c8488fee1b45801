#include "recording/resolution/ui/ScrRes_frm.h"

#include "recording/resolution/DisplaySettings.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QVBoxLayout>

namespace mirabend {

namespace {

struct Size {
    const char* name;
    const char* caption;
    int width;
    int height;
};
constexpr Size kSizes[] = {{"Option1", "800 x 600", 800, 600},
                           {"Option2", "1024 x 768", 1024, 768},
                           {"Option3", "1280 x 960", 1280, 960}};

} // namespace

ScrRes_frm::ScrRes_frm(DisplaySettings& display, Restart restart, QWidget* parent)
    : QDialog(parent)
    , m_display(display)
    , m_restart(std::move(restart)) {
    if (!m_restart.startProgram)
        m_restart.startProgram = [](const QString& program, const QStringList& arguments) {
            return QProcess::startDetached(program, arguments);
        };
    if (!m_restart.endProgram)
        m_restart.endProgram = [] {
            QCoreApplication::quit();
        };
    setObjectName(QStringLiteral("ScrRes_frm"));
    setWindowTitle(QStringLiteral("Screen Resolution"));

    auto* group = new QGroupBox(tr("Desktop size"), this);
    auto* options = new QVBoxLayout(group);
    for (int i = 0; i < 3; ++i) {
        m_options[i] = new QRadioButton(QString::fromLatin1(kSizes[i].caption), group);
        m_options[i]->setObjectName(QString::fromLatin1(kSizes[i].name));
        options->addWidget(m_options[i]);
    }

    m_apply = new QPushButton(QStringLiteral("Apply"), this);
    m_apply->setObjectName(QStringLiteral("Command1"));
    m_apply->setToolTip(tr("Switch the screen to the chosen size"));
    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("Command2"));
    m_ok->setDefault(true);
    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("Command3"));
    m_cancel->setShortcut(QKeySequence(Qt::Key_Escape));
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_apply);
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    buttons->addStretch(1);

    auto* row = new QHBoxLayout;
    row->addWidget(group, 1);
    row->addLayout(buttons);

    m_msg = new QStatusBar(this);
    m_msg->setObjectName(QStringLiteral("msg"));
    m_msg->setSizeGripEnabled(false);
    m_msg->setStyleSheet(QStringLiteral("QStatusBar#msg { border-top: 1px solid palette(mid); }"));
    m_panel1 = new QLabel(m_msg);
    m_panel1->setObjectName(QStringLiteral("msgPanel1"));
    m_msg->addWidget(m_panel1, 1);

    auto* column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(m_msg);

    connect(m_apply, &QPushButton::clicked, this, &ScrRes_frm::Command1_Click);
    connect(m_ok, &QPushButton::clicked, this, &ScrRes_frm::Command2_Click);
    connect(m_cancel, &QPushButton::clicked, this, &ScrRes_frm::Command3_Click);
}

ScrRes_frm::ScrRes_frm(std::unique_ptr<DisplaySettings> display, Restart restart, QWidget* parent)
    : ScrRes_frm(*display, std::move(restart), parent) {
    m_ownedDisplay = std::move(display);
}

ScrRes_frm::~ScrRes_frm() = default;

QString ScrRes_frm::msgText() const {
    return m_panel1->text();
}

void ScrRes_frm::Command1_Click() {
    // Mode 0 is the first mode the display lists, not the current one; with
    // no size chosen its own size stays.
    DisplayMode mode;
    m_display.EnumDisplaySettings(0, mode);
    for (int i = 0; i < 3; ++i) {
        if (m_options[i]->isChecked()) {
            mode.width = kSizes[i].width;
            mode.height = kSizes[i].height;
            break;
        }
    }
    const DisplayChange result = m_display.ChangeDisplaySettings(mode, DisplayChangeFlags::Temporary);
    if (result != DisplayChange::Successful && result != DisplayChange::Restart) {
        m_panel1->setText(QStringLiteral("Error: Resolution mode not supported"));
        m_panel1->setToolTip(QString::fromStdString(m_display.lastDetail()));
        return;
    }
    m_panel1->setToolTip(QString());
    if (result == DisplayChange::Restart) {
        m_panel1->setText(QStringLiteral("Please reboot your system!"));
        return;
    }
    m_display.ChangeDisplaySettings(mode, DisplayChangeFlags::Store);
    m_panel1->setText(QStringLiteral("Click OK to restart Mirabend 1.0"));
    m_restartPending = true;
}

void ScrRes_frm::Command2_Click() {
    close();
    if (m_restartPending)
        RestartMe();
}

void ScrRes_frm::Command3_Click() {
    close();
}

void ScrRes_frm::RestartMe() {
    m_restart.startProgram(QCoreApplication::applicationFilePath(), {QStringLiteral("RESTART")});
    m_restart.endProgram();
}

} // namespace mirabend
