#include "interchange/heldcontacts.h"

#include "base/text.h"
#include "foreign/textcoding.h"
#include "store/tablewalk.h"

#include <QHashFunctions>

#include <algorithm>

namespace interchange {

namespace {

Fingerprint contactPrint(QByteArrayView call, QByteArrayView date, QByteArrayView band)
{
    constexpr char kBetween = '\x1f';
    QByteArray text;
    text.reserve(call.size() + date.size() + band.size() + 2);
    if (foreign::isAscii(call))
        for (const char c : call)
            text.append(c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c);
    else
        text.append(base::foldCase(QString::fromUtf8(call)).toUtf8());
    text.append(kBetween).append(date).append(kBetween).append(band);
    return fingerprint(text);
}

} // namespace

Fingerprint fingerprint(QByteArrayView text)
{
    constexpr std::size_t kFirstSeed = 0x5be0cd19;
    constexpr std::size_t kSecondSeed = 0x9b05688c;
    const auto size = static_cast<std::size_t>(text.size());
    return {qHashBits(text.data(), size, kFirstSeed), qHashBits(text.data(), size, kSecondSeed)};
}

HeldContacts::HeldContacts(store::Connection &log, const QString &table)
{
    enum : std::size_t { Call, Date, Band };
    store::TableWalk walk(log, table,
                          {QStringLiteral("ccall"), QStringLiteral("ddate"), QStringLiteral("bband")}, {});
    m_contacts.reserve(static_cast<std::size_t>(walk.total()));
    while (walk.readChunk())
        for (std::size_t row = 0; row < walk.rows(); ++row)
            m_contacts.push_back(
                contactPrint(walk.utf8(row, Call), walk.utf8(row, Date), walk.utf8(row, Band)));
    std::sort(m_contacts.begin(), m_contacts.end());
}

bool HeldContacts::contains(QByteArrayView call, QByteArrayView date, QByteArrayView band) const
{
    return !m_contacts.empty() &&
           std::binary_search(m_contacts.begin(), m_contacts.end(), contactPrint(call, date, band));
}

} // namespace interchange
