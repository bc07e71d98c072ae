#include "foreign/decimal.h"

#include <algorithm>

namespace foreign {

Decimal::Decimal(double magnitude)
{
    constexpr int kDigitsAfterFirst = 14;
    const QByteArray text = QByteArray::number(magnitude, 'e', kDigitsAfterFirst); // d.ddde+xx
    const qsizetype mark = text.indexOf('e');
    m_digits = text.left(1) + text.mid(2, mark - 2);
    m_point = text.mid(mark + 1).toInt() + 1;
    trim();
}

void Decimal::trim()
{
    while (m_digits.endsWith('0'))
        m_digits.chop(1);
    qsizetype zeros = 0;
    while (zeros < m_digits.size() && m_digits[zeros] == '0')
        ++zeros;
    m_digits.remove(0, zeros);
    m_point -= static_cast<int>(zeros);
    if (m_digits.isEmpty())
        m_point = 0;
}

void Decimal::round(int decimals)
{
    const qsizetype kept = qsizetype{m_point} + decimals;
    if (kept >= m_digits.size())
        return;
    const bool up = kept >= 0 && m_digits[kept] >= '5';
    m_digits.truncate(std::max<qsizetype>(kept, 0));
    if (up) {
        m_digits.prepend('0'); // room for a carry
        ++m_point;
        qsizetype at = m_digits.size() - 1;
        while (m_digits[at] == '9')
            m_digits[at--] = '0';
        ++m_digits[at];
    }
    trim();
}

QByteArray Decimal::whole() const
{
    if (m_point <= 0)
        return {};
    return m_digits.left(m_point).leftJustified(m_point, '0');
}

char Decimal::decimal(int index) const
{
    const qsizetype at = qsizetype{m_point} + index;
    return at >= 0 && at < m_digits.size() ? m_digits[at] : '0';
}

} // namespace foreign
