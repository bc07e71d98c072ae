#include "report/elementnames.h"

#include <algorithm>
#include <array>

namespace report {

namespace {

template <std::size_t Size>
bool isOneOf(const std::array<const char16_t *, Size> &names, QStringView name)
{
    return std::any_of(names.begin(), names.end(),
                       [name](const char16_t *known) { return name == QStringView(known); });
}

} // namespace

bool isShape(QStringView name)
{
    constexpr std::array<const char16_t *, 9> kShapes = {
        u"path", u"rect", u"line", u"circle", u"ellipse", u"polyline", u"polygon", u"image", u"use"};
    return isOneOf(kShapes, name);
}

bool isGroup(QStringView name)
{
    constexpr std::array<const char16_t *, 3> kGroups = {u"g", u"a", u"switch"};
    return isOneOf(kGroups, name);
}

bool isRemark(QStringView name)
{
    constexpr std::array<const char16_t *, 5> kRemarks = {u"title", u"desc", u"metadata", u"style",
                                                          u"script"};
    return isOneOf(kRemarks, name);
}

bool isForeignText(QStringView name)
{
    constexpr std::array<const char16_t *, 2> kTexts = {u"foreignObject", u"flowRoot"};
    return isOneOf(kTexts, name);
}

} // namespace report
