// The D-Bus remote control end to end: a private bus daemon, the service in
// this process, and the client modes run as a separate program.
#include "recording/ui/remote/RemoteControl.h"

#include "RecordingFakes.h"
#include "recording/ui/CaptureOptions_frm.h"
#include "recording/ui/remote/RemoteClient.h"
#include "support/ChildProcess.h"
#include "support/FakeClock.h"
#include "support/ScriptedPrompts.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <unistd.h>

namespace mirabend::test {
namespace {

// A dbus-daemon of our own, on a fresh address, stopped by its process id.
class PrivateBus {
public:
    PrivateBus() {
        int fds[2];
        if (pipe(fds) != 0)
            return;
        m_daemon.start({"dbus-daemon", "--session", "--nofork", "--print-address=" + std::to_string(fds[1])},
                       {}, {}, fds[1]);
        close(fds[1]);
        std::string line;
        char c = 0;
        pollfd p{fds[0], POLLIN, 0};
        while (line.find('\n') == std::string::npos && poll(&p, 1, 5000) > 0 && read(fds[0], &c, 1) == 1)
            line += c;
        close(fds[0]);
        if (!line.empty() && line.back() == '\n')
            line.pop_back();
        m_address = line;
    }
    const std::string& address() const { return m_address; }

private:
    ChildProcess m_daemon;
    std::string m_address;
};

struct ClientRun {
    int exitCode = -1;
    QString errorOutput;
};

class RemoteControl : public ::testing::Test {
protected:
    void SetUp() override {
        if (!haveProgram("dbus-daemon"))
            GTEST_SKIP() << "dbus-daemon is not installed";
        bus = std::make_unique<PrivateBus>();
        ASSERT_FALSE(bus->address().empty()) << "dbus-daemon gave no address";
        connection = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(
            QString::fromStdString(bus->address()), QStringLiteral("remote-test")));
        ASSERT_TRUE(connection->isConnected());
    }
    void TearDown() override {
        service.reset();
        connection.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("remote-test"));
        bus.reset();
    }
    void publish() {
        service = std::make_unique<RemoteControlService>([this](const QString& key) { commands << key; },
                                                         [this](const QString& file) {
                                                             files << file;
                                                             return recordAnswer(file);
                                                         });
        ASSERT_FALSE(service->registerOn(*connection));
    }
    // Runs the client program and keeps this process's event loop going, so
    // the service here can answer it.
    ClientRun client(const QStringList& args, const QString& busAddress = {}) {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DBUS_SESSION_BUS_ADDRESS",
                   busAddress.isEmpty() ? QString::fromStdString(bus->address()) : busAddress);
        process.setProcessEnvironment(env);
        QEventLoop loop;
        QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
        QObject::connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
        QTimer::singleShot(20000, &loop, &QEventLoop::quit);
        // The client program is built beside this test program.
        process.start(QCoreApplication::applicationDirPath() + "/mirabend_remote_client", args);
        loop.exec();
        ClientRun run;
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished();
            return run;
        }
        run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        run.errorOutput = QString::fromLocal8Bit(process.readAllStandardError());
        if (process.error() == QProcess::FailedToStart)
            run.errorOutput = process.errorString();
        return run;
    }

    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<QDBusConnection> connection;
    std::unique_ptr<RemoteControlService> service;
    std::function<QString(const QString&)> recordAnswer = [](const QString&) {
        return QString();
    };
    QStringList commands;
    QStringList files;
};

TEST_F(RemoteControl, CommandsAndAbsolutePathsArriveOnceAndARefusalIsReported) {
    publish();
    ClientRun run = client({"--command", "pause"});
    EXPECT_EQ(run.exitCode, 0) << run.errorOutput.toStdString();
    EXPECT_EQ(commands, QStringList({"pause"}));

    run = client({"--record-to", "talk.mp4"});
    EXPECT_EQ(run.exitCode, 0) << run.errorOutput.toStdString();
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].startsWith('/'));
    EXPECT_TRUE(files[0].endsWith("/talk.mp4"));

    recordAnswer = [](const QString&) {
        return QStringLiteral("a recording is already under way");
    };
    run = client({"--record-to", "/tmp/other.avi"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errorOutput.contains("a recording is already under way"))
        << run.errorOutput.toStdString();

    // A second instance cannot take the name.
    QDBusConnection other = QDBusConnection::connectToBus(QString::fromStdString(bus->address()),
                                                          QStringLiteral("remote-test-2"));
    RemoteControlService second([](const QString&) {}, [](const QString&) { return QString(); });
    EXPECT_EQ(second.registerOn(other).code, RemoteError::NameTaken);
    QDBusConnection::disconnectFromBus(QStringLiteral("remote-test-2"));
}

TEST_F(RemoteControl, WithoutARunningInstanceTheClientSaysSoAndFails) {
    ClientRun run = client({"--command", "record"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errorOutput.contains("Mirabend is not running")) << run.errorOutput.toStdString();

    run = client({"--record-to", "x.avi"}, "unix:path=/nonexistent/mirabend-no-bus");
    EXPECT_NE(run.exitCode, 0);
    EXPECT_TRUE(run.errorOutput.contains("session bus")) << run.errorOutput.toStdString();

    run = client({"--command"});
    EXPECT_EQ(run.exitCode, 2);
}

TEST_F(RemoteControl, RecordToStartsTheWarmUpOfARealOptionsWindow) {
    FakeRecorder recorder;
    FakeHost host;
    ScriptedPrompts prompts;
    FakeClock clock;
    CaptureOptions_frm form(host, recorder, prompts, clock);
    recordAnswer = [&form](const QString& file) {
        return RecordingSession::startToText(form.StartRecPreTo(file), file);
    };
    publish();

    ClientRun run = client({"--record-to", "/tmp/lecture.mov"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errorOutput.contains(".mkv")) << run.errorOutput.toStdString();
    EXPECT_EQ(form.session().state(), RecordingSession::State::Idle);

    run = client({"--record-to", "/tmp/lecture.mkv"});
    EXPECT_EQ(run.exitCode, 0) << run.errorOutput.toStdString();
    EXPECT_NE(form.session().state(), RecordingSession::State::Idle);
    EXPECT_EQ(recorder.calls.filter("/pretemp.avi)").size(), 1); // the warm-up ran first
    EXPECT_TRUE(prompts.saveRequests.isEmpty());
    form.StopRec();
}

} // namespace
} // namespace mirabend::test
