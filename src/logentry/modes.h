#pragma once

#include <QString>
#include <QStringList>

namespace logentry {

/// Captions of the mode buttons in the order of the panel.
[[nodiscard]] const QStringList &modeCaptions();

/// Report that suits a mode; empty for a caption that is none of the modes. FM takes 595 like SSTV, not 59:
/// that is how this log has always done it.
[[nodiscard]] QString modeReport(const QString &caption);

} // namespace logentry
