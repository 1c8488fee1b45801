#include "recording/ui/remote/RemoteControl.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>

namespace mirabend {

const char* const kRemoteService = "org.mirabend.Mirabend";
const char* const kRemoteObject = "/Mirabend";
const char* const kRemoteInterface = "org.mirabend.Mirabend";

RemoteControlService::RemoteControlService(CommandHandler command, RecordHandler record, QObject* parent)
    : QObject(parent)
    , m_command(std::move(command))
    , m_record(std::move(record)) {}

RemoteControlService::~RemoteControlService() {
    unregister();
}

RemoteFailure RemoteControlService::registerOn(QDBusConnection connection) {
    if (!connection.isConnected())
        return {RemoteError::BusUnavailable, connection.lastError().message().toStdString()};
    if (!connection.registerObject(QString::fromLatin1(kRemoteObject), this, QDBusConnection::ExportAllSlots))
        return {RemoteError::NameTaken, "the object /Mirabend is already published on this connection"};
    if (!connection.registerService(QString::fromLatin1(kRemoteService))) {
        connection.unregisterObject(QString::fromLatin1(kRemoteObject));
        return {RemoteError::NameTaken, connection.lastError().message().toStdString()};
    }
    m_connectionName = connection.name();
    m_registered = true;
    return {};
}

void RemoteControlService::unregister() {
    if (!m_registered)
        return;
    QDBusConnection connection(m_connectionName);
    connection.unregisterObject(QString::fromLatin1(kRemoteObject));
    connection.unregisterService(QString::fromLatin1(kRemoteService));
    m_registered = false;
}

void RemoteControlService::Command(const QString& key) {
    if (m_command)
        m_command(key);
}

void RemoteControlService::RecordTo(const QString& file) {
    const QString refused = m_record ? m_record(file) : QStringLiteral("recording is not available");
    if (!refused.isEmpty() && calledFromDBus())
        sendErrorReply(QString::fromLatin1(kRemoteInterface) + QStringLiteral(".Error.Rejected"), refused);
}

} // namespace mirabend
