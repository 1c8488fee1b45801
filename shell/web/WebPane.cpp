#include "shell/web/WebPane.h"

#include "shell/web/OfflineInterceptor.h"
#include "shell/web/WebAddress.h"
#include "shell/web/WebEngineSetup.h"

#include <QAction>
#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QShortcut>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWebEngineHistory>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>

namespace mirabend {

WebPane::WebPane(QWidget* container)
    : QObject(container)
    , m_container(container)
    , m_interceptor(new OfflineInterceptor(this)) {
    buildTools();
    // Chromium starts with the first page: the browser is made when the pane
    // first shows or the user opens an address, not at program start.
    container->installEventFilter(this);
    if (container->isVisible())
        ensureBrowser();

    // Ctrl+L works wherever the focus is in the main window, even while the
    // "Web" bar is collapsed.
    auto* focusShortcut = new QShortcut(QKeySequence(tr("Ctrl+L")), container->window());
    focusShortcut->setContext(Qt::WindowShortcut);
    connect(focusShortcut, &QShortcut::activated, this, &WebPane::focusAddress);
    updateHistoryButtons();
}

void WebPane::buildTools() {
    m_tools = new QWidget;
    m_tools->setObjectName(QStringLiteral("webTools"));
    auto* column = new QVBoxLayout(m_tools);
    column->setContentsMargins(0, 0, 0, 0);
    m_address = new QLineEdit(m_tools);
    m_address->setObjectName(QStringLiteral("http_txt"));
    m_address->setPlaceholderText(tr("Address"));
    m_address->setClearButtonEnabled(true);
    m_address->setToolTip(tr("Web address (Ctrl+L); Enter opens it"));
    column->addWidget(m_address);

    auto* row = new QHBoxLayout;
    m_toolbar = new QToolBar(tr("Web"), m_tools);
    m_toolbar->setObjectName(QStringLiteral("Toolbar2"));
    m_toolbar->setIconSize(QSize(18, 18));
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_go = addButton(QStringLiteral("go"), tr("Go"), tr("Open the address"));
    m_back = addButton(QStringLiteral("back"), tr("Back"), tr("Previous page"));
    m_forward = addButton(QStringLiteral("forward"), tr("Forward"), tr("Next page"));
    const QStyle* style = m_tools->style();
    m_go->setIcon(style->standardIcon(QStyle::SP_DialogApplyButton));
    m_back->setIcon(style->standardIcon(QStyle::SP_ArrowBack));
    m_forward->setIcon(style->standardIcon(QStyle::SP_ArrowForward));
    row->addWidget(m_toolbar);
    row->addStretch(1);
    column->addLayout(row);

    m_offline = new QCheckBox(tr("Browse offline"), m_tools);
    m_offline->setObjectName(QStringLiteral("offline_opt"));
    m_offline->setToolTip(tr("Load nothing from the network; local files still open"));
    column->addWidget(m_offline);

    connect(m_address, &QLineEdit::returnPressed, this,
            [this] { Toolbar2_ButtonClick(QStringLiteral("go")); });
}

QWebEngineView* WebPane::ensureBrowser() {
    if (m_view)
        return m_view;
    m_container->removeEventFilter(this);
    prepareWebEngine();
    // An off-the-record profile: nothing is kept between runs.
    m_profile = new QWebEngineProfile(this);
    m_profile->setUrlRequestInterceptor(m_interceptor);

    // The container shows a hint while it has no browser; the page takes its place.
    for (QLabel* hint : m_container->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly))
        hint->hide();
    if (!m_container->layout())
        new QVBoxLayout(m_container);
    m_container->layout()->setContentsMargins(0, 0, 0, 0);
    m_view = new QWebEngineView(m_container);
    m_view->setObjectName(QStringLiteral("WebBrowser1"));
    m_page = new QWebEnginePage(m_profile, m_view);
    m_view->setPage(m_page);
    m_container->layout()->addWidget(m_view);

    connect(m_view, &QWebEngineView::urlChanged, this, [this](const QUrl& url) {
        // The field follows the page unless the user is typing in it (or the
        // task pane that holds it is already gone).
        if (m_tools && !m_address->hasFocus() && !url.isEmpty() && url != QUrl(QStringLiteral("about:blank")))
            m_address->setText(url.toString());
        updateHistoryButtons();
    });
    connect(m_view, &QWebEngineView::loadFinished, this, [this] { updateHistoryButtons(); });
    return m_view;
}

bool WebPane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_container && event->type() == QEvent::Show)
        ensureBrowser();
    return QObject::eventFilter(watched, event);
}

WebPane::~WebPane() {
    // The page must go before the profile it was made with; what it
    // signals on its way out is of no interest any more.
    if (m_view)
        m_view->disconnect(this);
    delete m_page;
    delete m_tools;
}

QAction* WebPane::addButton(const QString& key, const QString& caption, const QString& tip) {
    QAction* action = m_toolbar->addAction(caption);
    action->setObjectName(QStringLiteral("Toolbar2_") + key);
    action->setToolTip(tip);
    connect(action, &QAction::triggered, this, [this, key] { Toolbar2_ButtonClick(key); });
    return action;
}

void WebPane::Toolbar2_ButtonClick(const QString& key) {
    if (key == QLatin1String("go"))
        go();
    else if (key == QLatin1String("forward"))
        ensureBrowser()->forward();
    else if (key == QLatin1String("back"))
        ensureBrowser()->back();
}

void WebPane::go() {
    m_interceptor->setOffline(m_offline->isChecked());
    const QUrl url = addressToUrl(m_address->text());
    // Text that is no address is left to the user to correct, as in a browser.
    if (!url.isValid())
        return;
    m_address->setText(url.toString());
    ensureBrowser()->setUrl(url);
    m_view->setFocus();
}

void WebPane::focusAddress() {
    revealTools();
    m_address->setFocus(Qt::ShortcutFocusReason);
    m_address->selectAll();
}

void WebPane::updateHistoryButtons() {
    if (!m_tools)
        return;
    QWebEngineHistory* history = m_view ? m_view->history() : nullptr;
    m_back->setEnabled(history && history->canGoBack());
    m_forward->setEnabled(history && history->canGoForward());
}

} // namespace mirabend
