#pragma once
// What the web pane makes of the text typed into its address field, and which
// requests count as network traffic for offline browsing.
//
// Thread contract: free functions, any thread.

#include <QString>
#include <QUrl>

namespace mirabend {

// The address to load for the typed text: trimmed; kept as it is when it
// names a scheme ("http://...", "file:/...", "data:...", "about:blank"); a
// local path ("/..." or "~/...") becomes a file address; anything else gets
// "https://" in front, as browsers do. Empty or unusable text gives an
// invalid URL.
QUrl addressToUrl(const QString& typed);

// True for the schemes that reach the network; offline mode refuses exactly
// these, so local files, data: addresses and the browser's own pages load.
bool isNetworkScheme(const QString& scheme);

} // namespace mirabend
