#pragma once
// Offline browsing for the web pane: while it is on, every request that would
// reach the network is refused before it leaves the browser; local files and
// data: addresses still load.
//
// Thread contract: setOffline on the UI thread; interceptRequest is called by
// Qt WebEngine on its IO thread, hence the atomic flag.

#include <QWebEngineUrlRequestInterceptor>
#include <atomic>

namespace mirabend {

class OfflineInterceptor : public QWebEngineUrlRequestInterceptor {
    Q_OBJECT
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void setOffline(bool offline) { m_offline.store(offline); }
    bool isOffline() const { return m_offline.load(); }
    // Requests refused since the start.
    int refusedCount() const { return m_refused.load(); }

    void interceptRequest(QWebEngineUrlRequestInfo& info) override;

private:
    std::atomic<bool> m_offline{false};
    std::atomic<int> m_refused{0};
};

} // namespace mirabend
