#include "store/countrytable.h"

#include "store/tablewalk.h"

#include <algorithm>

namespace store {

namespace {

bool isPlainCharacter(char c) noexcept
{
    return c > ' ' && c < 0x7f && c != '\'';
}

} // namespace

CountryTable::CountryTable(Connection &countries) : m_nodes(1), m_names(1)
{
    enum : std::size_t { Prefix, Name };
    TableWalk table(countries, QStringLiteral("tbldxcc"), {QStringLiteral("prf"), QStringLiteral("strana")},
                    {});
    while (table.readChunk())
        for (std::size_t row = 0; row < table.rows(); ++row)
            if (isPlain(table.utf8(row, Prefix))) // what is not begins no callsign that is
                add(table.utf8(row, Prefix), table.utf8(row, Name));
}

bool CountryTable::isPlain(QByteArrayView call) noexcept
{
    return call.size() <= kLongest && std::all_of(call.cbegin(), call.cend(), isPlainCharacter);
}

std::size_t CountryTable::place(char c) noexcept
{
    return static_cast<std::size_t>((c >= 'a' && c <= 'z' ? c - 0x20 : c) - kFirst);
}

void CountryTable::add(QByteArrayView prefix, QByteArrayView name)
{
    std::size_t node = 0;
    for (const char c : prefix) {
        std::uint32_t next = m_nodes[node].next[place(c)];
        if (next == 0) {
            next = static_cast<std::uint32_t>(m_nodes.size());
            m_nodes[node].next[place(c)] = next;
            m_nodes.emplace_back();
        }
        node = next;
    }
    Node &end = m_nodes[node];
    if (end.taken)
        return;
    end.taken = true;
    if (!name.isEmpty()) {
        end.name = m_names.size();
        m_names.append(name.toByteArray());
    }
}

const QByteArray &CountryTable::of(QByteArrayView call) const
{
    std::size_t node = 0;
    qsizetype name = 0;
    for (const char c : call) {
        if (!isPlainCharacter(c))
            break;
        node = m_nodes[node].next[place(c)];
        if (node == 0)
            break;
        if (m_nodes[node].name != 0)
            name = m_nodes[node].name;
    }
    return m_names[name];
}

} // namespace store
