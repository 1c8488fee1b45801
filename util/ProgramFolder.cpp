#include "util/ProgramFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace mirabend {

QString ProgramFolder::normalise(const QString& designName)
{
    QString name = designName;
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (name.startsWith(QLatin1Char('/')))
        name.remove(0, 1);
    return name;
}

QStringList ProgramFolder::dataFolders()
{
    QStringList folders;
    const QString appDir = QCoreApplication::applicationDirPath();
    if (!appDir.isEmpty()) {
        folders << appDir;
        folders << QDir::cleanPath(appDir + QStringLiteral("/../share/mirabend"));
    }
    folders << QStringLiteral(MIRABEND_DATA_INSTALL_FULLDIR);
    const QString extra = qEnvironmentVariable("MIRABEND_DATA_DIR");
    if (!extra.isEmpty())
        folders << extra;
    folders.removeDuplicates();
    return folders;
}

QString ProgramFolder::dataFile(const QString& designName)
{
    const QString name = normalise(designName);
    for (const QString& folder : dataFolders()) {
        const QFileInfo info(QDir(folder).filePath(name));
        if (info.isFile())
            return info.absoluteFilePath();
    }
    return {};
}

QString ProgramFolder::writableFolder()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    const QFileInfo info(appDir);
    if (!appDir.isEmpty() && info.isDir() && info.isWritable())
        return appDir;
    QString fallback = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (fallback.isEmpty())
        fallback = QDir::homePath() + QStringLiteral("/.local/share/mirabend");
    QDir().mkpath(fallback);
    return fallback;
}

QString ProgramFolder::writableFile(const QString& designName)
{
    return QDir(writableFolder()).filePath(normalise(designName));
}

} // namespace mirabend
