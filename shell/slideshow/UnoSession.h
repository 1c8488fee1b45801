#pragma once
// The UNO side of talking to an office: our own local component context
// (bootstrapped once per process from the office's fundamentalrc) and a
// connection to an office's component context over its pipe.
//
// Thread contract: UI thread only. References obtained here stay valid
// after the office dies; calls on them then throw DisposedException.

#include <QString>
#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/uno/Exception.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <string>

namespace mirabend {

namespace uno = com::sun::star::uno;

// The process's local context; empty when the office runtime can't be
// bootstrapped (then `detail` says why).
uno::Reference<uno::XComponentContext> localUnoContext(std::string& detail);

class UnoSession {
public:
    enum class Attempt { Connected, NotYet, Refused };

    // One connection attempt to `url` ("uno:pipe,name=...;urp;StarOffice.ComponentContext").
    // NotYet: nobody listens there yet; Refused: the office answered but
    // would not serve us, or our own runtime failed (`detail` says which).
    Attempt connect(const QString& url, std::string& detail);
    bool isConnected() const { return m_context.is(); }
    const uno::Reference<uno::XComponentContext>& context() const { return m_context; }
    const uno::Reference<com::sun::star::frame::XDesktop2>& desktop() const { return m_desktop; }
    // Asks the office to end; an office that is already gone is fine.
    void terminateOffice();
    void reset();

private:
    uno::Reference<uno::XComponentContext> m_context;
    uno::Reference<com::sun::star::frame::XDesktop2> m_desktop;
};

std::string toStd(const rtl::OUString& text);
rtl::OUString toOU(const QString& text);
std::string describe(const uno::Exception& e);

} // namespace mirabend
