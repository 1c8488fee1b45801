#pragma once
// Reading a number that the user typed into a text field. A field that does
// not hold a number is reported once, in a message box naming the field, and
// nothing is handed on.
//
// Thread contract: UI thread only.

#include <QString>
#include <optional>

class QLineEdit;

namespace mirabend {

class Prompts;

// The field's value, or nothing after telling the user that `what` ("frame
// rate") is not a number. Blanks around the number are allowed.
std::optional<double> readNumber(const QLineEdit* field, const QString& what, Prompts& prompts);
std::optional<int> readInteger(const QLineEdit* field, const QString& what, Prompts& prompts);

} // namespace mirabend
