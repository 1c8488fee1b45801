#pragma once
// The pictures of the notes toolbar's buttons, drawn so that they look the
// same on every desktop, icon theme or not.
//
// Thread contract: UI thread only.

#include <QIcon>

namespace mirabend {

QIcon editorIcon(const QString& key);

} // namespace mirabend
