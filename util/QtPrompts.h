#pragma once
// The real prompts: QMessageBox, QFileDialog and QColorDialog, modal over the
// given parent window.

#include "util/Prompts.h"

class QWidget;

namespace mirabend {

class QtPrompts final : public Prompts {
public:
    explicit QtPrompts(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }

    PromptAnswer message(const MessageRequest& request) override;
    FileAnswer openFile(const FileRequest& request) override;
    FileAnswer saveFile(const FileRequest& request) override;
    std::optional<QColor> chooseColor(const QColor& initial, const QString& title) override;

private:
    FileAnswer runFileDialog(const FileRequest& request, bool save);
    QWidget* m_parent;
};

} // namespace mirabend
