#pragma once
// Remote control of a running Mirabend over the D-Bus session bus.
//
// The running instance offers the service org.mirabend.Mirabend with the
// object /Mirabend and the interface org.mirabend.Mirabend:
//   Command(s key)   performs a toolbar or task-pane command key exactly as
//                    a click on it would ("record", "pause", "stop", ...)
//   RecordTo(s file) starts a recording to `file`, the format chosen by its
//                    extension, without the save dialog (warm-up included)
// Errors come back as D-Bus errors named org.mirabend.Mirabend.Error.*.
//
// Thread contract: UI thread only; the calls arrive through the UI thread's
// event loop, so the callbacks run on it as a click would.

#include "util/core/Failure.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <functional>

namespace mirabend {

extern const char* const kRemoteService;   // "org.mirabend.Mirabend"
extern const char* const kRemoteObject;    // "/Mirabend"
extern const char* const kRemoteInterface; // "org.mirabend.Mirabend"

enum class RemoteError {
    None,
    BusUnavailable, // no session bus to talk on
    NameTaken,      // another instance already owns the service name
    NoInstance,     // no running instance answers
    Rejected,       // the instance refused the request (detail says why)
    CallFailed,     // the call itself failed (timeout, broken connection)
};
using RemoteFailure = Failure<RemoteError>;

class RemoteControlService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mirabend.Mirabend")
public:
    using CommandHandler = std::function<void(const QString& key)>;
    // Returns an empty text when the recording was started, else why not.
    using RecordHandler = std::function<QString(const QString& file)>;

    RemoteControlService(CommandHandler command, RecordHandler record, QObject* parent = nullptr);
    ~RemoteControlService() override;

    // Publishes the object and takes the service name on `connection`
    // (QDBusConnection::sessionBus() in the program).
    RemoteFailure registerOn(QDBusConnection connection);
    void unregister();

public Q_SLOTS:
    void Command(const QString& key);
    void RecordTo(const QString& file);

private:
    CommandHandler m_command;
    RecordHandler m_record;
    QString m_connectionName;
    bool m_registered = false;
};

} // namespace mirabend
