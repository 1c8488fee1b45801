#pragma once
// Test decks made by a running office: the checked-in flat ODF deck saved
// as .pptx, .ppt and .pps over a UNO connection of the test's own.

#include <QString>
#include <string>

namespace mirabend::test {

struct DeckFiles {
    QString pptx;
    QString ppt;
    QString pps;
};

// Saves `fodp` in the three PowerPoint formats into `folder` as
// `<base>.pptx/.ppt/.pps`, using the office at `connectUrl`. Returns false
// and says why in `error` when the office could not do it.
bool saveAsPowerPoint(const QString& connectUrl, const QString& fodp, const QString& folder,
                      const QString& base, DeckFiles& out, std::string& error);

} // namespace mirabend::test
