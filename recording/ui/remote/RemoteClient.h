#pragma once
// The client side of the remote control: the command-line modes
// "mirabend --command KEY" and "mirabend --record-to FILE", which hand their
// request to the running instance and end.
//
// Thread contract: the functions block until the instance answered; call
// them from a thread without a running Mirabend window (the CLI's own).

#include "recording/ui/remote/RemoteControl.h"
#include "util/CommandLineTool.h"

namespace mirabend {

RemoteFailure sendRemoteCommand(QDBusConnection connection, const QString& key);
// `file` is made absolute against the client's working folder first.
RemoteFailure sendRemoteRecordTo(QDBusConnection connection, const QString& file);

// The line printed for a failure, without a trailing newline.
QString remoteFailureText(const RemoteFailure& failure);

extern const CommandLineTool kRemoteCommandTool;  // --command KEY
extern const CommandLineTool kRemoteRecordToTool; // --record-to FILE

} // namespace mirabend
