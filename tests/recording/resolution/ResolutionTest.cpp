// The "Screen Resolution" dialog: its outcomes over a scripted display, and
// real mode switches on X servers with RandR started by the test: an Xorg
// with the dummy driver, which has many modes, and an Xvfb, which has one.
#include "recording/resolution/XRandrDisplaySettings.h"
#include "recording/resolution/ui/ScrRes_frm.h"
#include "support/ChildProcess.h"
#include "support/XvfbServer.h"

#include <QCoreApplication>
#include <QPushButton>
#include <QRadioButton>
#include <fstream>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace mirabend::test {
namespace {

// Answers a scripted result for every change and records the calls.
class ScriptedDisplay final : public DisplaySettings {
public:
    bool EnumDisplaySettings(int modeNumber, DisplayMode& mode) override {
        enumerated.push_back(modeNumber);
        mode = {1920, 1080};
        return true;
    }
    DisplayChange ChangeDisplaySettings(const DisplayMode& mode, DisplayChangeFlags flags) override {
        changes.push_back(std::to_string(mode.width) + "x" + std::to_string(mode.height) + "/" +
                          (flags == DisplayChangeFlags::Temporary ? "temporary" : "store"));
        return result;
    }
    std::string lastDetail() const override { return "scripted"; }

    DisplayChange result = DisplayChange::Successful;
    std::vector<int> enumerated;
    std::vector<std::string> changes;
};

const char* const kRestart = "Click OK to restart Mirabend 1.0";
const char* const kUnsupported = "Error: Resolution mode not supported";

struct Restarts {
    QStringList started;
    int ended = 0;
    ScrRes_frm::Restart hooks() {
        ScrRes_frm::Restart restart;
        restart.startProgram = [this](const QString& program, const QStringList& arguments) {
            started << program + QLatin1Char(' ') + arguments.join(QLatin1Char(' '));
            return true;
        };
        restart.endProgram = [this] {
            ++ended;
        };
        return restart;
    }
};

TEST(ScrResForm, ApplyReportsEachOutcomeAndStoresOnlyASuccessfulChange) {
    const struct {
        const char* name;
        int option; // 0: none chosen
        DisplayChange result;
        const char* text;
        const char* changes;
    } cases[] = {
        {"success", 1, DisplayChange::Successful, kRestart, "800x600/temporary 800x600/store"},
        {"restart needed", 2, DisplayChange::Restart, "Please reboot your system!", "1024x768/temporary"},
        {"bad mode", 3, DisplayChange::BadMode, kUnsupported, "1280x960/temporary"},
        {"refused", 3, DisplayChange::Failed, kUnsupported, "1280x960/temporary"},
        // With no size chosen, mode 0's own size is applied.
        {"none chosen", 0, DisplayChange::Successful, kRestart, "1920x1080/temporary 1920x1080/store"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedDisplay display;
        display.result = c.result;
        Restarts restarts;
        ScrRes_frm form(display, restarts.hooks());
        QRadioButton* options[] = {form.Option1(), form.Option2(), form.Option3()};
        if (c.option > 0)
            options[c.option - 1]->setChecked(true);
        form.Command1()->click();
        EXPECT_EQ(form.msgText(), QLatin1String(c.text));
        std::string changes;
        for (const std::string& change : display.changes)
            changes += (changes.empty() ? "" : " ") + change;
        EXPECT_EQ(changes, c.changes);
        EXPECT_EQ(display.enumerated, std::vector<int>{0}) << "mode 0, not the current mode";
        EXPECT_EQ(form.restartPending(), c.result == DisplayChange::Successful);
    }
}

TEST(ScrResForm, OkRestartsAfterASwitchCancelOnlyCloses) {
    const struct {
        const char* name;
        bool applied;
        bool ok;
        int restarts;
    } cases[] = {{"OK after a switch", true, true, 1},
                 {"Cancel after a switch", true, false, 0},
                 {"OK without a switch", false, true, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedDisplay display;
        Restarts restarts;
        ScrRes_frm form(display, restarts.hooks());
        EXPECT_EQ(form.windowTitle(), QStringLiteral("Screen Resolution"));
        form.show();
        form.Option2()->setChecked(true);
        if (c.applied)
            form.Command1()->click();
        (c.ok ? form.Command2() : form.Command3())->click();
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(restarts.ended, c.restarts);
        EXPECT_EQ(restarts.started.size(), c.restarts);
        if (c.restarts) {
            EXPECT_EQ(restarts.started[0],
                      QCoreApplication::applicationFilePath() + QStringLiteral(" RESTART"));
        }
    }
}

// An X server on the dummy video driver with a private configuration,
// stopped by its process id. Its output lists the standard modes, the
// preferred 1280x1024 first.
class DummyXorg {
public:
    DummyXorg() {
        if (geteuid() != 0 || !haveProgram("Xorg"))
            return;
        std::ofstream(m_folder.file("xorg.conf"))
            << "Section \"ServerFlags\"\n  Option \"AutoAddDevices\" \"false\"\n"
               "  Option \"AutoAddGPU\" \"false\"\nEndSection\n"
               "Section \"Device\"\n  Identifier \"dummy\"\n  Driver \"dummy\"\n  VideoRam "
               "32768\nEndSection\n"
               "Section \"Monitor\"\n  Identifier \"monitor\"\n  HorizSync 5.0-100.0\n  VertRefresh "
               "5.0-200.0\n"
               "  Modeline \"1280x1024\" 108.00 1280 1328 1440 1688 1024 1025 1028 1066 +hsync +vsync\n"
               "EndSection\n"
               "Section \"Screen\"\n  Identifier \"screen\"\n  Device \"dummy\"\n  Monitor \"monitor\"\n"
               "  DefaultDepth 24\n  SubSection \"Display\"\n    Depth 24\n    Modes \"1280x1024\"\n"
               "    Virtual 1280 1024\n  EndSubSection\nEndSection\n";
        int fds[2];
        if (pipe(fds) != 0)
            return;
        const bool started = m_process.start({"Xorg", "-displayfd", std::to_string(fds[1]), "-config",
                                              m_folder.file("xorg.conf"), "-configdir", m_folder.file("none"),
                                              "-logfile", m_folder.file("xorg.log"), "-nolisten", "tcp",
                                              "-noreset", "-novtswitch", "-sharevts"},
                                             {}, m_folder.file("xorg.out"), fds[1]);
        close(fds[1]);
        std::string number;
        pollfd p{fds[0], POLLIN, 0};
        while (started && poll(&p, 1, 20000) > 0) {
            char c = 0;
            if (read(fds[0], &c, 1) <= 0 || c == '\n')
                break;
            number.push_back(c);
        }
        close(fds[0]);
        if (!number.empty())
            m_display = ":" + number;
    }
    const std::string& display() const { return m_display; }

private:
    TempFolder m_folder{"mirabend-xorg"};
    ChildProcess m_process;
    std::string m_display;
};

DisplayMode sizeOf(const std::string& display) {
    return XRandrDisplaySettings(display).currentSize();
}

TEST(XRandrSwitch, SupportedSizesChangeTheScreen) {
    if (geteuid() != 0)
        GTEST_SKIP() << "the dummy-driver X server needs root";
    DummyXorg xorg;
    ASSERT_FALSE(xorg.display().empty()) << "Xorg with the dummy driver did not start "
                                            "(packages xserver-xorg-core, xserver-xorg-video-dummy)";
    XRandrDisplaySettings display(xorg.display());
    ASSERT_TRUE(display.isOpen());
    DisplayMode first;
    ASSERT_TRUE(display.EnumDisplaySettings(0, first));
    EXPECT_EQ(first.width, 1280);
    EXPECT_EQ(first.height, 1024);

    Restarts restarts;
    ScrRes_frm form(display, restarts.hooks());
    const struct {
        QRadioButton* option; // null: none chosen, mode 0 stays
        int width;
        int height;
    } steps[] = {{form.Option1(), 800, 600},
                 {form.Option1(), 800, 600}, // the same choice again repeats the change
                 {form.Option2(), 1024, 768},
                 {form.Option3(), 1280, 960},
                 {nullptr, 1280, 1024}};
    for (const auto& s : steps) {
        SCOPED_TRACE(std::to_string(s.width) + "x" + std::to_string(s.height));
        if (s.option) {
            s.option->setChecked(true);
        } else {
            // Unchecking the last option of a group needs the group's
            // exclusiveness off for a moment.
            for (QRadioButton* o : {form.Option1(), form.Option2(), form.Option3()}) {
                o->setAutoExclusive(false);
                o->setChecked(false);
                o->setAutoExclusive(true);
            }
        }
        form.Command1()->click();
        EXPECT_EQ(form.msgText(), QLatin1String(kRestart)) << display.lastDetail();
        const DisplayMode now = sizeOf(xorg.display());
        EXPECT_EQ(now.width, s.width);
        EXPECT_EQ(now.height, s.height);
    }
}

TEST(XRandrSwitch, AnUnsupportedSizeLeavesTheScreenAsItWas) {
    XvfbServer xvfb(1024, 768);
    ASSERT_TRUE(xvfb.ok());
    XRandrDisplaySettings display(xvfb.display());
    ASSERT_TRUE(display.isOpen());
    DisplayMode mode;
    EXPECT_TRUE(display.EnumDisplaySettings(0, mode));
    EXPECT_FALSE(display.EnumDisplaySettings(1, mode)) << "Xvfb lists one mode";

    Restarts restarts;
    ScrRes_frm form(display, restarts.hooks());
    for (QRadioButton* option : {form.Option1(), form.Option3()}) {
        SCOPED_TRACE(option->text().toStdString());
        option->setChecked(true);
        form.Command1()->click();
        EXPECT_EQ(form.msgText(), QLatin1String(kUnsupported));
        const DisplayMode now = sizeOf(xvfb.display());
        EXPECT_EQ(now.width, 1024);
        EXPECT_EQ(now.height, 768);
    }
    EXPECT_FALSE(form.restartPending());

    // No X server at all: the same message, nothing ends.
    XRandrDisplaySettings none(":999999");
    EXPECT_FALSE(none.isOpen());
    ScrRes_frm orphan(none, restarts.hooks());
    orphan.Option1()->setChecked(true);
    orphan.Command1()->click();
    EXPECT_EQ(orphan.msgText(), QLatin1String(kUnsupported));
}

} // namespace
} // namespace mirabend::test
