#pragma once
// `GetKeyValue`: one value of a key-value source as text.
//
// Thread contract: UI thread only.

#include "shell/about/SystemKeyValues.h"

namespace mirabend {

// Reads `valueName` under `key`. A string comes back without its terminating
// zero; a 32-bit value as hexadecimal text with the prefix "&h", its bytes
// from the last to the first; anything else as its raw data. Returns false,
// with an empty value, when the key cannot be opened or the value is absent.
bool GetKeyValue(const SystemKeyValues& source, const QString& root, const QString& key,
                 const QString& valueName, QString& value);

} // namespace mirabend
