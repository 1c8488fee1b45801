#include "shell/slideshow/ImpressProgram.h"

#include "shell/slideshow/OfficeProcess.h"
#include "shell/slideshow/UnoSession.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <com/sun/star/awt/PosSize.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XSystemChildFactory.hpp>
#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/awt/XWindowPeer.hpp>
#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/frame/Frame.hpp>
#include <com/sun/star/frame/XComponentLoader.hpp>
#include <com/sun/star/frame/XController2.hpp>
#include <com/sun/star/frame/XDispatch.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XFrame2.hpp>
#include <com/sun/star/frame/XFrames.hpp>
#include <com/sun/star/frame/XLayoutManager.hpp>
#include <com/sun/star/io/IOException.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/lang/IllegalArgumentException.hpp>
#include <com/sun/star/lang/SystemDependent.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/presentation/XPresentation2.hpp>
#include <com/sun/star/presentation/XPresentationSupplier.hpp>
#include <com/sun/star/presentation/XSlideShowController.hpp>
#include <com/sun/star/task/XInteractionHandler.hpp>
#include <com/sun/star/text/XText.hpp>
#include <com/sun/star/ui/XSidebarProvider.hpp>
#include <com/sun/star/util/URL.hpp>
#include <com/sun/star/util/URLTransformer.hpp>
#include <com/sun/star/util/XCloseable.hpp>

namespace mirabend {

namespace awt = com::sun::star::awt;
namespace beans = com::sun::star::beans;
namespace document = com::sun::star::document;
namespace frame = com::sun::star::frame;
namespace lang = com::sun::star::lang;
namespace presentation = com::sun::star::presentation;
namespace util = com::sun::star::util;

// QT_LOGGING_RULES="mirabend.slideshow.debug=true" traces the office's
// start and every show's steps with their times.
Q_LOGGING_CATEGORY(lcShow, "mirabend.slideshow", QtWarningMsg)

namespace {

constexpr int kConnectIntervalMs = 100;
constexpr int kShowStartMs = 15000;
constexpr int kShowAttemptMs = 3000;
constexpr int kShowStartAttempts = 3;
// An office that has just created its profile exits with this code and
// expects its launcher to start it again.
constexpr int kOfficeRestartCode = 81;

beans::PropertyValue propertyValue(const char* name, const uno::Any& value) {
    beans::PropertyValue result;
    result.Name = rtl::OUString::createFromAscii(name);
    result.Value = value;
    return result;
}

void setQuietly(const uno::Reference<beans::XPropertySet>& props, const char* name, const uno::Any& value) {
    try {
        props->setPropertyValue(rtl::OUString::createFromAscii(name), value);
    } catch (const uno::Exception&) {
        // An office without this setting shows with its default.
    }
}

// The filter for a file whose own filter would start a show while loading
// (PowerPoint shows, .pps and .ppsx): the same import without autoplay.
rtl::OUString quietFilterFor(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("pps"))
        return rtl::OUString("MS PowerPoint 97");
    if (suffix == QLatin1String("ppsx"))
        return rtl::OUString("Impress MS PowerPoint 2007 XML");
    return {};
}

} // namespace

// One running show: the frame in the pane, its document and the show. The
// destructor ends the show, closes the document and takes the frame (and
// with it the office's window in our pane) away.
struct ShowHandles {
    uno::Reference<awt::XWindow> window;
    uno::Reference<frame::XFrame2> frame;
    uno::Reference<lang::XComponent> document;
    uno::Reference<presentation::XPresentation2> presentation;
    uno::Reference<presentation::XSlideShowController> controller;

    ShowHandles() = default;
    ShowHandles(const ShowHandles&) = delete;
    ShowHandles& operator=(const ShowHandles&) = delete;
    ~ShowHandles() { close(); }

    // The office is gone: forget everything without calling it.
    void abandon() {
        controller.clear();
        presentation.clear();
        document.clear();
        frame.clear();
        window.clear();
    }

