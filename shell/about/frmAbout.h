#pragma once
// The about box: product, version, description, the versions of the
// components underneath, two links, `cmdOK` and the system-information
// button. While it is open the main window takes no input and the box stays
// on top; closing it gives the main window its input back.
//
// Thread contract: UI thread only.

#include <QDialog>
#include <QPointer>
#include <functional>

class QLabel;
class QPushButton;
class QUrl;

namespace mirabend {

class Prompts;
class SystemKeyValues;
class LibreOfficeVersion;

class frmAbout : public QDialog {
    Q_OBJECT
public:
    struct Services {
        const SystemKeyValues* keys = nullptr;
        Prompts* prompts = nullptr;
        // Starts a program in a normal window, without waiting.
        std::function<bool(const QString&)> startProgram;
        // The desktop's "open" action.
        std::function<bool(const QUrl&)> openUrl;
    };

    static const char* const kProductPage;
    static const char* const kAuthorPage;

    // `mainWindow` is disabled while the box is open; the box itself has no
    // parent widget, so it is not disabled with it.
    frmAbout(Services services, QWidget* mainWindow);
    ~frmAbout() override;

    void Form_Load();
    void Form_Terminate();
    void StartSysInfo();
    void cmdOK_Click() { close(); }

    QPushButton* cmdOK() const { return m_ok; }
    QPushButton* cmdSysInfo() const { return m_sysInfo; }
    QLabel* Label1() const { return m_label1; }
    QLabel* Label2() const { return m_label2; }
    QLabel* versionsLabel() const { return m_versions; }

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void showVersions(const QString& office);

    Services m_services;
    QPointer<QWidget> m_mainWindow;
    LibreOfficeVersion* m_office;
    QPushButton* m_ok;
    QPushButton* m_sysInfo;
    QLabel* m_label1;
    QLabel* m_label2;
    QLabel* m_versions;
    bool m_loaded = false;
    bool m_terminated = false;
};

} // namespace mirabend
