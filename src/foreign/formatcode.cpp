#include "foreign/formatcode.h"

namespace foreign {

FormatCode::What FormatCode::next()
{
    m_text.clear();
    while (m_at < m_code.size()) {
        const QChar c = m_code[m_at++];
        switch (c.unicode()) {
        case u'"':
            m_text = until(u'"');
            return What::Literal;
        case u'\\':
            if (m_at < m_code.size())
                m_text = m_code[m_at++];
            return What::Literal;
        case u'_':
        case u'*':
            ++m_at;
            continue;
        case u'[':
            m_text = until(u']');
            return What::Bracket;
        default:
            m_text = c;
            return What::Sign;
        }
    }
    return What::End;
}

QString FormatCode::until(char16_t end)
{
    const qsizetype begin = m_at;
    while (m_at < m_code.size() && m_code[m_at] != end)
        ++m_at;
    QString inside = m_code.mid(begin, m_at - begin).toString();
    ++m_at;
    return inside;
}

bool FormatCode::follows(QStringView word) const
{
    return m_code.mid(m_at, word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

qsizetype FormatCode::generalLength() const
{
    return foreign::generalLength(m_code.mid(m_at - 1));
}

qsizetype generalLength(QStringView code)
{
    for (const QStringView name : {QStringView(u"General"), QStringView(u"Основной")})
        if (code.startsWith(name, Qt::CaseInsensitive))
            return name.size();
    return 0;
}

} // namespace foreign
