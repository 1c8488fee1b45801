#include "shell/about/DesktopKeyValues.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace mirabend {

namespace {

KeyValue stringValue(const QString& text) {
    KeyValue value;
    value.type = KeyValue::kString;
    value.data = text.toUtf8();
    value.data.append('\0');
    return value;
}

bool isProgram(const QString& path) {
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

// The command of a desktop entry's Exec line: its first word, without the
// field codes and quotes that may follow or surround it.
QString execCommand(const QString& exec) {
    QString first = exec.trimmed().section(QLatin1Char(' '), 0, 0);
    if (first.startsWith(QLatin1Char('"')))
        first = exec.trimmed().section(QLatin1Char('"'), 1, 1);
    return first;
}

// One key of a desktop entry's [Desktop Entry] group; empty when absent.
QString desktopKey(const QString& file, const QString& key) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    bool inEntry = false;
    const QString prefix = key + QLatin1Char('=');
    while (!in.atEnd()) {
        const QString line = QString::fromUtf8(in.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            inEntry = line == QLatin1String("[Desktop Entry]");
        else if (inEntry && line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed();
    }
    return {};
}

} // namespace

DesktopKeyValues::DesktopKeyValues()
    : DesktopKeyValues(QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation),
                       qEnvironmentVariable("PATH").split(QLatin1Char(':'), Qt::SkipEmptyParts)) {}

DesktopKeyValues::DesktopKeyValues(QStringList applicationFolders, QStringList pathFolders)
    : m_applicationFolders(std::move(applicationFolders))
    , m_pathFolders(std::move(pathFolders)) {}

const QStringList& DesktopKeyValues::desktopEntries() {
    static const QStringList entries{QStringLiteral("hardinfo.desktop"),
                                     QStringLiteral("org.kde.kinfocenter.desktop"),
                                     QStringLiteral("kinfocenter.desktop"),
                                     QStringLiteral("gnome-system-monitor.desktop"),
                                     QStringLiteral("org.gnome.SystemMonitor.desktop"),
                                     QStringLiteral("gnome-system-monitor-kde.desktop")};
    return entries;
}

bool DesktopKeyValues::hasKey(const QString& root, const QString& key) const {
    return root == kLocalMachine && (key == kSysInfoKey || key == kSysInfoLocationKey);
}

std::optional<KeyValue> DesktopKeyValues::query(const QString& root, const QString& key,
                                                const QString& valueName) const {
    if (root != kLocalMachine)
        return std::nullopt;
    QString text;
    if (key == kSysInfoKey && valueName == kSysInfoValue)
        text = programFromDesktopEntry();
    else if (key == kSysInfoLocationKey && valueName == kSysInfoLocationValue)
        text = folderOnPath();
    if (text.isEmpty())
        return std::nullopt;
    return stringValue(text);
}

QString DesktopKeyValues::programFromDesktopEntry() const {
    for (const QString& entry : desktopEntries()) {
        for (const QString& folder : m_applicationFolders) {
            const QString file = QDir(folder).filePath(entry);
            if (!QFileInfo::exists(file))
                continue;
            if (desktopKey(file, QStringLiteral("Hidden")) == QLatin1String("true"))
                continue;
            const QString command = execCommand(desktopKey(file, QStringLiteral("Exec")));
            if (command.isEmpty())
                continue;
            const QString path = QFileInfo(command).isAbsolute()
                                     ? command
                                     : QStandardPaths::findExecutable(command, m_pathFolders);
            if (isProgram(path))
                return path;
        }
    }
    return {};
}

QString DesktopKeyValues::folderOnPath() const {
    for (const QString& program : sysInfoProgramNames()) {
        for (const QString& folder : m_pathFolders) {
            if (isProgram(QDir(folder).filePath(program)))
                return QDir::cleanPath(folder);
        }
    }
    return {};
}

} // namespace mirabend
