#pragma once
// Every message box and every file or colour dialog of Mirabend goes through
// this interface. The product uses QtPrompts; tests script the answers and
// read back what would have been shown.
//
// Thread contract: UI thread only.

#include <QColor>
#include <QString>
#include <optional>

namespace mirabend {

enum class PromptIcon { None, Information, Exclamation, Critical, Question };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No };

struct MessageRequest {
    QString text;
    QString title;
    PromptButtons buttons = PromptButtons::Ok;
    PromptIcon icon = PromptIcon::None;
};

// A file dialog described the way the program's dialogs are designed: a filter
// of "description|pattern|description|pattern" pairs and a 1-based filter index.
struct FileRequest {
    QString title;
    QString filter;
    int filterIndex = 1;
    QString initialFileName;
    QString defaultExtension;
    QString folder;
};

struct FileAnswer {
    QString fileName;  // full path; empty when the user cancelled
    QString fileTitle; // file name without folder
    int filterIndex = 1;
    bool accepted() const { return !fileName.isEmpty(); }
};

class Prompts {
public:
    virtual ~Prompts() = default;
    virtual PromptAnswer message(const MessageRequest& request) = 0;
    virtual FileAnswer openFile(const FileRequest& request) = 0;
    virtual FileAnswer saveFile(const FileRequest& request) = 0;
    virtual std::optional<QColor> chooseColor(const QColor& initial, const QString& title) = 0;

    // Convenience: a message with just an OK button.
    void show(const QString& text, const QString& title, PromptIcon icon)
    {
        message({text, title, PromptButtons::Ok, icon});
    }
};

// Turns "desc|*.a|desc2|*.b;*.c" into Qt's "desc (*.a);;desc2 (*.b *.c)".
// A description that already ends in its own bracketed pattern keeps its text
// and gets the real pattern in a second bracket only when they differ.
QString toQtFilter(const QString& designFilter);

} // namespace mirabend
