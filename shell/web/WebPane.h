#pragma once
// The web pane: the browser `WebBrowser1` inside the stage's web container,
// and its tools for the task pane's "Web" bar: the address field `http_txt`,
// the option `offline_opt` and the toolbar `Toolbar2` ("go", "forward",
// "back"). Ctrl+L focuses the address; Enter in it is "go". Back and forward
// are enabled only when the page has history that way.
//
// Thread contract: UI thread only.

#include <QObject>
#include <QPointer>
#include <QWebEnginePage>
#include <QWebEngineView>
#include <functional>

class QCheckBox;
class QLineEdit;
class QToolBar;
class QAction;
class QWebEngineProfile;

namespace mirabend {

class OfflineInterceptor;

class WebPane : public QObject {
    Q_OBJECT
public:
    // Fills `container` with the browser; the pane lives as long as it.
    explicit WebPane(QWidget* container);
    ~WebPane() override;

    // The browser; made on first use (the pane shows, an address is opened).
    QWebEngineView* WebBrowser1() const { return m_view; }
    QLineEdit* http_txt() const { return m_address; }
    QCheckBox* offline_opt() const { return m_offline; }
    QToolBar* Toolbar2() const { return m_toolbar; }
    // The panel holding the tools; the task pane takes it over.
    QWidget* tools() const { return m_tools; }
    OfflineInterceptor& interceptor() const { return *m_interceptor; }
    // Makes the browser if it does not exist yet.
    QWebEngineView* ensureBrowser();

    // "go", "forward", "back"; any other key does nothing.
    void Toolbar2_ButtonClick(const QString& key);
    // Ctrl+L: make the tools visible, then focus and select the address.
    void focusAddress();

    // Opens the task pane bar that holds the tools (set by the wiring).
    std::function<void()> revealTools = [] {
    };

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildTools();
    void go();
    void updateHistoryButtons();
    QAction* addButton(const QString& key, const QString& caption, const QString& tip);

    QWidget* m_container;
    QWebEngineProfile* m_profile = nullptr;
    OfflineInterceptor* m_interceptor;
    QPointer<QWebEngineView> m_view;
    QPointer<QWebEnginePage> m_page;
    QPointer<QWidget> m_tools;
    QLineEdit* m_address;
    QCheckBox* m_offline;
    QToolBar* m_toolbar;
    QAction* m_go = nullptr;
    QAction* m_forward = nullptr;
    QAction* m_back = nullptr;
};

} // namespace mirabend
