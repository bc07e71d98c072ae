#include "base/bandplan.h"

#include "base/number.h"

#include <algorithm>
#include <array>

namespace base {

namespace {

// Ends are a little wider than the bands where loggers write round frequencies or stations sit at the edge.
constexpr std::array<Band, 29> kBands = {{
    {u"1,8", "160M", 1.8, 2.0},
    {u"3,5", "80M", 3.5, 4.0},
    {u"7", "40M", 7.0, 7.3},
    {u"14", "20M", 14.0, 14.35},
    {u"21", "15M", 21.0, 21.45},
    {u"28", "10M", 28.0, 29.7},
    {u"10", "30M", 10.1, 10.15},
    {u"18", "17M", 18.06, 18.17},
    {u"24", "12M", 24.88, 25.0},
    {u"144", "2M", 144.0, 148.0},
    {u"430", "70CM", 420.0, 450.0},
    {u"1200", "23CM", 1240.0, 1300.0},
    {u"0,136", "2190M", 0.1357, 0.1378},
    {u"0,472", "630M", 0.472, 0.479},
    {u"0,5", "560M", 0.501, 0.504},
    {u"5", "60M", 5.06, 5.45},
    {u"40", "8M", 40.0, 45.0},
    {u"50", "6M", 50.0, 54.0},
    {u"54", "5M", 54.000001, 69.9},
    {u"70", "4M", 70.0, 71.0},
    {u"220", "1.25M", 222.0, 225.0},
    {u"900", "33CM", 902.0, 928.0},
    {u"2300", "13CM", 2300.0, 2450.0},
    {u"3400", "9CM", 3300.0, 3499.999},
    {u"5600", "6CM", 5650.0, 5925.0},
    {u"10000", "3CM", 10000.0, 10500.0},
    {u"24000", "1.25CM", 24000.0, 24250.0},
    {u"47000", "6MM", 47000.0, 47200.0},
    {u"76000", "4MM", 75500.0, 81000.0},
}};

constexpr double kShortWaveEnd = 30.0; // MHz

const Band *bandAt(double megahertz, double below = 1e9)
{
    const auto found = std::find_if(kBands.begin(), kBands.end(), [&](const Band &band) {
        return megahertz >= band.low && megahertz <= band.high && band.high < below;
    });
    return found == kBands.end() ? nullptr : &*found;
}

} // namespace

std::span<const Band> bandPlan() noexcept
{
    return kBands;
}

const Band *bandOfAdifName(QStringView name) noexcept
{
    const auto found = std::find_if(kBands.begin(), kBands.end(), [&](const Band &band) {
        return name.compare(QLatin1String(band.adif), Qt::CaseInsensitive) == 0;
    });
    return found == kBands.end() ? nullptr : &*found;
}

const Band *bandOfLabel(QStringView label) noexcept
{
    const auto same = [&](const Band &band) {
        const QStringView known(band.label);
        if (known.size() != label.size())
            return false;
        return std::equal(known.begin(), known.end(), label.begin(), [](QChar a, QChar b) {
            return a == b || (a == QLatin1Char(',') && b == QLatin1Char('.'));
        });
    };
    const auto found = std::find_if(kBands.begin(), kBands.end(), same);
    return found == kBands.end() ? nullptr : &*found;
}

const Band *bandOfFrequency(QStringView text)
{
    constexpr double kKilo = 1e3;
    constexpr double kMega = 1e6;
    constexpr double kLeastKilohertz = 1800.0; // below it a plain number of MHz is meant
    text = text.trimmed();
    if (const Band *band = bandOfLabel(text))
        return band;
    const auto number = parseNumber(text);
    if (!number || *number <= 0.0)
        return nullptr;
    if (*number >= kLeastKilohertz)
        if (const Band *band = bandAt(*number / kKilo, kShortWaveEnd))
            return band;
    if (const Band *band = bandAt(*number))
        return band;
    if (*number < kLeastKilohertz)
        return nullptr;
    if (const Band *band = bandAt(*number / kKilo))
        return band;
    return bandAt(*number / kMega);
}

} // namespace base
