#include "shell/about/frmAbout.h"

#include "shell/about/ComponentVersions.h"
#include "shell/about/GetKeyValue.h"
#include "util/Prompts.h"
#include "util/WindowSystem.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

namespace mirabend {

const char* const frmAbout::kProductPage = "https://mirabend.org/";
const char* const frmAbout::kAuthorPage = "https://mirabend.org/author/";

namespace {

QLabel* linkLabel(const char* name, const QString& text, const char* address, QWidget* parent) {
    auto* label =
        new QLabel(QStringLiteral("<a href=\"%1\">%2</a>").arg(QLatin1String(address), text), parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::RichText);
    label->setOpenExternalLinks(false);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setToolTip(QLatin1String(address));
    return label;
}

} // namespace

frmAbout::frmAbout(Services services, QWidget* mainWindow)
    : QDialog(nullptr, Qt::Dialog)
    , m_services(std::move(services))
    , m_mainWindow(mainWindow)
    , m_office(new LibreOfficeVersion(this)) {
    if (!m_services.startProgram)
        m_services.startProgram = [](const QString& path) {
            return QProcess::startDetached(path, {});
        };
    if (!m_services.openUrl)
        m_services.openUrl = [](const QUrl& url) {
            return QDesktopServices::openUrl(url);
        };
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(tr("About Mirabend"));
    setAttribute(Qt::WA_DeleteOnClose);

    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(QStringLiteral(":/icons/mirabend.svg")).pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);
    auto* title = new QLabel(QStringLiteral("Mirabend"), this);
    title->setObjectName(QStringLiteral("lblTitle"));
    title->setStyleSheet(QStringLiteral("font-size: 20px; font-weight: bold;"));
    auto* version = new QLabel(tr("Version %1").arg(QStringLiteral(MIRABEND_VERSION)), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto* description = new QLabel(tr("Records your presentation - slides, camera, whiteboard, notes and web "
                                      "pages on one stage - with sound to a video file."),
                                   this);
    description->setObjectName(QStringLiteral("lblDescription"));
    description->setWordWrap(true);
    m_versions = new QLabel(this);
    m_versions->setObjectName(QStringLiteral("lblVersions"));
    m_versions->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_versions->setStyleSheet(QStringLiteral("color: #4a5568;"));
    showVersions(tr("checking ..."));
    m_label1 = linkLabel("Label1", tr("Mirabend on the web"), kProductPage, this);
    m_label2 = linkLabel("Label2", tr("The author's home page"), kAuthorPage, this);
    connect(m_label1, &QLabel::linkActivated, this,
            [this](const QString& link) { m_services.openUrl(QUrl(link)); });
    connect(m_label2, &QLabel::linkActivated, this,
            [this](const QString& link) { m_services.openUrl(QUrl(link)); });

    auto* text = new QVBoxLayout;
    text->addWidget(title);
    text->addWidget(version);
    text->addWidget(description);
    text->addSpacing(8);
    text->addWidget(m_versions);
    text->addSpacing(8);
    text->addWidget(m_label1);
    text->addWidget(m_label2);
    auto* top = new QHBoxLayout;
    top->addWidget(icon);
    top->addLayout(text, 1);

    m_ok = new QPushButton(tr("OK"), this);
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    m_ok->setDefault(true);
    m_sysInfo = new QPushButton(tr("&System Info..."), this);
    m_sysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    m_sysInfo->setToolTip(tr("Start the system information program"));
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(m_ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_sysInfo, QDialogButtonBox::ActionRole);
    connect(m_ok, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);
    connect(m_sysInfo, &QPushButton::clicked, this, &frmAbout::StartSysInfo);

    auto* column = new QVBoxLayout(this);
    column->addLayout(top);
    column->addWidget(buttons);
    setMinimumWidth(440);

    connect(m_office, &LibreOfficeVersion::found, this, &frmAbout::showVersions);
}

frmAbout::~frmAbout() {
    Form_Terminate();
}

void frmAbout::showVersions(const QString& office) {
    m_versions->setText(
        tr("Qt %1\nFFmpeg: %2\nLibreOffice %3\nalsa-lib %4")
            .arg(ComponentVersions::qt(), ComponentVersions::ffmpeg(), office, ComponentVersions::alsa()));
}

void frmAbout::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    Form_Load();
}

void frmAbout::Form_Load() {
    if (m_loaded)
        return;
    m_loaded = true;
    if (m_mainWindow) {
        m_mainWindow->setEnabled(false);
        winId();
        if (m_mainWindow->windowHandle())
            windowHandle()->setTransientParent(m_mainWindow->windowHandle());
    }
    windowSystem().setTopMost(static_cast<NativeHandle>(winId()), true);
    m_office->start();
}

void frmAbout::closeEvent(QCloseEvent* event) {
    Form_Terminate();
    QDialog::closeEvent(event);
}

void frmAbout::Form_Terminate() {
    if (m_terminated)
        return;
    m_terminated = true;
    if (m_mainWindow)
        m_mainWindow->setEnabled(true);
}

void frmAbout::StartSysInfo() {
    QString path;
    if (!GetKeyValue(*m_services.keys, kLocalMachine, kSysInfoKey, kSysInfoValue, path)) {
        QString folder;
        path.clear();
        if (GetKeyValue(*m_services.keys, kLocalMachine, kSysInfoLocationKey, kSysInfoLocationValue,
                        folder)) {
            // The folder holds one of the known programs, best first.
            for (const QString& name : sysInfoProgramNames()) {
                const QString candidate =
                    folder + (folder.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/")) + name;
                if (QFileInfo(candidate).isFile()) {
                    path = candidate;
                    break;
                }
            }
        }
    }
    if (!path.isEmpty() && m_services.startProgram(path))
        return;
    m_services.prompts->show(QStringLiteral("System Information Is Unavailable At This Time"),
                             QStringLiteral("Mirabend 1.0"), PromptIcon::None);
}

} // namespace mirabend
