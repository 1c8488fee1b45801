#include "shell/web/OfflineInterceptor.h"

#include "shell/web/WebAddress.h"

namespace mirabend {

void OfflineInterceptor::interceptRequest(QWebEngineUrlRequestInfo& info) {
    if (!m_offline.load() || !isNetworkScheme(info.requestUrl().scheme()))
        return;
    info.block(true);
    m_refused.fetch_add(1);
}

} // namespace mirabend
