// Any bytes are a country file that is whole and within its limits, or they are refused with words.
// Seeds: the files in tests/data/country.
#include "foreign/countryfile.h"

#include <algorithm>
#include <cstdint>

namespace {

void demand(bool holds)
{
    if (!holds)
        __builtin_trap();
}

bool isKeyCharacter(QChar c)
{
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('/');
}

void checkPosition(const foreign::CountryPosition &position)
{
    demand(position.latitude >= -90 && position.latitude <= 90);
    demand(position.longitude >= -180 && position.longitude <= 180);
}

void checkKey(const foreign::CountryKey &key, qint64 firstLine)
{
    demand(!key.text.isEmpty() && std::all_of(key.text.cbegin(), key.text.cend(), isKeyCharacter));
    demand(key.line >= firstLine);
    demand(!key.cqZone || (*key.cqZone >= 1 && *key.cqZone <= 40));
    demand(!key.ituZone || (*key.ituZone >= 1 && *key.ituZone <= 90));
    demand(key.continent.isEmpty() || key.continent.size() == 2);
    if (key.position)
        checkPosition(*key.position);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(data, qsizetype(size));
    try {
        const foreign::CountryFile file = foreign::readCountries(bytes);
        demand(!file.entities.isEmpty());
        qint64 line = 0;
        for (const foreign::CountryEntity &entity : file.entities) {
            demand(entity.line >= line);
            line = entity.line;
            demand(!entity.name.isEmpty() && !entity.prefix.isEmpty() && !entity.keys.isEmpty());
            demand(entity.cqZone >= 1 && entity.ituZone >= 1 && entity.continent.size() == 2);
            checkPosition(entity.position);
            for (const foreign::CountryKey &key : entity.keys)
                checkKey(key, entity.line);
        }
    } catch (const foreign::Error &error) {
        demand(!error.text().isEmpty());
    }
    return 0;
}
