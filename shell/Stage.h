#pragma once
// The stage `Picture1` and the panes placed on it, measured in stage pixels.
// The stage owns the panes; the main window and the layout classes move them.
//
// Thread contract: UI thread only.

#include <QWidget>

class QLabel;
class QTextEdit;

namespace mirabend {

class Stage : public QWidget {
    Q_OBJECT
public:
    static constexpr int kWidth = 800;
    static constexpr int kHeight = 600;

    explicit Stage(QWidget* parent = nullptr);

    QWidget* frmSS() const { return m_frmSS; }
    QWidget* parentPic() const { return m_parentPic; }
    QTextEdit* textBoard_txt() const { return m_textBoard; }
    QWidget* WebBrowser1() const { return m_web; }
    QWidget* VideoCap1() const { return m_camera; }
    QWidget* infobar_pic() const { return m_infobar; }
    QLabel* title_lb() const { return m_titleLabel; }
    QLabel* presenter_lb() const { return m_presenterLabel; }
    QLabel* noticeBox() const { return m_notice; }

    // The content panes (everything but the camera and the info bar).
    bool anyContentPaneVisible() const;

private:
    QWidget* m_frmSS;
    QWidget* m_parentPic;
    QTextEdit* m_textBoard;
    QWidget* m_web;
    QWidget* m_camera;
    QWidget* m_infobar;
    QLabel* m_titleLabel;
    QLabel* m_presenterLabel;
    QLabel* m_notice;
};

} // namespace mirabend