    void close() noexcept {
        try {
            if (presentation.is() && presentation->isRunning())
                presentation->end();
        } catch (...) {
        }
        try {
            const uno::Reference<util::XCloseable> closeable(document, uno::UNO_QUERY);
            if (closeable.is())
                closeable->close(true);
            else if (document.is())
                document->dispose();
        } catch (...) {
        }
        try {
            const uno::Reference<util::XCloseable> closeable(frame, uno::UNO_QUERY);
            if (closeable.is())
                closeable->close(true);
        } catch (...) {
        }
        try {
            const uno::Reference<lang::XComponent> peer(window, uno::UNO_QUERY);
            if (peer.is())
                peer->dispose();
        } catch (...) {
        }
        abandon();
    }
};

struct ImpressProgram::Impl {
    ImpressProgram& q;
    OfficeProcess office;
    UnoSession session;
    QTimer retry;
    QElapsedTimer connectClock;
    int startTimeoutMs = 60000;
    int restarts = 0;
    bool connecting = false;
    std::unique_ptr<ShowHandles> show;

    explicit Impl(ImpressProgram& owner)
        : q(owner)
        , office(QStringLiteral(MIRABEND_LO_PROGRAM_DIR "/soffice.bin")) {
        retry.setInterval(kConnectIntervalMs);
        QObject::connect(&retry, &QTimer::timeout, &q, [this] { tryConnect(); });
        QObject::connect(&office, &OfficeProcess::ended, &q, [this](int code) { onOfficeEnded(code); });
    }

    void report(const ShowFailure& failure) {
        // Always from the event loop, so callers see the same order whether
        // or not the office was running already.
        QTimer::singleShot(0, &q, [this, failure] { Q_EMIT q.prepared(failure); });
    }

    void prepare() {
        if (session.isConnected()) {
            report({});
            return;
        }
        if (connecting)
            return;
        if (!QFileInfo(QStringLiteral(MIRABEND_LO_PROGRAM_DIR "/soffice.bin")).isExecutable()) {
            report({ShowError::NoProgram, "LibreOffice is not installed in " MIRABEND_LO_PROGRAM_DIR});
            return;
        }
        restarts = 0;
        if (!office.start()) {
            report({ShowError::StartFailed, "soffice.bin could not be started"});
            return;
        }
        qCDebug(lcShow) << "office started, pid" << office.pid();
        connecting = true;
        connectClock.start();
        retry.start();
    }

    void giveUp(const ShowFailure& failure) {
        retry.stop();
        connecting = false;
        session.reset();
        office.stop(0);
        Q_EMIT q.prepared(failure);
    }

    void tryConnect() {
        if (!office.isRunning())
            return; // onOfficeEnded() decides
        std::string detail;
        switch (session.connect(office.connectUrl(), detail)) {
        case UnoSession::Attempt::Connected:
            qCDebug(lcShow) << "connected after" << connectClock.elapsed() << "ms";
            retry.stop();
            connecting = false;
            Q_EMIT q.prepared({});
            break;
        case UnoSession::Attempt::NotYet:
            if (connectClock.elapsed() > startTimeoutMs)
                giveUp({ShowError::StartFailed, "the office did not accept the connection in time"});
            break;
        case UnoSession::Attempt::Refused:
            giveUp({ShowError::StartFailed, detail});
            break;
        }
    }

    void onOfficeEnded(int exitCode) {
        qCDebug(lcShow) << "office ended, exit code" << exitCode;
        if (connecting) {
            if (exitCode == kOfficeRestartCode && restarts++ < 2 && office.restart())
                return;
            giveUp({ShowError::StartFailed,
                    "the office ended while starting, exit code " + std::to_string(exitCode)});
            return;
        }
        const bool hadShow = show != nullptr;
        forgetOffice();
        if (hadShow)
            Q_EMIT q.lost();
    }

    void forgetOffice() {
        if (show)
            show->abandon();
        show.reset();
        session.reset();
    }

    // A call failed: when the office died under it, forget it and say so.
    ShowFailure classify(const uno::Exception& e, ShowError otherwise, bool disposed = false) {
        if (disposed || !office.isRunning()) {
            forgetOffice();
            office.stop(0);
            return {ShowError::ProgramLost, describe(e)};
        }
        return {otherwise, describe(e)};
    }

