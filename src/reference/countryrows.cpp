#include "reference/countryrows.h"

#include "base/number.h"
#include "reference/sql.h"

#include <QCryptographicHash>

#include <algorithm>

namespace reference {

CountryRows::CountryRows(store::Connection &countries)
{
    enum { Key, Prf, Pref, Strana, Kont, Cq, Iaru, GradN, GradE, Dolg, Shir, Own, Columns };
    QCryptographicHash state(QCryptographicHash::Sha256);
    store::Cursor cursor = countries.run(sql::countryRows());
    while (cursor.next()) {
        QByteArray texts;
        for (int column = 0; column < Columns; ++column) {
            const QByteArrayView text = cursor.utf8(column);
            texts.append(QByteArray::number(text.size())).append(':').append(text.data(), text.size());
        }
        state.addData(texts);
        m_rows.push_back({cursor.number(Key),
                          {cursor.text(Prf), cursor.text(Pref), cursor.text(Strana), cursor.text(Kont),
                           cursor.text(Cq), cursor.text(Iaru), cursor.text(GradN), cursor.text(GradE),
                           cursor.text(Dolg), cursor.text(Shir)},
                          !cursor.utf8(Own).isEmpty()});
        index(m_rows.size() - 1);
    }
    m_state = state.result();
}

void CountryRows::index(std::size_t number)
{
    const StoredCountryRow &stored = m_rows[number];
    const QString prf = stored.row.prf.toUpper();
    if (m_byPrf.contains(prf))
        m_repeated.insert(prf);
    else
        m_byPrf.insert(prf, number);
    if (stored.own)
        m_own.insert(prf);
    const QString name = folded(stored.row.strana);
    if (!name.isEmpty())
        m_names.insert(name);
    const QString pref = folded(stored.row.pref);
    if (pref.isEmpty())
        return;
    Country &country = m_countries[pref];
    if (country.pref.isEmpty())
        country.pref = stored.row.pref;
    if (!name.isEmpty() && (country.name.isEmpty() || (country.nameIsOwn && !stored.own))) {
        country.name = stored.row.strana;
        country.nameIsOwn = stored.own;
    }
}

const StoredCountryRow *CountryRows::row(const QString &prf) const
{
    const auto found = m_byPrf.constFind(prf);
    return found == m_byPrf.cend() ? nullptr : &m_rows[*found];
}

const CountryRows::Country *CountryRows::country(const QString &pref) const
{
    const auto found = m_countries.constFind(pref);
    return found == m_countries.cend() ? nullptr : &*found;
}

QString folded(const QString &text)
{
    return text.trimmed().toUpper();
}

bool isCountryKey(const QString &prf)
{
    return !prf.isEmpty() && std::all_of(prf.cbegin(), prf.cend(), [](QChar c) {
        const char16_t code = c.unicode();
        return (code >= u'A' && code <= u'Z') || (code >= u'a' && code <= u'z') ||
               (code >= u'0' && code <= u'9') || code == u'/';
    });
}

std::optional<Coordinates> coordinates(const CountryRow &row)
{
    const std::optional<double> latitude = base::parseNumber(row.shir);
    const std::optional<double> longitude = base::parseNumber(row.dolg);
    if (!latitude || !longitude)
        return std::nullopt;
    return Coordinates{*latitude, *longitude};
}

QString degreesText(double degrees)
{
    QString text = QString::number(degrees, 'f', 2).replace(QLatin1Char('.'), QLatin1Char(','));
    return text == QLatin1String("-0,00") ? text.sliced(1) : text;
}

bool samePlace(const Coordinates &a, const Coordinates &b)
{
    return degreesText(a.latitude) == degreesText(b.latitude) &&
           degreesText(a.longitude) == degreesText(b.longitude);
}

void setCoordinates(CountryRow &row, const Coordinates &place)
{
    row.gradN = row.shir = degreesText(place.latitude);
    row.gradE = row.dolg = degreesText(place.longitude);
}

} // namespace reference
