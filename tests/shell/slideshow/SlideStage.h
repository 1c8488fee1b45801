#pragma once
// The part of the main window that the slide show touches, laid out as the
// stage: its caption, the slide pane and the fields it writes, with
// scripted prompts.

#include "shell/ports/ShellFields.h"
#include "support/ScriptedPrompts.h"

#include <QLineEdit>
#include <QMainWindow>
#include <gtest/gtest.h>

namespace mirabend::test {

struct SlideStage {
    QMainWindow window;
    QWidget* Picture1 = new QWidget(&window);
    QWidget* frmSS = new QWidget(Picture1);
    QLineEdit* Text1 = new QLineEdit(&window);
    QLineEdit* Text3 = new QLineEdit(&window);
    QLineEdit* ppt_txt = new QLineEdit(&window);
    QLineEdit* slide_txt = new QLineEdit(&window);
    QLineEdit* slideNow_txt = new QLineEdit(&window);
    ScriptedPrompts prompts;
    ShellFields fields;

    SlideStage() {
        window.setCentralWidget(Picture1);
        frmSS->setGeometry(0, 0, 580, 435);
        for (QLineEdit* field : {Text1, Text3, ppt_txt, slide_txt, slideNow_txt})
            field->hide();
        ppt_txt->setText(QStringLiteral("no"));
        fields.window = &window;
        fields.frmSS = frmSS;
        fields.Text1 = Text1;
        fields.Text3 = Text3;
        fields.ppt_txt = ppt_txt;
        fields.slide_txt = slide_txt;
        fields.slideNow_txt = slideNow_txt;
        fields.prompts = &prompts;
    }

    // The one message every failed open shows, and no presentation left.
    ::testing::AssertionResult failedOnce() const {
        if (prompts.messages.size() != 1)
            return ::testing::AssertionFailure() << prompts.messages.size() << " messages";
        const MessageRequest& m = prompts.messages[0];
        if (m.text != QLatin1String("Mirabend can't open the presentation!") ||
            m.title != QLatin1String("Mirabend 1.0") || m.icon != PromptIcon::Critical ||
            m.buttons != PromptButtons::Ok)
            return ::testing::AssertionFailure() << "message \"" << m.text.toStdString() << "\"";
        if (ppt_txt->text() != QLatin1String("no"))
            return ::testing::AssertionFailure() << "ppt_txt is " << ppt_txt->text().toStdString();
        return ::testing::AssertionSuccess();
    }
};

} // namespace mirabend::test
