#pragma once
// Named values a control saves its state into and restores it from. A value
// equal to its default is not stored, and reading a missing name gives the
// default back.
//
// Thread contract: any thread; one bag per owner.

#include <QHash>
#include <QString>

namespace mirabend {

class PropertyBag {
public:
    QString ReadProperty(const QString& name, const QString& defaultValue = {}) const {
        return m_values.value(name, defaultValue);
    }
    void WriteProperty(const QString& name, const QString& value, const QString& defaultValue = {}) {
        if (value == defaultValue)
            m_values.remove(name);
        else
            m_values.insert(name, value);
    }
    bool contains(const QString& name) const { return m_values.contains(name); }

private:
    QHash<QString, QString> m_values;
};

} // namespace mirabend
