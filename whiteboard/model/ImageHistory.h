#pragma once
// The canvas's image history: a ring of eleven pictures (`picBuffer`), each
// tagged with the size of the image it holds (width x 100000 + height).
// Undo and redo step `HistoryCurrent` between `HistoryOldest` and
// `HistoryWrite`; a new step after an undo drops the steps that were undone.
//
// Thread contract: UI thread only.

#include <QImage>
#include <QString>
#include <array>
#include <optional>

namespace mirabend {

class ImageHistory {
public:
    static constexpr int kSlots = 11;

    qint16 HistoryWrite = 0;
    qint16 HistoryCurrent = 0;
    qint16 HistoryOldest = 0;
    bool ImageDirty = false;

    // Stores `image` as the next step of the ring.
    void SetImageBuffer(const QImage& image);
    // Forgets everything and keeps `image` in slot 0.
    void reset(const QImage& image);

    // The slot now shown takes `image` (the canvas grew to its pane: the
    // step keeps the drawing at the size it is shown at).
    void replaceCurrent(const QImage& image);

    // A new step as the undo command sees it: steps undone are dropped first.
    void storeStep(const QImage& image);

    bool canUndo() const { return HistoryCurrent != HistoryOldest; }
    bool canRedo() const { return HistoryCurrent != HistoryWrite; }
    // The image to show after the step, or nothing when there is none.
    std::optional<QImage> undo();
    std::optional<QImage> redo();

    // Slots loaded so far (the array grows on demand up to eleven).
    int loaded() const { return m_loaded; }
    const QImage& picture(int slot) const { return m_pictures[static_cast<std::size_t>(slot)]; }
    const QString& tag(int slot) const { return m_tags[static_cast<std::size_t>(slot)]; }

    static qint16 next(qint16 slot) { return slot < kSlots - 1 ? static_cast<qint16>(slot + 1) : 0; }
    static qint16 previous(qint16 slot) { return slot > 0 ? static_cast<qint16>(slot - 1) : kSlots - 1; }

private:
    std::array<QImage, kSlots> m_pictures;
    std::array<QString, kSlots> m_tags;
    int m_loaded = 0;
};

} // namespace mirabend
