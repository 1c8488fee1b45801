#include "util/FontComboControl.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QResizeEvent>

namespace mirabend {
namespace {

// Image 1 of the combo's image list: a small "Tt" in a frame, the same for
// every family.
QIcon fontPicture() {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0x3d, 0x6c, 0xb5));
    QFont font(QStringLiteral("serif"));
    font.setPixelSize(12);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QStringLiteral("Tt"));
    return QIcon(pixmap);
}

} // namespace

FontComboControl::FontComboControl(QWidget* parent)
    : FontComboControl(QFontDatabase::families(), parent) {}

FontComboControl::FontComboControl(const QStringList& screenFonts, QWidget* parent)
    : QWidget(parent)
    , m_list(new QListWidget(this))
    , m_combo(new QComboBox(this)) {
    m_list->setObjectName(QStringLiteral("List1"));
    m_list->hide();
    m_combo->setObjectName(QStringLiteral("FontCombo"));
    m_combo->setEditable(true);
    m_combo->setInsertPolicy(QComboBox::NoInsert);
    m_combo->setToolTip(tr("Font of the selected text"));
    m_combo->lineEdit()->setPlaceholderText(tr("Font"));
    setFocusProxy(m_combo);
    setMinimumHeight(m_combo->sizeHint().height());
    UserControl_Initialize(screenFonts);
    connect(m_combo, qOverload<int>(&QComboBox::activated), this, [this] { Q_EMIT Click(); });
}

void FontComboControl::UserControl_Initialize(const QStringList& screenFonts) {
    for (const QString& family : screenFonts)
        m_list->addItem(family);
    m_list->sortItems();
    const QIcon picture = fontPicture();
    int chosen = 0;
    for (int i = 0; i < m_list->count(); ++i) {
        const QString name = m_list->item(i)->text();
        if (name == QLatin1String("Times New Roman"))
            chosen = i;
        m_combo->addItem(picture, name);
    }
    if (m_combo->count() > 0)
        m_combo->setCurrentIndex(chosen);
}

QString FontComboControl::curfont() const {
    return m_combo->itemText(m_combo->currentIndex());
}

void FontComboControl::TheFont(const QString& name) {
    m_combo->setEditText(name);
}

QSize FontComboControl::sizeHint() const {
    return m_combo->sizeHint();
}

void FontComboControl::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_combo->setGeometry(rect());
}

} // namespace mirabend