    ShowFailure createFrame(ShowHandles& s, NativeHandle pane, QSize size) {
        const uno::Reference<uno::XComponentContext>& context = session.context();
        const uno::Reference<awt::XSystemChildFactory> factory(awt::Toolkit::create(context),
                                                               uno::UNO_QUERY_THROW);
        const uno::Sequence<sal_Int8> processId(16);
        const uno::Reference<awt::XWindowPeer> peer = factory->createSystemChild(
            uno::Any(static_cast<sal_Int64>(pane)), processId, lang::SystemDependent::SYSTEM_XWINDOW);
        if (!peer.is())
            return {ShowError::ShowFailed, "the office made no window in the slide pane"};
        s.window.set(peer, uno::UNO_QUERY_THROW);
        s.window->setPosSize(0, 0, size.width(), size.height(), awt::PosSize::POSSIZE);
        s.frame = frame::Frame::create(context);
        s.frame->initialize(s.window);
        s.frame->setName(rtl::OUString("mirabend_slides"));
        session.desktop()->getFrames()->append(uno::Reference<frame::XFrame>(s.frame, uno::UNO_QUERY_THROW));
        s.window->setVisible(true);
        return {};
    }

    ShowFailure load(ShowHandles& s, const QString& path) {
        std::vector<beans::PropertyValue> args{
            propertyValue("ReadOnly", uno::Any(false)),
            propertyValue("Hidden", uno::Any(false)),
            propertyValue("MacroExecutionMode", uno::Any(document::MacroExecMode::NEVER_EXECUTE)),
            propertyValue("UpdateDocMode", uno::Any(document::UpdateDocMode::NO_UPDATE)),
            // A visible frame would get the office's interactive handler,
            // and a damaged file would wait on a dialog in the office
            // forever. An empty handler makes every question a failure.
            propertyValue("InteractionHandler",
                          uno::Any(uno::Reference<com::sun::star::task::XInteractionHandler>())),
        };
        const rtl::OUString filter = quietFilterFor(path);
        if (!filter.isEmpty())
            args.push_back(propertyValue("FilterName", uno::Any(filter)));
        const uno::Reference<frame::XComponentLoader> loader(s.frame, uno::UNO_QUERY_THROW);
        const rtl::OUString url = toOU(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
        try {
            s.document = loader->loadComponentFromURL(
                url, rtl::OUString("_self"), 0,
                uno::Sequence<beans::PropertyValue>(args.data(), static_cast<sal_Int32>(args.size())));
        } catch (const lang::IllegalArgumentException& e) {
            return {ShowError::OpenFailed, describe(e)};
        } catch (const com::sun::star::io::IOException& e) {
            return {ShowError::OpenFailed, describe(e)};
        }
        if (!s.document.is())
            return {ShowError::OpenFailed, "the office could not load " + path.toStdString()};
        const uno::Reference<presentation::XPresentationSupplier> supplier(s.document, uno::UNO_QUERY);
        if (!supplier.is())
            return {ShowError::NotAPresentation, path.toStdString() + " is no presentation"};
        s.presentation.set(supplier->getPresentation(), uno::UNO_QUERY_THROW);
        return {};
    }

    // The pane shows the slide and nothing of the editor around it.
    void hideChrome(ShowHandles& s) {
        try {
            const uno::Reference<beans::XPropertySet> props(s.frame, uno::UNO_QUERY_THROW);
            uno::Reference<frame::XLayoutManager> layout;
            props->getPropertyValue(rtl::OUString("LayoutManager")) >>= layout;
            if (layout.is())
                layout->setVisible(false);
        } catch (const uno::Exception&) {
        }
        try {
            const uno::Reference<frame::XController2> controller(s.frame->getController(), uno::UNO_QUERY);
            if (controller.is() && controller->getSidebar().is())
                controller->getSidebar()->setVisible(false);
        } catch (const uno::Exception&) {
        }
    }

    // XPresentation::start() runs the show's start in the thread that
    // serves our call, and with the X11 backend that thread can sit on the
    // X connection for a minute while the office's main thread waits on the
    // same connection. Dispatched asynchronously, the start runs on the
    // office's main thread instead.
    void startOnOfficeThread(ShowHandles& s) {
        try {
            util::URL url;
            url.Complete = rtl::OUString(".uno:Presentation");
            util::URLTransformer::create(session.context())->parseStrict(url);
            const uno::Reference<frame::XDispatchProvider> provider(s.frame, uno::UNO_QUERY_THROW);
            const uno::Reference<frame::XDispatch> dispatch =
                provider->queryDispatch(url, rtl::OUString("_self"), 0);
            if (dispatch.is()) {
                const beans::PropertyValue later = propertyValue("SynchronMode", uno::Any(false));
                dispatch->dispatch(url, uno::Sequence<beans::PropertyValue>(&later, 1));
                return;
            }
        } catch (const lang::DisposedException&) {
            throw;
        } catch (const uno::Exception&) {
        }
        s.presentation->start();
    }

    ShowFailure runShow(ShowHandles& s) {
        const uno::Reference<beans::XPropertySet> settings(s.presentation, uno::UNO_QUERY_THROW);
        setQuietly(settings, "IsFullScreen", uno::Any(false));
        setQuietly(settings, "IsAlwaysOnTop", uno::Any(false));
        // Only Mirabend's commands move the show: a click in the pane does
        // not, and a key pressed past the last slide starts over instead of
        // showing the black end screen.
        setQuietly(settings, "IsTransitionOnClick", uno::Any(false));
        setQuietly(settings, "IsEndless", uno::Any(true));
        setQuietly(settings, "Pause", uno::Any(sal_Int32(0)));
        setQuietly(settings, "StartWithNavigator", uno::Any(false));
        setQuietly(settings, "UsePen", uno::Any(false));
        setQuietly(settings, "IsShowLogo", uno::Any(false));
        setQuietly(settings, "IsAutomatic", uno::Any(false));
        setQuietly(settings, "FirstPage", uno::Any(rtl::OUString()));
        setQuietly(settings, "CustomShow", uno::Any(rtl::OUString()));
        // The show comes up on the office's own main loop. A dispatch that
        // arrives before the document's view is ready is dropped without a
        // word, so it is repeated; the last try calls start() directly.
        QElapsedTimer clock;
        clock.start();
        for (int attempt = 0; attempt < kShowStartAttempts; ++attempt) {
            const bool last = attempt + 1 == kShowStartAttempts;
            if (!s.presentation->isRunning()) {
                if (last)
                    s.presentation->start();
                else
                    startOnOfficeThread(s);
            }
            const qint64 until = last ? kShowStartMs : clock.elapsed() + kShowAttemptMs;
            while (clock.elapsed() < until) {
                s.controller = s.presentation->getController();
                if (s.controller.is() && s.controller->isRunning() && s.controller->getSlideCount() > 0) {
                    qCDebug(lcShow) << "show started on attempt" << attempt + 1;
                    return {};
                }
                if (!office.isRunning())
                    return {ShowError::ProgramLost, "the office ended while starting the show"};
                QThread::msleep(20);
            }
        }
        s.controller.clear();
        return {ShowError::ShowFailed, "the show did not start"};
    }

    ShowFailure startShow(const QString& path, NativeHandle pane, QSize size) {
        if (!session.isConnected())
            return {ShowError::StartFailed, "the office is not running"};
        show.reset();
        auto s = std::make_unique<ShowHandles>();
        try {
            if (ShowFailure f = createFrame(*s, pane, size))
                return f;
            QElapsedTimer clock;
            clock.start();
            if (ShowFailure f = load(*s, path))
                return f;
            qCDebug(lcShow) << "loaded in" << clock.elapsed() << "ms";
            hideChrome(*s);
            if (ShowFailure f = runShow(*s)) {
                if (f.code == ShowError::ProgramLost) {
                    s->abandon();
                    forgetOffice();
                }
                return f;
            }
        } catch (const lang::DisposedException& e) {
            s->abandon();
            return classify(e, ShowError::ShowFailed, true);
        } catch (const uno::Exception& e) {
            const ShowFailure f = classify(e, ShowError::ShowFailed);
            if (f.code == ShowError::ProgramLost)
                s->abandon();
            return f;
        }
        qCDebug(lcShow) << "show runs";
        show = std::move(s);
        return {};
    }

    ShowFailure go(SlideMove move) {
        if (!show || !show->controller.is())
            return {ShowError::ShowFailed, "no show runs"};
        const uno::Reference<presentation::XSlideShowController>& c = show->controller;
        try {
            switch (move) {
            case SlideMove::First:
                c->gotoFirstSlide();
                break;
            case SlideMove::Previous:
                c->gotoPreviousSlide();
                break;
            case SlideMove::Next:
                // Past the last slide the office shows a black end screen;
                // the last slide stays instead.
                if (c->getCurrentSlideIndex() + 1 < c->getSlideCount())
                    c->gotoNextSlide();
                break;
            case SlideMove::Last:
                c->gotoLastSlide();
                break;
            }
        } catch (const lang::DisposedException& e) {
            return classify(e, ShowError::ShowFailed, true);
        } catch (const uno::Exception& e) {
            return classify(e, ShowError::ShowFailed);
        }
        return {};
    }

    std::optional<SlidePosition> position() {
        if (!show || !show->controller.is())
            return std::nullopt;
        try {
            SlidePosition p;
            p.count = show->controller->getSlideCount();
            const int index = show->controller->getCurrentSlideIndex();
            p.current = std::clamp(index + 1, p.count > 0 ? 1 : 0, p.count);
            return p;
        } catch (const lang::DisposedException& e) {
            classify(e, ShowError::ShowFailed, true);
            return std::nullopt;
        } catch (const uno::Exception& e) {
            classify(e, ShowError::ShowFailed);
            return std::nullopt;
        }
    }

    // The text of the slide's title placeholder, on one line.
    QString slideTitle() {
        if (!show || !show->controller.is())
            return {};
        try {
            const uno::Reference<com::sun::star::drawing::XDrawPage> page = show->controller->getCurrentSlide();
            if (!page.is())
                return {};
            for (sal_Int32 i = 0; i < page->getCount(); ++i) {
                const uno::Reference<lang::XServiceInfo> shape(page->getByIndex(i), uno::UNO_QUERY);
                if (!shape.is() || !shape->supportsService("com.sun.star.presentation.TitleTextShape"))
                    continue;
                const uno::Reference<com::sun::star::text::XText> text(shape, uno::UNO_QUERY);
                if (!text.is())
                    continue;
                const rtl::OUString title = text->getString();
                return QString::fromUtf16(reinterpret_cast<const char16_t*>(title.getStr()), title.getLength())
                    .simplified();
            }
        } catch (const lang::DisposedException& e) {
            classify(e, ShowError::ShowFailed, true);
        } catch (const uno::Exception& e) {
            classify(e, ShowError::ShowFailed);
        }
        return {};
    }

    void resize(QSize size) {
        if (!show || !show->window.is() || size.isEmpty())
            return;
        try {
            show->window->setPosSize(0, 0, size.width(), size.height(), awt::PosSize::POSSIZE);
        } catch (const lang::DisposedException& e) {
            classify(e, ShowError::ShowFailed, true);
        } catch (const uno::Exception& e) {
            classify(e, ShowError::ShowFailed);
        }
    }

    void shutdown() {
        retry.stop();
        connecting = false;
        show.reset();
        session.terminateOffice();
        office.stop(3000);
    }
};

ImpressProgram::ImpressProgram(QObject* parent)
    : PresentationProgram(parent)
    , d(std::make_unique<Impl>(*this)) {}

ImpressProgram::~ImpressProgram() {
    d->shutdown();
}

bool ImpressProgram::isReady() const {
    return d->session.isConnected() && !d->connecting;
}

void ImpressProgram::prepare() {
    d->prepare();
}

ShowFailure ImpressProgram::startShow(const QString& path, NativeHandle pane, QSize size) {
    return d->startShow(path, pane, size);
}

QString ImpressProgram::showWindowClass() const {
    return QStringLiteral("screenClass");
}

void ImpressProgram::resizeShow(QSize size) {
    d->resize(size);
}

ShowFailure ImpressProgram::go(SlideMove move) {
    return d->go(move);
}

std::optional<SlidePosition> ImpressProgram::position() {
    return d->position();
}

QString ImpressProgram::slideTitle() {
    return d->slideTitle();
}

void ImpressProgram::endShow() {
    d->show.reset();
}

void ImpressProgram::shutdown() {
    d->shutdown();
}

OfficeProcess& ImpressProgram::office() {
    return d->office;
}

void ImpressProgram::setStartTimeout(int seconds) {
    d->startTimeoutMs = seconds * 1000;
}

} // namespace mirabend
