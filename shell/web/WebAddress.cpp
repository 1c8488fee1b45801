#include "shell/web/WebAddress.h"

#include <QDir>
#include <QRegularExpression>

namespace mirabend {

namespace {

// Schemes written without "//" that a user may type on their own.
bool isOpaqueScheme(const QString& scheme) {
    static const QStringList known{QStringLiteral("about"), QStringLiteral("data"), QStringLiteral("file"),
                                   QStringLiteral("mailto"), QStringLiteral("view-source")};
    return known.contains(scheme);
}

} // namespace

QUrl addressToUrl(const QString& typed) {
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return {};
    if (text.startsWith(QLatin1Char('/')))
        return QUrl::fromLocalFile(text);
    if (text.startsWith(QLatin1String("~/")))
        return QUrl::fromLocalFile(QDir::homePath() + text.mid(1));
    // "host:port/..." is not a scheme; "name://" or a known opaque scheme is.
    static const QRegularExpression schemePattern(QStringLiteral("^([A-Za-z][A-Za-z0-9+.-]*):"));
    const QRegularExpressionMatch match = schemePattern.match(text);
    if (match.hasMatch()) {
        const QString scheme = match.captured(1).toLower();
        if (text.mid(match.capturedLength()).startsWith(QLatin1String("//")) || isOpaqueScheme(scheme)) {
            const QUrl url(text, QUrl::TolerantMode);
            return url.isValid() ? url : QUrl();
        }
    }
    const QUrl url(QStringLiteral("https://") + text, QUrl::TolerantMode);
    return url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

bool isNetworkScheme(const QString& scheme) {
    static const QStringList network{QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("ws"),
                                     QStringLiteral("wss"), QStringLiteral("ftp")};
    return network.contains(scheme.toLower());
}

} // namespace mirabend
