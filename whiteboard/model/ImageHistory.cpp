#include "whiteboard/model/ImageHistory.h"

namespace mirabend {

void ImageHistory::SetImageBuffer(const QImage& image) {
    HistoryWrite = next(HistoryWrite);
    if (HistoryWrite >= m_loaded)
        m_loaded = HistoryWrite + 1;
    const auto slot = static_cast<std::size_t>(HistoryWrite);
    m_pictures[slot] = image.copy();
    m_tags[slot] = QString::number(static_cast<qint64>(image.width()) * 100000 + image.height());
    HistoryCurrent = HistoryWrite;
    if (HistoryOldest == HistoryWrite)
        HistoryOldest = next(HistoryOldest);
    ImageDirty = true;
}

void ImageHistory::reset(const QImage& image) {
    HistoryWrite = HistoryCurrent = HistoryOldest = 0;
    for (std::size_t i = 1; i < m_pictures.size(); ++i) {
        m_pictures[i] = QImage();
        m_tags[i].clear();
    }
    m_loaded = 1;
    m_pictures[0] = image.copy();
    m_tags[0] = QString::number(static_cast<qint64>(image.width()) * 100000 + image.height());
}

void ImageHistory::replaceCurrent(const QImage& image) {
    const auto slot = static_cast<std::size_t>(HistoryCurrent);
    m_pictures[slot] = image.copy();
    m_tags[slot] = QString::number(static_cast<qint64>(image.width()) * 100000 + image.height());
}

void ImageHistory::storeStep(const QImage& image) {
    HistoryWrite = HistoryCurrent;
    SetImageBuffer(image);
}

std::optional<QImage> ImageHistory::undo() {
    if (!canUndo())
        return std::nullopt;
    HistoryCurrent = previous(HistoryCurrent);
    return m_pictures[static_cast<std::size_t>(HistoryCurrent)];
}

std::optional<QImage> ImageHistory::redo() {
    if (!canRedo())
        return std::nullopt;
    HistoryCurrent = next(HistoryCurrent);
    return m_pictures[static_cast<std::size_t>(HistoryCurrent)];
}

} // namespace mirabend
