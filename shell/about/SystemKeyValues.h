#pragma once
// A small read-only key-value source: values under a root and a key path,
// each with a type as the system stores it. The about box reads where the
// system-information program is from it.
//
// Thread contract: UI thread only.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace mirabend {

struct KeyValue {
    // Type numbers as stored: 1 a zero-terminated string, 4 a 32-bit value
    // (little-endian bytes); anything else is raw data.
    static constexpr int kString = 1;
    static constexpr int kDWord = 4;
    int type = kString;
    QByteArray data;
};

class SystemKeyValues {
public:
    virtual ~SystemKeyValues() = default;
    // False when the key cannot be opened.
    virtual bool hasKey(const QString& root, const QString& key) const = 0;
    // The value, or nothing when the key or the value is absent.
    virtual std::optional<KeyValue> query(const QString& root, const QString& key,
                                          const QString& valueName) const = 0;
};

// The root and the two keys that locate the system-information program.
inline const QString kLocalMachine = QStringLiteral("HKEY_LOCAL_MACHINE");
inline const QString kSysInfoKey = QStringLiteral("SOFTWARE\\Microsoft\\Shared Tools\\MSINFO");
inline const QString kSysInfoValue = QStringLiteral("PATH");
inline const QString kSysInfoLocationKey = QStringLiteral("SOFTWARE\\Microsoft\\Shared Tools Location");
inline const QString kSysInfoLocationValue = QStringLiteral("MSINFO");

// The system-information programs, best first, as they are named in a
// folder that the location key names.
const QStringList& sysInfoProgramNames();

} // namespace mirabend
