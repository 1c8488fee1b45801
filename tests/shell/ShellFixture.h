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
#include <gtest/gtest.h>
#include <functional>
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
    TraceRecording(Trace& trace, Mirabend_frm& window) : m_trace(trace), m_window(window) {}
    // The real session writes these texts; the fake does the same so the
    // main window's clean-up after mode changes can be seen.
    void StartRecPre() override { m_trace.add(QStringLiteral("StartRecPre")); }
    void StartRec() override { m_trace.add(QStringLiteral("StartRec")); }
    void PauseRec() override
    {
        m_trace.add(QStringLiteral("PauseRec"));
        m_window.context().status->setPanelText(1, QStringLiteral("Paused ..."));
    }
    void ResumeRec() override
    {
        m_trace.add(QStringLiteral("ResumeRec mode=") + m_window.context().mode());
        m_window.context().status->setPanelText(1, QStringLiteral("Recording ..."));
    }
    void StopRec() override { m_trace.add(QStringLiteral("StopRec")); }
    void showOptions() override { m_trace.add(QStringLiteral("showOptions")); }
    void setDefaultArea(int w, int h) override
    {
        m_trace.add(QStringLiteral("setDefaultArea %1x%2").arg(w).arg(h));
    }
    void addChapter(const QString& title) override { m_trace.add(QStringLiteral("chapter ") + title); }

private:
    Trace& m_trace;
    Mirabend_frm& m_window;
};

class TraceSlides final : public SlideShowPort {
public:
    explicit TraceSlides(Trace& trace) : m_trace(trace) {}
    void openSlides() override { m_trace.add(QStringLiteral("openSlides")); }
    void openSlidesStart() override { m_trace.add(QStringLiteral("openSlidesStart")); }
    bool openFile(const QString& path) override
    {
        m_trace.add(QStringLiteral("openFile ") + path);
        return true;
    }
    void OpenSlidesResize() override { m_trace.add(QStringLiteral("OpenSlidesResize")); }
    void PresentSize() override { m_trace.add(QStringLiteral("PresentSize")); }
    void PPTInfo() override { m_trace.add(QStringLiteral("PPTInfo")); }
    void navigate(const QString& key) override { m_trace.add(QStringLiteral("navigate ") + key); }
    void shutdown() override { m_trace.add(QStringLiteral("slides.shutdown")); }
    bool isOpening() const override { return opening; }
    QString slideTitle() override { return title; }

    bool opening = false; // an open waits for the presentation program
    QString title;        // of the current slide

private:
    Trace& m_trace;
};

class TraceCamera final : public CameraPort {
public:
    TraceCamera(Trace& trace, QStringList devices, QStringList formats)
        : m_trace(trace), m_devices(std::move(devices)), m_formats(std::move(formats)) {}
    void PreviewCam1() override { m_trace.add(QStringLiteral("PreviewCam1")); }
    QStringList deviceNames() override
    {
        m_trace.add(QStringLiteral("camera.deviceNames"));
        return m_devices;
    }
    QStringList formatNames() override
    {
        m_trace.add(QStringLiteral("camera.formatNames"));
        return m_formats;
    }

private:
    Trace& m_trace;
    QStringList m_devices;
    QStringList m_formats;
};

class TraceAudio final : public AudioPort {
public:
    TraceAudio(Trace& trace, QStringList devices) : m_trace(trace), m_devices(std::move(devices)) {}
    void showRecorder() override { m_trace.add(QStringLiteral("showRecorder")); }
    QStringList inputDevices() override
    {
        m_trace.add(QStringLiteral("InitDevices"));
        return m_devices;
    }

private:
    Trace& m_trace;
    QStringList m_devices;
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

    void build(const ShellOptions& options)
    {
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
            return std::make_unique<TraceCamera>(trace, options.cameraDevices, options.cameraFormats);
        };
        services.makeAudio = [this, options](Mirabend_frm&) {
            return std::make_unique<TraceAudio>(trace, options.audioDevices);
        };
        services.endProgram = [this] { trace.add(QStringLiteral("endProgram")); };
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
