#pragma once

#include "report/layout.h"

#include <QStringView>

#include <functional>

namespace report {

/// A template whose placeholders cannot be understood; Russian words that say why.
struct TemplateError {
    QString text;
};

/// Index of a field that a placeholder names; `table` is empty for the report's own.
using FieldIndex = std::function<int(const QString &table, const QString &name)>;

/// Takes a text with placeholders apart. "{{" stands for a brace. Throws TemplateError.
[[nodiscard]] Template parseTemplate(QStringView text, const FieldIndex &fieldIndex);

/// One placeholder, what stands between its braces. A format is "call", or d, dd, MM, MMM, MMMM, yy, yyyy
/// with blanks and "./-,:" between them. Throws TemplateError.
[[nodiscard]] Piece parsePlaceholder(QStringView text, const FieldIndex &fieldIndex);

/// Conditions: placeholders without braces, separated by commas, "!" before one that must be empty.
/// Throws TemplateError.
[[nodiscard]] QList<Condition> parseConditions(QStringView text, const FieldIndex &fieldIndex);

} // namespace report
