#include "shell/wiring/WebAboutWiring.h"

#include "recording/resolution/XRandrDisplaySettings.h"
#include "recording/resolution/ui/ScrRes_frm.h"
#include "shell/CommandDispatcher.h"
#include "shell/Stage.h"
#include "shell/about/DesktopKeyValues.h"
#include "shell/about/frmAbout.h"
#include "shell/web/WebPane.h"
#include "util/ExplorerBar.h"

#include <QPointer>

namespace mirabend {

void attachWebPane(Mirabend_frm& window) {
    ShellContext& ctx = window.context();
    auto* pane = new WebPane(ctx.stage->WebBrowser1());
    ExplorerBarGroup* bar = ctx.ebDemo->group(QStringLiteral("web"));
    if (!bar)
        return;
    bar->setPanel(pane->tools());
    pane->revealTools = [bar] {
        bar->setExpanded(true);
    };
}

void attachAbout(Mirabend_frm& window, Prompts& prompts) {
    static const DesktopKeyValues desktopKeys;
    auto box = std::make_shared<QPointer<frmAbout>>();
    window.commands().showAbout = [&window, &prompts, box] {
        if (*box) {
            (*box)->raise();
            (*box)->activateWindow();
            return;
        }
        frmAbout::Services services;
        services.keys = &desktopKeys;
        services.prompts = &prompts;
        services.openUrl = window.commands().openUrl;
        *box = new frmAbout(services, &window);
        (*box)->show();
    };
}

void attachResolution(Mirabend_frm& window) {
    window.commands().showResolution = [&window] {
        ScrRes_frm::Restart restart;
        restart.endProgram = [&window] {
            window.context().unloadMainWindow();
        };
        auto* dialog = new ScrRes_frm(std::make_unique<XRandrDisplaySettings>(), restart, &window);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    };
}

void addWebAboutAndResolution(ShellServices& services, Prompts& prompts) {
    services.attachPanes.push_back(attachWebPane);
    services.attachPanes.push_back([&prompts](Mirabend_frm& window) { attachAbout(window, prompts); });
    services.attachPanes.push_back(attachResolution);
}

} // namespace mirabend
