#include "shell/about/GetKeyValue.h"

namespace mirabend {

const QStringList& sysInfoProgramNames() {
    static const QStringList names{QStringLiteral("hardinfo"), QStringLiteral("kinfocenter"),
                                   QStringLiteral("gnome-system-monitor")};
    return names;
}

bool GetKeyValue(const SystemKeyValues& source, const QString& root, const QString& key,
                 const QString& valueName, QString& value) {
    value.clear();
    if (!source.hasKey(root, key))
        return false;
    const std::optional<KeyValue> found = source.query(root, key, valueName);
    if (!found)
        return false;
    const QByteArray& data = found->data;
    switch (found->type) {
    case KeyValue::kString: {
        const int end = data.indexOf('\0');
        value = QString::fromUtf8(end < 0 ? data : data.left(end));
        break;
    }
    case KeyValue::kDWord: {
        // Each byte's own hex digits, no padding, most significant first.
        value = QStringLiteral("&h");
        for (int i = static_cast<int>(data.size()) - 1; i >= 0; --i)
            value += QString::number(static_cast<unsigned char>(data.at(i)), 16).toUpper();
        break;
    }
    default:
        value = QString::fromLatin1(data);
        break;
    }
    return true;
}

} // namespace mirabend
