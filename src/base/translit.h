#pragma once

#include <QString>
#include <QStringView>

namespace base {

/// The text in printable ASCII: Russian, Ukrainian, Belarusian and Serbian letters by the usual English-style
/// spelling (Щукин gives Shchukin, ЩУКИН SHCHUKIN; hard and soft signs are dropped), Latin letters without
/// their marks (Köln gives Koln), typographic signs by their plain ones. A character without a likeness
/// becomes "?", a control character a blank.
[[nodiscard]] QString toAscii(QStringView text);

} // namespace base
