#pragma once
// The "Screen Resolution" dialog: three sizes, "Apply", "OK", "Cancel" and
// the status panel `msg`. "Apply" switches the display and says what came of
// it; after a successful switch "OK" restarts the program (`RestartMe`), so
// every window is laid out for the new size. "Cancel" only closes.
//
// Thread contract: UI thread only.

#include <QDialog>
#include <functional>
#include <memory>

class QLabel;
class QPushButton;
class QRadioButton;
class QStatusBar;

namespace mirabend {

class DisplaySettings;

class ScrRes_frm : public QDialog {
    Q_OBJECT
public:
    struct Restart {
        // Starts a program with arguments, without waiting (default:
        // QProcess::startDetached).
        std::function<bool(const QString&, const QStringList&)> startProgram;
        // Ends this program at once.
        std::function<void()> endProgram;
    };

    ScrRes_frm(DisplaySettings& display, Restart restart, QWidget* parent = nullptr);
    // The dialog owns the display settings (one display connection per dialog).
    ScrRes_frm(std::unique_ptr<DisplaySettings> display, Restart restart, QWidget* parent = nullptr);
    ~ScrRes_frm() override;

    void Command1_Click(); // Apply
    void Command2_Click(); // OK
    void Command3_Click(); // Cancel
    // Starts this program anew with the argument "RESTART" and ends this one.
    void RestartMe();

    QRadioButton* Option1() const { return m_options[0]; }
    QRadioButton* Option2() const { return m_options[1]; }
    QRadioButton* Option3() const { return m_options[2]; }
    QPushButton* Command1() const { return m_apply; }
    QPushButton* Command2() const { return m_ok; }
    QPushButton* Command3() const { return m_cancel; }
    QStatusBar* msg() const { return m_msg; }
    // The text of the status bar's panel 1.
    QString msgText() const;
    bool restartPending() const { return m_restartPending; }

private:
    std::unique_ptr<DisplaySettings> m_ownedDisplay;
    DisplaySettings& m_display;
    Restart m_restart;
    QRadioButton* m_options[3];
    QPushButton* m_apply;
    QPushButton* m_ok;
    QPushButton* m_cancel;
    QStatusBar* m_msg;
    QLabel* m_panel1;
    bool m_restartPending = false;
};

} // namespace mirabend
