#include "shell/slideshow/UnoSession.h"

#include <com/sun/star/bridge/UnoUrlResolver.hpp>
#include <com/sun/star/bridge/XUnoUrlResolver.hpp>
#include <com/sun/star/connection/NoConnectException.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <cstdlib>

namespace mirabend {

namespace bridge = com::sun::star::bridge;
namespace frame = com::sun::star::frame;

std::string toStd(const rtl::OUString& text) {
    return rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8).getStr();
}

rtl::OUString toOU(const QString& text) {
    return rtl::OUString(reinterpret_cast<const sal_Unicode*>(text.utf16()), text.size());
}

std::string describe(const uno::Exception& e) {
    return toStd(e.Message);
}

uno::Reference<uno::XComponentContext> localUnoContext(std::string& detail) {
    static uno::Reference<uno::XComponentContext> context;
    static std::string failure;
    static bool tried = false;
    if (!tried) {
        tried = true;
        // The UNO runtime finds its type and service registries through
        // this file; without it bootstrapping crashes instead of failing.
        setenv("URE_BOOTSTRAP", "vnd.sun.star.pathname:" MIRABEND_LO_PROGRAM_DIR "/fundamentalrc", 1);
        try {
            context = cppu::defaultBootstrap_InitialComponentContext();
        } catch (const uno::Exception& e) {
            failure = "bootstrap: " + describe(e);
        }
    }
    if (!context.is())
        detail = failure.empty() ? std::string("bootstrap failed") : failure;
    return context;
}

UnoSession::Attempt UnoSession::connect(const QString& url, std::string& detail) {
    reset();
    const uno::Reference<uno::XComponentContext> local = localUnoContext(detail);
    if (!local.is())
        return Attempt::Refused;
    try {
        const uno::Reference<bridge::XUnoUrlResolver> resolver = bridge::UnoUrlResolver::create(local);
        const uno::Reference<uno::XInterface> remote = resolver->resolve(toOU(url));
        uno::Reference<uno::XComponentContext> context(remote, uno::UNO_QUERY_THROW);
        m_desktop = frame::Desktop::create(context);
        // One real call: the desktop answers only once the office serves.
        m_desktop->getComponents();
        m_context = context;
        return Attempt::Connected;
    } catch (const com::sun::star::connection::NoConnectException&) {
        return Attempt::NotYet;
    } catch (const com::sun::star::lang::DisposedException&) {
        // An office that is still starting (or restarting itself after
        // creating its profile) may drop a connection it had accepted.
        reset();
        return Attempt::NotYet;
    } catch (const uno::Exception& e) {
        detail = "connect: " + describe(e);
        reset();
        return Attempt::Refused;
    }
}

void UnoSession::terminateOffice() {
    if (m_desktop.is()) {
        try {
            m_desktop->terminate();
        } catch (const uno::Exception&) {
            // Gone already, or it ends while answering: both are what we want.
        }
    }
    reset();
}

void UnoSession::reset() {
    m_desktop.clear();
    m_context.clear();
}

} // namespace mirabend
