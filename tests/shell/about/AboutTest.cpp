// The about box: the system-information launcher over scripted and real
// key-value sources, GetKeyValue's value types, the main window disabled
// while the box is open, the links and the component versions.
#include "shell/about/ComponentVersions.h"
#include "shell/about/DesktopKeyValues.h"
#include "shell/about/GetKeyValue.h"
#include "shell/about/frmAbout.h"
#include "support/ChildProcess.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QUrl>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>

namespace mirabend::test {
namespace {

// Values the test puts in; every key that holds a value can be opened.
class ScriptedKeyValues final : public SystemKeyValues {
public:
    void set(const QString& key, const QString& name, KeyValue value) {
        m_values[{key, name}] = std::move(value);
    }
    void setString(const QString& key, const QString& name, const QString& text) {
        set(key, name, {KeyValue::kString, text.toUtf8() + QByteArray(1, '\0')});
    }
    bool hasKey(const QString& root, const QString& key) const override {
        if (root != kLocalMachine)
            return false;
        for (const auto& entry : m_values) {
            if (entry.first.first == key)
                return true;
        }
        return false;
    }
    std::optional<KeyValue> query(const QString& root, const QString& key,
                                  const QString& name) const override {
        const auto it = m_values.find({key, name});
        if (root != kLocalMachine || it == m_values.end())
            return std::nullopt;
        return it->second;
    }

private:
    std::map<std::pair<QString, QString>, KeyValue> m_values;
};

void makeProgram(const std::string& path) {
    std::ofstream(path) << "#!/bin/sh\n";
    chmod(path.c_str(), 0755);
}

TEST(GetKeyValue, ReturnsEachValueTypeAsText) {
    ScriptedKeyValues keys;
    const QString key = QStringLiteral("SOFTWARE\\Test");
    keys.set(key, QStringLiteral("text"), {KeyValue::kString, QByteArray("C:\\x\0", 5)});
    keys.set(key, QStringLiteral("dword"), {KeyValue::kDWord, QByteArray("\x78\x06\x34\x12", 4)});
    keys.set(key, QStringLiteral("raw"), {3, QByteArray("ab")});
    const struct {
        const char* root;
        const char* name;
        bool found;
        const char* value;
    } cases[] = {{"HKEY_LOCAL_MACHINE", "text", true, "C:\\x"},
                 // The bytes from the last to the first, each without padding.
                 {"HKEY_LOCAL_MACHINE", "dword", true, "&h1234678"},
                 {"HKEY_LOCAL_MACHINE", "raw", true, "ab"},
                 {"HKEY_LOCAL_MACHINE", "missing", false, ""},
                 {"HKEY_CURRENT_USER", "text", false, ""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QString value = QStringLiteral("left over");
        EXPECT_EQ(GetKeyValue(keys, QLatin1String(c.root), key, QLatin1String(c.name), value), c.found);
        EXPECT_EQ(value, QLatin1String(c.value));
    }
    QString value = QStringLiteral("left over");
    EXPECT_FALSE(
        GetKeyValue(keys, kLocalMachine, QStringLiteral("SOFTWARE\\Absent"), QStringLiteral("text"), value));
    EXPECT_TRUE(value.isEmpty());
}

class AboutTest : public ::testing::Test {
protected:
    frmAbout* makeBox(QWidget* mainWindow = nullptr, const SystemKeyValues* source = nullptr) {
        frmAbout::Services services;
        services.keys = source ? source : &keys;
        services.prompts = &prompts;
        services.startProgram = [this](const QString& path) {
            started << path;
            return true;
        };
        services.openUrl = [this](const QUrl& url) {
            opened << url.toString();
            return true;
        };
        return new frmAbout(services, mainWindow);
    }

    ScriptedKeyValues keys;
    ScriptedPrompts prompts;
    QStringList started;
    QStringList opened;
    TempFolder folder{"mirabend-about"};
};

TEST_F(AboutTest, SystemInformationStartsWhatTheKeysNameOrSaysItIsUnavailable) {
    makeProgram(folder.file("hardinfo"));
    const QString tools = QString::fromStdString(folder.path());
    const QString empty = QString::fromStdString(folder.path()) + QStringLiteral("/none");
    const struct {
        const char* name;
        QString path;     // first key; empty: absent
        QString location; // second key; empty: absent
        QString expected; // started program; empty: the message
    } cases[] = {
        {"path key", QStringLiteral("/opt/sysinfo"), tools, QStringLiteral("/opt/sysinfo")},
        {"location key with the program", {}, tools, tools + QStringLiteral("/hardinfo")},
        {"location key without the program", {}, empty, {}},
        {"neither key", {}, {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        keys = ScriptedKeyValues();
        if (!c.path.isEmpty())
            keys.setString(kSysInfoKey, kSysInfoValue, c.path);
        if (!c.location.isEmpty())
            keys.setString(kSysInfoLocationKey, kSysInfoLocationValue, c.location);
        started.clear();
        prompts.messages.clear();
        std::unique_ptr<frmAbout> box(makeBox());
        box->StartSysInfo();
        if (c.expected.isEmpty()) {
            EXPECT_TRUE(started.isEmpty()) << "nothing is started";
            ASSERT_EQ(prompts.messages.size(), 1);
            EXPECT_EQ(prompts.messages[0].text,
                      QStringLiteral("System Information Is Unavailable At This Time"));
            EXPECT_EQ(prompts.messages[0].icon, PromptIcon::None);
        } else {
            EXPECT_EQ(started, QStringList{c.expected});
            EXPECT_TRUE(prompts.messages.isEmpty());
        }
    }
}

TEST_F(AboutTest, DesktopSourceFindsTheProgramFromItsDesktopEntryAndOnPath) {
    const std::string apps = folder.file("applications"), bin = folder.file("bin");
    QDir().mkpath(QString::fromStdString(apps));
    QDir().mkpath(QString::fromStdString(bin));
    makeProgram(bin + "/gnome-system-monitor");
    const QStringList appFolders{QString::fromStdString(apps)}, pathFolders{QString::fromStdString(bin)};

    QString value;
    {
        const DesktopKeyValues desktop(appFolders, pathFolders);
        EXPECT_FALSE(GetKeyValue(desktop, kLocalMachine, kSysInfoKey, kSysInfoValue, value))
            << "no desktop entry";
        EXPECT_TRUE(GetKeyValue(desktop, kLocalMachine, kSysInfoLocationKey, kSysInfoLocationValue, value));
        EXPECT_EQ(value, QString::fromStdString(bin));
    }
    std::ofstream(apps + "/gnome-system-monitor.desktop")
        << "[Desktop Entry]\nName=System Monitor\nExec=gnome-system-monitor --show-resources %U\n"
           "[Desktop Action processes]\nExec=other\n";
    const DesktopKeyValues desktop(appFolders, pathFolders);
    EXPECT_TRUE(GetKeyValue(desktop, kLocalMachine, kSysInfoKey, kSysInfoValue, value));
    EXPECT_EQ(value, QString::fromStdString(bin + "/gnome-system-monitor"));
    EXPECT_FALSE(
        GetKeyValue(desktop, kLocalMachine, QStringLiteral("SOFTWARE\\Other"), kSysInfoValue, value));

    // The real source drives the box: the program is started.
    std::unique_ptr<frmAbout> box(makeBox(nullptr, &desktop));
    box->StartSysInfo();
    EXPECT_EQ(started, QStringList{QString::fromStdString(bin + "/gnome-system-monitor")});
}

TEST_F(AboutTest, MainWindowTakesNoInputWhileTheBoxIsOpen) {
    // OK unloads the box; Escape rejects it, which hides without a close
    // event: both must give the main window its input back.
    for (const bool viaOk : {true, false}) {
        SCOPED_TRACE(viaOk ? "OK" : "Escape");
        QWidget mainWindow;
        mainWindow.show();
        QPointer<frmAbout> box = makeBox(&mainWindow);
        box->show();
        EXPECT_FALSE(mainWindow.isEnabled());
        EXPECT_TRUE(box->isEnabled()) << "the box itself stays usable";
        EXPECT_EQ(box->parentWidget(), nullptr);

        if (viaOk)
            box->cmdOK()->click();
        else
            QTest::keyClick(box.data(), Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&box] { return box.isNull(); }, 5000)) << "the box is unloaded";
        EXPECT_TRUE(mainWindow.isEnabled()) << "the main window accepts input again";
    }
}

TEST_F(AboutTest, LinksOpenOnTheDesktopAndTheComponentVersionsShow) {
    std::unique_ptr<frmAbout> box(makeBox());
    box->Label1()->linkActivated(QString::fromLatin1(frmAbout::kProductPage));
    box->Label2()->linkActivated(QString::fromLatin1(frmAbout::kAuthorPage));
    EXPECT_EQ(opened, (QStringList{QString::fromLatin1(frmAbout::kProductPage),
                                   QString::fromLatin1(frmAbout::kAuthorPage)}));

    const QString text = box->versionsLabel()->text();
    EXPECT_TRUE(text.contains(QStringLiteral(QT_VERSION_STR))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("libavformat "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("alsa-lib 1."))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("LibreOffice checking ..."))) << "asked only when the box opens";

    // Opening the box asks the installed office, in the background.
    box->show();
    ASSERT_TRUE(
        QTest::qWaitFor([&box] { return !box->versionsLabel()->text().contains("checking"); }, 60000));
    const QRegularExpression office(haveProgram("soffice") ? QStringLiteral("LibreOffice \\d+\\.\\d+")
                                                           : QStringLiteral("LibreOffice not installed"));
    EXPECT_TRUE(box->versionsLabel()->text().contains(office)) << box->versionsLabel()->text().toStdString();

    const struct {
        const char* output;
        const char* version;
    } answers[] = {{"LibreOffice 7.4.7.2 40(Build:2)\n", "7.4.7.2"},
                   {"Warning: x\nLibreOffice 24.2.1.2 420(Build:2)", "24.2.1.2"},
                   {"soffice: command not found", ""},
                   {"", ""}};
    for (const auto& a : answers)
        EXPECT_EQ(LibreOfficeVersion::parse(QLatin1String(a.output)), QLatin1String(a.version)) << a.output;
}

} // namespace
} // namespace mirabend::test
