#include "OfficeDecks.h"

#include "shell/slideshow/UnoSession.h"

#include <QDir>
#include <QThread>
#include <QUrl>
#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/frame/XComponentLoader.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/util/XCloseable.hpp>

namespace mirabend::test {

namespace beans = com::sun::star::beans;
namespace frame = com::sun::star::frame;
namespace lang = com::sun::star::lang;

namespace {

uno::Sequence<beans::PropertyValue> oneProperty(const char* name, const uno::Any& value) {
    beans::PropertyValue p;
    p.Name = rtl::OUString::createFromAscii(name);
    p.Value = value;
    return uno::Sequence<beans::PropertyValue>(&p, 1);
}

rtl::OUString urlOf(const QString& path) {
    return toOU(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
}

} // namespace

bool saveAsPowerPoint(const QString& connectUrl, const QString& fodp, const QString& folder,
                      const QString& base, DeckFiles& out, std::string& error) {
    UnoSession session;
    UnoSession::Attempt attempt = UnoSession::Attempt::NotYet;
    for (int tries = 0; tries < 50 && attempt == UnoSession::Attempt::NotYet; ++tries) {
        attempt = session.connect(connectUrl, error);
        if (attempt == UnoSession::Attempt::NotYet)
            QThread::msleep(100);
    }
    if (attempt != UnoSession::Attempt::Connected) {
        if (error.empty())
            error = "no office at " + connectUrl.toStdString();
        return false;
    }
    try {
        const uno::Reference<frame::XComponentLoader> loader(session.desktop(), uno::UNO_QUERY_THROW);
        // Hidden is fine here: this document never runs a show.
        const uno::Reference<lang::XComponent> doc = loader->loadComponentFromURL(
            urlOf(fodp), rtl::OUString("_blank"), 0, oneProperty("Hidden", uno::Any(true)));
        const uno::Reference<frame::XStorable> storable(doc, uno::UNO_QUERY_THROW);
        const QDir dir(folder);
        out.pptx = dir.filePath(base + QStringLiteral(".pptx"));
        out.ppt = dir.filePath(base + QStringLiteral(".ppt"));
        out.pps = dir.filePath(base + QStringLiteral(".pps"));
        storable->storeToURL(
            urlOf(out.pptx),
            oneProperty("FilterName", uno::Any(rtl::OUString("Impress MS PowerPoint 2007 XML"))));
        storable->storeToURL(urlOf(out.ppt),
                             oneProperty("FilterName", uno::Any(rtl::OUString("MS PowerPoint 97"))));
        storable->storeToURL(urlOf(out.pps),
                             oneProperty("FilterName", uno::Any(rtl::OUString("MS PowerPoint 97 AutoPlay"))));
        uno::Reference<com::sun::star::util::XCloseable>(doc, uno::UNO_QUERY_THROW)->close(true);
    } catch (const uno::Exception& e) {
        error = "saving the decks: " + describe(e);
        return false;
    }
    return true;
}

} // namespace mirabend::test
