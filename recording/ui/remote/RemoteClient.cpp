#include "recording/ui/remote/RemoteClient.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFileInfo>
#include <cstdio>
#include <cstring>

namespace mirabend {

namespace {

constexpr int kCallTimeoutMs = 10000;

RemoteFailure call(QDBusConnection connection, const char* method, const QString& argument) {
    if (!connection.isConnected())
        return {RemoteError::BusUnavailable, connection.lastError().message().toStdString()};
    QDBusConnectionInterface* bus = connection.interface();
    if (!bus || !bus->isServiceRegistered(QString::fromLatin1(kRemoteService)).value())
        return {RemoteError::NoInstance, {}};
    QDBusMessage message = QDBusMessage::createMethodCall(
        QString::fromLatin1(kRemoteService), QString::fromLatin1(kRemoteObject),
        QString::fromLatin1(kRemoteInterface), QString::fromLatin1(method));
    message << argument;
    const QDBusMessage reply = connection.call(message, QDBus::Block, kCallTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {};
    const QString name = reply.errorName();
    if (name.startsWith(QString::fromLatin1(kRemoteInterface) + QStringLiteral(".Error.")))
        return {RemoteError::Rejected, reply.errorMessage().toStdString()};
    return {RemoteError::CallFailed,
            QString(name + QStringLiteral(": ") + reply.errorMessage()).toStdString()};
}

// The argument after `option`, or null when it is missing.
const char* argumentOf(int argc, char** argv, const char* option) {
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], option) == 0)
            return argv[i + 1];
    }
    return nullptr;
}

int runTool(int argc, char** argv, const char* option, const char* what,
            RemoteFailure (*send)(QDBusConnection, const QString&)) {
    const char* argument = argumentOf(argc, argv, option);
    if (!argument || !*argument) {
        std::fprintf(stderr, "mirabend: %s needs %s\n", option, what);
        return 2;
    }
    QCoreApplication app(argc, argv);
    const RemoteFailure failure = send(QDBusConnection::sessionBus(), QString::fromLocal8Bit(argument));
    if (failure) {
        std::fprintf(stderr, "mirabend: %s\n", remoteFailureText(failure).toLocal8Bit().constData());
        return 1;
    }
    return 0;
}

int runCommand(int argc, char** argv) {
    return runTool(argc, argv, "--command", "a command key", sendRemoteCommand);
}

int runRecordTo(int argc, char** argv) {
    return runTool(argc, argv, "--record-to", "a file name", sendRemoteRecordTo);
}

} // namespace

RemoteFailure sendRemoteCommand(QDBusConnection connection, const QString& key) {
    return call(connection, "Command", key);
}

RemoteFailure sendRemoteRecordTo(QDBusConnection connection, const QString& file) {
    return call(connection, "RecordTo", QFileInfo(file).absoluteFilePath());
}

QString remoteFailureText(const RemoteFailure& failure) {
    const QString detail = QString::fromStdString(failure.detail);
    switch (failure.code) {
    case RemoteError::None:
        return {};
    case RemoteError::BusUnavailable:
        return QStringLiteral("no D-Bus session bus is available, so no running Mirabend can be reached (%1)")
            .arg(detail);
    case RemoteError::NoInstance:
        return QStringLiteral("Mirabend is not running");
    case RemoteError::NameTaken:
        return QStringLiteral("another Mirabend already offers remote control (%1)").arg(detail);
    case RemoteError::Rejected:
        return QStringLiteral("the running Mirabend refused: %1").arg(detail);
    case RemoteError::CallFailed:
        return QStringLiteral("the running Mirabend did not answer (%1)").arg(detail);
    }
    return detail;
}

const CommandLineTool kRemoteCommandTool = {
    "--command", "--command KEY",
    "  Performs a toolbar or task-pane command (record, pause, stop, ...) in the running Mirabend.",
    runCommand};

const CommandLineTool kRemoteRecordToTool = {
    "--record-to", "--record-to FILE",
    "  Starts a recording in the running Mirabend to FILE; the extension picks the format\n"
    "  (.wmv, .avi, .flv, .swf, .mp4, .mkv).",
    runRecordTo};

} // namespace mirabend
