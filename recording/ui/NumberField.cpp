#include "recording/ui/NumberField.h"

#include "recording/ui/OptionLists.h"
#include "util/Prompts.h"

#include <QLineEdit>
#include <cmath>

namespace mirabend {

namespace {

void complain(const QLineEdit* field, const QString& what, Prompts& prompts) {
    prompts.show(QStringLiteral("The %1 must be a number, but the field holds \"%2\".")
                     .arg(what, field ? field->text() : QString()),
                 QString::fromLatin1(options::kMessageTitle), PromptIcon::Exclamation);
}

} // namespace

std::optional<double> readNumber(const QLineEdit* field, const QString& what, Prompts& prompts) {
    bool ok = false;
    const double value = field ? field->text().trimmed().toDouble(&ok) : 0.0;
    if (!ok || !std::isfinite(value)) {
        complain(field, what, prompts);
        return std::nullopt;
    }
    return value;
}

std::optional<int> readInteger(const QLineEdit* field, const QString& what, Prompts& prompts) {
    bool ok = false;
    const int value = field ? field->text().trimmed().toInt(&ok) : 0;
    if (!ok) {
        complain(field, what, prompts);
        return std::nullopt;
    }
    return value;
}

} // namespace mirabend
