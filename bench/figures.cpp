#include "bench/figures.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

constexpr int kNameWidth = 44;

QString milliseconds(double value)
{
    return QString::number(value, 'f', 2).rightJustified(9);
}

} // namespace

double Samples::percentile(double percent) const
{
    if (m_values.isEmpty())
        return 0;
    QList<double> sorted = m_values;
    std::sort(sorted.begin(), sorted.end());
    const auto rank = static_cast<qsizetype>(std::ceil(percent / 100 * static_cast<double>(sorted.size())));
    return sorted[std::clamp<qsizetype>(rank, 1, sorted.size()) - 1];
}

void printHead(QTextStream &out)
{
    out << QStringLiteral("milliseconds").leftJustified(kNameWidth)
        << "     n   median      p99      max   budget\n";
}

void printFigure(QTextStream &out, const QString &name, const Samples &samples,
                 const std::optional<Budget> &budget)
{
    out << name.leftJustified(kNameWidth) << QString::number(samples.size()).rightJustified(6)
        << milliseconds(samples.median()) << milliseconds(samples.percentile(99))
        << milliseconds(samples.max());
    if (budget) {
        out << "   " << budget->median;
        if (budget->p99)
            out << " / " << *budget->p99;
        const bool kept =
            samples.median() <= budget->median && (!budget->p99 || samples.percentile(99) <= *budget->p99);
        out << (kept ? "  kept" : "  EXCEEDED");
    }
    out << '\n';
}

} // namespace bench
