#pragma once
// A main window with recording fakes behind every port. Every call into a
// subsystem is appended to one trace, so tests can check what was called and
// in which order.

#include "shell/CommandDispatcher.h"
#include "shell/KeyedToolbar.h"
#include "shell/MainStatusBar.h"
#include "shell/Mirabend_frm.h"
#include "shell/PaneBox.h"
#include "shell/Stage.h"
#include "support/ScriptedPrompts.h"
#include "util/ExplorerBar.h"

#include <QLineEdit>
#include <QStringList>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace mirabend::test {

struct Trace {
    QStringList calls;
    void add(const QString& call) { calls << call; }
    bool has(const QString& call) const { return calls.contains(call); }
    int indexOf(const QString& call) const { return calls.indexOf(call); }
};

class TraceRecording final : public RecordingPort {
public:
    TraceRecording(Trace& trace, Mirabend_frm& window)
        : m_trace(trace)
        , m_window(window) {}
    void StartRecPre() override { m_trace.add("StartRecPre"); }
    void StartRec() override { m_trace.add("StartRec"); }
    // The real session writes these texts; the fake does the same so the
    // main window's clean-up after mode changes can be seen.
    void PauseRec() override {
        m_trace.add("PauseRec");
        m_window.context().status->setPanelText(1, QStringLiteral("Paused ..."));
    }
    void ResumeRec() override {
        m_trace.add("ResumeRec mode=" + m_window.context().mode());
        m_window.context().status->setPanelText(1, QStringLiteral("Recording ..."));
    }
    void StopRec() override { m_trace.add("StopRec"); }
    void showOptions() override { m_trace.add("showOptions"); }
    void setDefaultArea(int w, int h) override {
        m_trace.add(QStringLiteral("setDefaultArea %1x%2").arg(w).arg(h));
    }
    void addChapter(const QString& title) override { m_trace.add("chapter " + title); }

private:
    Trace& m_trace;
    Mirabend_frm& m_window;
};

class TraceSlides final : public SlideShowPort {
public:
    explicit TraceSlides(Trace& trace)
        : m_trace(trace) {}
    void openSlides() override { m_trace.add("openSlides"); }
    void openSlidesStart() override { m_trace.add("openSlidesStart"); }
    bool openFile(const QString& path) override { return m_trace.add("openFile " + path), true; }
    void OpenSlidesResize() override { m_trace.add("OpenSlidesResize"); }
    void PresentSize() override { m_trace.add("PresentSize"); }
    void PPTInfo() override { m_trace.add("PPTInfo"); }
    void navigate(const QString& key) override { m_trace.add("navigate " + key); }
    void shutdown() override { m_trace.add("slides.shutdown"); }
    bool isOpening() const override { return opening; }
    QString slideTitle() override { return title; }

    bool opening = false; // an open waits for the presentation program
    QString title;        // of the current slide

private:
    Trace& m_trace;
};

// The camera and the audio inputs: device lists from the test's options.
class TraceDevices final : public CameraPort, public AudioPort {
public:
    TraceDevices(Trace& trace, QStringList cameras, QStringList formats, QStringList inputs)
        : m_trace(trace)
        , m_cameras(std::move(cameras))
        , m_formats(std::move(formats))
        , m_inputs(std::move(inputs)) {}
    void PreviewCam1() override { m_trace.add("PreviewCam1"); }
    QStringList deviceNames() override { return m_trace.add("camera.deviceNames"), m_cameras; }
    QStringList formatNames() override { return m_trace.add("camera.formatNames"), m_formats; }
    void showRecorder() override { m_trace.add("showRecorder"); }
    QStringList inputDevices() override { return m_trace.add("InitDevices"), m_inputs; }

private:
    Trace& m_trace;
    QStringList m_cameras, m_formats, m_inputs;
};

struct ShellOptions {
    QStringList audioDevices{QStringLiteral("Built-in microphone")};
    QStringList cameraDevices{QStringLiteral("USB camera"), QStringLiteral("TV card")};
    QStringList cameraFormats;
    // Runs between construction and Form_Initialize; the trace is kept when set.
    std::function<void(Mirabend_frm&)> beforeLoad;
};

class ShellTest : public ::testing::Test {
protected:
    void SetUp() override { build(ShellOptions{}); }

    void build(const ShellOptions& options) {
        window.reset();
        trace.calls.clear();
        ShellServices services;
        services.prompts = &prompts;
        services.makeRecording = [this](Mirabend_frm& w) {
            trace.add(QStringLiteral("recording.created"));
            return std::make_unique<TraceRecording>(trace, w);
        };
        services.makeSlides = [this](Mirabend_frm&) {
            auto made = std::make_unique<TraceSlides>(trace);
            slides = made.get();
            return made;
        };
        services.makeCamera = [this, options](Mirabend_frm&) {
            return std::make_unique<TraceDevices>(trace, options.cameraDevices, options.cameraFormats,
                                                  QStringList{});
        };
        services.makeAudio = [this, options](Mirabend_frm&) {
            return std::make_unique<TraceDevices>(trace, QStringList{}, QStringList{}, options.audioDevices);
        };
        services.endProgram = [this] {
            trace.add(QStringLiteral("endProgram"));
        };
        window = std::make_unique<Mirabend_frm>(services);
        if (options.beforeLoad)
            options.beforeLoad(*window);
        window->Form_Initialize();
        window->Form_Load();
        if (!options.beforeLoad)
            trace.calls.clear();
    }

    ShellContext& ctx() { return window->context(); }
    Stage& stage() { return *ctx().stage; }
    QString mode() { return ctx().mode(); }
    void click(const char* key) { window->commands().Toolbar1_ButtonClick(QString::fromLatin1(key)); }
    void item(const char* key) { window->commands().ebDemo_ItemClick(QString::fromLatin1(key)); }
    Rect4 rectOf(QWidget* w) { return pane::rect(w); }

    Trace trace;
    ScriptedPrompts prompts;
    std::unique_ptr<Mirabend_frm> window;
    TraceSlides* slides = nullptr; // owned by the window
};

} // namespace mirabend::test
