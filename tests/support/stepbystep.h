#pragma once

#include "base/number.h"
#include "calc/calculator.h"

#include <QRegularExpression>
#include <QString>

#include <cmath>

namespace testsupport {

/// The same calculator told at full length, every variable and every step by itself, to hold the real one
/// against. It knows the keys only.
class StepByStep {
public:
    QString display;
    QString memory;
    QString pending;
    double accumulator = 0.0;

    [[nodiscard]] double operand() const { return m_follows ? value(display) : m_operand; }

    calc::Fault press(const QString &key)
    {
        const StepByStep before = *this;
        m_fault = calc::Fault::None;
        if (QLatin1String("0123456789,").contains(key) && key.size() == 1)
            digit(key);
        else if (QStringLiteral("+-*/C").contains(key) && key.size() == 1)
            operation(key);
        else if (key == QLatin1String("="))
            equals();
        else if (key == QLatin1String("MC"))
            memory.clear();
        else if (key == QLatin1String("show")) {
            display.clear();
            m_comma = 0;
        } else
            function(key);
        if (key != QLatin1String("show")) // no key
            m_afterOperator = QStringLiteral("+-*/").contains(key) && key.size() == 1;
        const calc::Fault fault = m_fault;
        if (fault != calc::Fault::None) {
            *this = before;
            if (key.size() > 1)
                m_comma = 0;
            m_afterOperator = false;
        }
        return fault;
    }

    static double value(const QString &text)
    {
        static const QRegularExpression number(
            QStringLiteral("^-?(?:[0-9]+,?[0-9]*|,[0-9]+)(?:e[+-]?[0-9]+)?"));
        return number.match(text).captured().replace(QLatin1Char(','), QLatin1Char('.')).toDouble();
    }

private:
    void digit(QString key)
    {
        if (!m_mark.isEmpty())
            display.clear();
        const bool comma = key == QLatin1String(",");
        if (comma && m_comma == 1)
            key.clear();
        display += key;
        if (comma)
            m_comma = 1;
        if (display.startsWith(QLatin1Char(',')))
            display = QStringLiteral("0,");
        m_mark.clear();
        m_follows = true;
    }

    void operation(const QString &key)
    {
        m_mark = key;
        if (m_afterOperator && key != QLatin1String("C")) {
            pending = key;
            m_comma = 0;
            return;
        }
        if (pending.isEmpty())
            pending = key;
        m_operand = value(display);
        m_follows = false;
        if (key == QLatin1String("C")) {
            m_operand = 0.0;
            accumulator = 0.0;
            display.clear();
            pending.clear();
            m_mark.clear();
        } else if (!std::isfinite(m_operand)) {
            m_fault = calc::Fault::TooLarge;
        } else if (accumulator == 0.0) {
            accumulator = m_operand;
            m_operand = 0.0;
            display.clear();
        } else if (m_operand != 0.0) {
            compute();
            display = written(m_result);
            accumulator = m_result;
            m_operand = 0.0;
            m_result = 0.0;
            pending.clear();
        }
        pending = m_mark;
        m_comma = 0;
    }

    void equals()
    {
        m_operand = operand();
        m_follows = false;
        if (!std::isfinite(m_operand))
            m_fault = calc::Fault::TooLarge;
        else
            compute();
        display = written(m_result);
        m_operand = 0.0;
        accumulator = 0.0;
        m_result = 0.0;
        pending.clear();
        m_mark = QStringLiteral("xx");
        m_comma = 0;
    }

    void compute()
    {
        if (pending == QLatin1String("/") && m_operand != 0.0)
            m_result = accumulator / m_operand;
        if (pending == QLatin1String("*"))
            m_result = accumulator * m_operand;
        if (pending == QLatin1String("+"))
            m_result = m_operand + accumulator;
        if (pending == QLatin1String("-"))
            m_result = accumulator - m_operand;
    }

    void function(const QString &key)
    {
        m_comma = 0;
        if (key == QLatin1String("00>0")) {
            if (!display.isEmpty())
                display.remove(display.size() - 1, 1);
            return;
        }
        if (display.isEmpty() || display == QLatin1String("0"))
            return;
        const double number = value(display);
        if (!std::isfinite(number)) {
            m_fault = calc::Fault::TooLarge;
        } else if (key == QLatin1String("+/-")) {
            display = written(-number);
        } else if (key == QLatin1String("M+")) {
            memory = memory.isEmpty() ? display : written(value(memory) + number);
        } else if (key == QLatin1String("M-")) {
            if (memory.isEmpty())
                m_fault = calc::Fault::MemoryEmpty;
            else
                memory = written(value(memory) - number);
        } else if (number < 0.0) {
            m_fault = calc::Fault::NegativeRoot;
        } else {
            display = written(std::sqrt(number));
        }
    }

    QString written(double number)
    {
        QString text = std::isfinite(number) ? base::formatNumber(number) : QString();
        if (!std::isfinite(number) || !std::isfinite(value(text)))
            m_fault = calc::Fault::TooLarge;
        return text;
    }

    QString m_mark;
    double m_operand = 0.0;
    double m_result = 0.0;
    int m_comma = 0;
    bool m_follows = false;
    bool m_afterOperator = false;
    calc::Fault m_fault = calc::Fault::None;
};

} // namespace testsupport
