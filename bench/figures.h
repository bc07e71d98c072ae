#pragma once

#include <QList>
#include <QString>
#include <QTextStream>

#include <optional>

namespace bench {

/// Measured values of one kind, in milliseconds.
class Samples {
public:
    void add(double milliseconds) { m_values.append(milliseconds); }
    void add(const Samples &others) { m_values += others.m_values; }

    [[nodiscard]] qsizetype size() const noexcept { return m_values.size(); }
    /// The smallest value that `percent` of all values do not exceed (nearest rank); 0 without values.
    [[nodiscard]] double percentile(double percent) const;
    [[nodiscard]] double median() const { return percentile(50); }
    [[nodiscard]] double max() const { return percentile(100); }

private:
    QList<double> m_values;
};

/// What a figure may take at a million contacts, in milliseconds.
struct Budget {
    double median;
    std::optional<double> p99;
};

void printHead(QTextStream &out);
/// One line: number of samples, median, 99th percentile, maximum, budget and whether it is kept.
void printFigure(QTextStream &out, const QString &name, const Samples &samples,
                 const std::optional<Budget> &budget = {});

} // namespace bench
