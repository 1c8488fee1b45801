#pragma once
// The camera pane's picture: paints the newest frame itself (so it shows in
// screenshots and in the stage recording, which grabs the window), filling
// the pane or keeping the picture's aspect ratio, inside the inset shape the
// user chose. With no camera it says so in the pane.
//
// It fills whatever pane holds it, so every mode, rotation and corner move
// resizes the picture with the pane.
//
// Thread contract: UI thread only.

#include <QImage>
#include <QVideoFrame>
#include <QWidget>

namespace mirabend {

enum class InsetShape { Rectangle, Rounded, Circle };

class CameraPreview : public QWidget {
    Q_OBJECT
public:
    explicit CameraPreview(QWidget* parent = nullptr);

    void setFrame(const QVideoFrame& frame);
    // Forgets the picture: the pane shows empty.
    void clear();
    // No capture device at all: the pane says "No camera".
    void setNoCamera(bool none);
    bool noCamera() const { return m_noCamera; }

    void setKeepAspect(bool keep);
    bool keepAspect() const { return m_keepAspect; }
    void setShape(InsetShape shape);
    InsetShape shape() const { return m_shape; }

    // Where the picture goes in a pane of `pane` size for a `picture` sized
    // frame: the whole pane, or the largest centred rectangle of the
    // picture's aspect ratio.
    static QRect pictureRect(QSize pane, QSize picture, bool keepAspect);
    // The outline of the inset for a pane of `pane` size.
    static QPainterPath outline(QSize pane, InsetShape shape);

    long framesPainted() const { return m_framesPainted; }

Q_SIGNALS:
    void shownChanged(bool shown);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QVideoFrame m_frame;
    QImage m_picture; // m_frame as last painted
    bool m_pictureStale = false;
    bool m_noCamera = false;
    bool m_keepAspect = false;
    InsetShape m_shape = InsetShape::Rectangle;
    long m_framesPainted = 0;
};

} // namespace mirabend
