#pragma once
// The key-value source of a Linux desktop. It answers the two keys that
// locate the system-information program:
// - "...\Shared Tools\MSINFO" / "PATH": the full path of the program named by
//   the desktop entry of an installed system-information program (hardinfo,
//   GNOME System Monitor, KDE Info Center, ...), searched in the XDG data
//   folders;
// - "...\Shared Tools Location" / "MSINFO": the folder on PATH that holds one
//   of those programs.
// Every other key is absent.
//
// Thread contract: UI thread only.

#include "shell/about/SystemKeyValues.h"

#include <QStringList>

namespace mirabend {

class DesktopKeyValues final : public SystemKeyValues {
public:
    // Defaults: the XDG application folders and $PATH.
    DesktopKeyValues();
    DesktopKeyValues(QStringList applicationFolders, QStringList pathFolders);

    bool hasKey(const QString& root, const QString& key) const override;
    std::optional<KeyValue> query(const QString& root, const QString& key,
                                  const QString& valueName) const override;

    // The desktop entries looked for, best first.
    static const QStringList& desktopEntries();

private:
    QString programFromDesktopEntry() const;
    QString folderOnPath() const;
    QStringList m_applicationFolders;
    QStringList m_pathFolders;
};

} // namespace mirabend
