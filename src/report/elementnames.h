#pragma once

#include <QStringView>

namespace report {

/// Elements of SVG that are drawn.
[[nodiscard]] bool isShape(QStringView name);

/// Elements whose content is printed as it stands in the page: groups. The texts of all others stay away.
[[nodiscard]] bool isGroup(QStringView name);

/// Elements that say something of the drawing and show nothing.
[[nodiscard]] bool isRemark(QStringView name);

/// Elements that are text but not printed: of other versions of SVG, and of other languages.
[[nodiscard]] bool isForeignText(QStringView name);

} // namespace report
