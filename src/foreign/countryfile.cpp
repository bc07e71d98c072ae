#include "foreign/countryfile.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <array>

namespace foreign {

namespace {

constexpr qint64 kLargestFile = 16LL * 1024 * 1024;
constexpr qsizetype kMostKeys = 300'000; ///< real files have a tenth of it
constexpr qsizetype kLongestName = 64;
constexpr qsizetype kLongestPrefix = 12;
constexpr qsizetype kLongestKey = 20;
constexpr qsizetype kLongestItem = 80; ///< a key with all that it may carry
constexpr qsizetype kLongestNumber = 10;
constexpr int kMostCq = 40;
constexpr int kMostItu = 90;
constexpr double kMostOffset = 15;

bool isUpper(char c) noexcept
{
    return c >= 'A' && c <= 'Z';
}

bool isLower(char c) noexcept
{
    return c >= 'a' && c <= 'z';
}

bool isDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isKeyCharacter(char c) noexcept
{
    return isUpper(c) || isLower(c) || isDigit(c) || c == '/';
}

/// Letters, digits and "/", not slashes alone.
bool isKeyText(QByteArrayView text) noexcept
{
    return std::all_of(text.begin(), text.end(), isKeyCharacter) &&
           std::any_of(text.begin(), text.end(), [](char c) { return c != '/'; });
}

QString upper(QByteArrayView text)
{
    return QString::fromLatin1(text).toUpper();
}

/// A piece of the file for a message: short and printable.
QString shown(QByteArrayView bytes)
{
    constexpr qsizetype kShown = 24;
    const QString text =
        bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes.data(), bytes.size());
    const QString simple = text.simplified();
    return simple.size() > kShown ? simple.left(kShown) + QStringLiteral("…") : simple;
}

/// Digits with a decimal point, no exponents or words; blanks around it do not count.
std::optional<double> decimalNumber(QByteArrayView text)
{
    text = text.trimmed();
    QByteArrayView digits = text;
    if (!digits.isEmpty() && (digits.front() == '-' || digits.front() == '+'))
        digits = digits.sliced(1);
    const auto points = std::count(digits.begin(), digits.end(), '.');
    if (text.size() > kLongestNumber || points > 1 || digits.size() == points ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return isDigit(c) || c == '.'; }))
        return std::nullopt;
    bool good = false;
    const double value = text.toDouble(&good);
    return good ? std::optional(value) : std::nullopt;
}

class Parser {
public:
    explicit Parser(QByteArrayView bytes) : m_bytes(bytes) {}

    CountryFile read()
    {
        CountryFile file;
        skipBlanks();
        while (m_at < m_bytes.size()) {
            file.entities.append(record());
            skipBlanks();
        }
        if (file.entities.isEmpty())
            throw Error(QStringLiteral("файл пуст"));
        file.issued = m_issued;
        return file;
    }

private:
    [[noreturn]] void fail(const QString &what) const { failIn(m_line, what); }
    [[noreturn]] static void failIn(qint64 line, const QString &what)
    {
        throw Error(QStringLiteral("строка %1: ").arg(line) + what);
    }

    /// Passes a character.
    void pass()
    {
        if (m_bytes[m_at++] == '\n')
            ++m_line;
    }

    /// Blanks, and lines of remarks between them.
    void skipBlanks()
    {
        while (m_at < m_bytes.size() && (isBlank(m_bytes[m_at]) || atRemark())) {
            if (m_bytes[m_at] == '#')
                while (m_at < m_bytes.size() && m_bytes[m_at] != '\n')
                    ++m_at;
            else
                pass();
        }
    }

    /// At a "#" with nothing before it in its line.
    [[nodiscard]] bool atRemark() const
    {
        if (m_bytes[m_at] != '#')
            return false;
        qsizetype begin = m_at;
        while (begin > 0 && m_bytes[begin - 1] != '\n' && isBlank(m_bytes[begin - 1]))
            --begin;
        return begin == 0 || m_bytes[begin - 1] == '\n';
    }

    CountryEntity record()
    {
        CountryEntity entity;
        entity.line = m_line;
        header(entity);
        while (!key(entity)) {
        }
        if (entity.keys.isEmpty())
            failIn(entity.line, QStringLiteral("у страны «%1» нет ни одного префикса").arg(entity.name));
        return entity;
    }

    void header(CountryEntity &entity)
    {
        enum { Name, Cq, Itu, Continent, Latitude, Longitude, Offset, Prefix, Fields };
        std::array<QByteArrayView, Fields> fields;
        for (QByteArrayView &field : fields) {
            const qsizetype begin = m_at;
            while (m_at < m_bytes.size() && m_bytes[m_at] != ':' && m_bytes[m_at] != '\n' &&
                   m_bytes[m_at] != ';')
                ++m_at;
            if (m_at == m_bytes.size() || m_bytes[m_at] != ':')
                fail(QStringLiteral("это не запись страны: в ней должно быть восемь полей с двоеточиями"));
            field = m_bytes.sliced(begin, m_at - begin).trimmed();
            ++m_at;
        }
        entity.name = name(fields[Name]);
        entity.cqZone = cqZone(fields[Cq]);
        entity.ituZone = ituZone(fields[Itu]);
        entity.continent = continent(fields[Continent]);
        entity.position = position(fields[Latitude], fields[Longitude]);
        entity.offset = offset(fields[Offset]);
        primaryPrefix(entity, fields[Prefix]);
    }

    QString name(QByteArrayView text) const
    {
        QString name =
            (m_utf8 ? QString::fromUtf8(text) : QString::fromLatin1(text.data(), text.size())).simplified();
        if (name.isEmpty())
            fail(QStringLiteral("у страны нет названия"));
        if (name.size() > kLongestName)
            fail(QStringLiteral("слишком длинное название страны: ") + shown(text));
        return name;
    }

    int zone(QByteArrayView text, int most, const QString &what) const
    {
        const QByteArrayView digits = text.trimmed();
        int value = 0;
        if (digits.size() <= 2 && std::all_of(digits.begin(), digits.end(), isDigit))
            for (const char c : digits)
                value = 10 * value + (c - '0');
        if (value < 1 || value > most)
            fail(QStringLiteral("зона %1 должна быть числом от 1 до %2, а не «%3»")
                     .arg(what, QString::number(most), shown(text)));
        return value;
    }
    int cqZone(QByteArrayView text) const { return zone(text, kMostCq, QStringLiteral("CQ")); }
    int ituZone(QByteArrayView text) const { return zone(text, kMostItu, QStringLiteral("ITU")); }

    QString continent(QByteArrayView text) const
    {
        static constexpr std::array<const char *, 7> kContinents = {"AF", "AN", "AS", "EU", "NA", "OC", "SA"};
        const QByteArray code = text.trimmed().toByteArray().toUpper();
        if (std::find(kContinents.begin(), kContinents.end(), code) == kContinents.end())
            fail(QStringLiteral("неизвестный континент «%1»").arg(shown(text)));
        return QString::fromLatin1(code);
    }

    double number(QByteArrayView text, double most, const QString &what) const
    {
        const std::optional<double> value = decimalNumber(text);
        if (!value || *value < -most || *value > most)
            fail(QStringLiteral("%1 «%2»: нужно число от -%3 до %3")
                     .arg(what, shown(text), QString::number(most)));
        return *value;
    }
    double offset(QByteArrayView text) const
    {
        return number(text, kMostOffset, QStringLiteral("сдвиг времени"));
    }
    CountryPosition position(QByteArrayView latitude, QByteArrayView longitude) const
    {
        const double north = number(latitude, 90, QStringLiteral("широта"));
        const double west = number(longitude, 180, QStringLiteral("долгота"));
        return {north, 0 - west}; // no minus zero
    }

    void primaryPrefix(CountryEntity &entity, QByteArrayView text)
    {
        entity.starred = !text.isEmpty() && text.front() == '*';
        const QByteArrayView prefix = entity.starred ? text.sliced(1).trimmed() : text;
        if (prefix.size() > kLongestPrefix || !isKeyText(prefix))
            fail(QStringLiteral("неверный основной префикс «%1»").arg(shown(text)));
        entity.prefix = QString::fromLatin1(prefix.data(), prefix.size());
        const auto known = m_prefixes.constFind(upper(prefix));
        if (known != m_prefixes.cend())
            fail(QStringLiteral("основной префикс %1 уже был в строке %2")
                     .arg(entity.prefix, QString::number(*known)));
        m_prefixes.insert(upper(prefix), m_line);
    }

    /// Reads a key and the sign behind it; true where that ends the record.
    bool key(CountryEntity &entity)
    {
        skipBlanks();
        const qint64 line = m_line;
        const qsizetype begin = m_at;
        while (m_at < m_bytes.size() && m_bytes[m_at] != ',' && m_bytes[m_at] != ';') {
            if (m_at - begin > kLongestItem)
                failIn(line, QStringLiteral("слишком длинный префикс: ") +
                                 shown(m_bytes.sliced(begin, kLongestItem)));
            pass();
        }
        if (m_at == m_bytes.size())
            failIn(line,
                   QStringLiteral("файл обрывается: запись страны «%1» (строка %2) не закончена точкой с "
                                  "запятой")
                       .arg(entity.name, QString::number(entity.line)));
        const bool last = m_bytes[m_at] == ';';
        const QByteArrayView item = m_bytes.sliced(begin, m_at - begin).trimmed();
        ++m_at;
        if (!takeIssue(item))
            entity.keys.append(keyOf(item, line));
        if (++m_keys > kMostKeys)
            fail(QStringLiteral("слишком много префиксов"));
        return last;
    }

    /// An entry that names the issue of the file.
    bool takeIssue(QByteArrayView item)
    {
        const QString text = upper(item);
        if (!text.startsWith(QLatin1String("=VER")))
            return false;
        if (text == QLatin1String("=VERSION"))
            return true;
        const QDate day = QDate::fromString(text.mid(4), QStringLiteral("yyyyMMdd"));
        if (day.isValid())
            m_issued = day;
        return day.isValid();
    }

    /// The rest of `item` behind a key is one thing after another in brackets of their own.
    CountryKey keyOf(QByteArrayView item, qint64 line)
    {
        const qint64 after = m_line;
        m_line = line; // what is wrong with it is wrong there
        CountryKey key;
        key.line = line;
        key.exact = !item.isEmpty() && item.front() == '=';
        QByteArrayView rest = key.exact ? item.sliced(1) : item;
        const auto end = std::find_if_not(rest.begin(), rest.end(), isKeyCharacter);
        const QByteArrayView text = rest.first(end - rest.begin());
        if (text.size() > kLongestKey || !isKeyText(text))
            fail(item.isEmpty() ? QStringLiteral("между запятыми ничего нет")
                                : QStringLiteral("неверный префикс «%1»").arg(shown(item)));
        key.text = upper(text);
        rest = rest.sliced(text.size());
        while (!rest.isEmpty())
            rest = rest.sliced(takeOverride(key, rest, item));
        m_line = after;
        return key;
    }

    /// Gives the length of what has been taken from the beginning of `rest`.
    qsizetype takeOverride(CountryKey &key, QByteArrayView rest, QByteArrayView item) const
    {
        const char open = rest.front();
        const char close = closing(open);
        const qsizetype end = close == 0 ? -1 : rest.indexOf(close, 1);
        if (end < 0)
            fail(QStringLiteral("неверный префикс «%1»").arg(shown(item)));
        const QByteArrayView inside = rest.sliced(1, end - 1);
        bool again = false;
        switch (open) {
        case '(':
            again = key.cqZone.has_value();
            key.cqZone = cqZone(inside);
            break;
        case '[':
            again = key.ituZone.has_value();
            key.ituZone = ituZone(inside);
            break;
        case '{':
            again = !key.continent.isEmpty();
            key.continent = continent(inside);
            break;
        case '~':
            again = key.offset.has_value();
            key.offset = offset(inside);
            break;
        default:
            again = key.position.has_value();
            key.position = pointOf(inside);
        }
        if (again)
            fail(QStringLiteral("в префиксе «%1» одно и то же указано дважды").arg(shown(item)));
        return end + 1;
    }

    CountryPosition pointOf(QByteArrayView inside) const
    {
        const qsizetype slash = inside.indexOf('/');
        if (slash < 0)
            fail(QStringLiteral("координаты «%1»: нужны широта и долгота через дробь").arg(shown(inside)));
        return position(inside.first(slash), inside.sliced(slash + 1));
    }

    static char closing(char open) noexcept
    {
        switch (open) {
        case '(':
            return ')';
        case '[':
            return ']';
        case '{':
            return '}';
        case '<':
            return '>';
        case '~':
            return '~';
        default:
            return 0;
        }
    }

    QByteArrayView m_bytes;
    bool m_utf8 = m_bytes.isValidUtf8();
    qsizetype m_at = 0;
    qint64 m_line = 1;
    qsizetype m_keys = 0;
    QHash<QString, qint64> m_prefixes; ///< primary prefix in upper case to its line
    std::optional<QDate> m_issued;
};

/// Old editors end a text with Ctrl+Z.
QByteArrayView withoutEndSign(QByteArrayView bytes)
{
    constexpr char kEndSign = '\x1a';
    const QByteArrayView text = bytes.trimmed();
    return text.endsWith(kEndSign) ? bytes.first(text.end() - bytes.begin() - 1) : bytes;
}

/// Line of the first byte that no text has; 0 where all are text.
qint64 lineOfBinary(QByteArrayView bytes)
{
    qint64 line = 1;
    for (const char c : bytes) {
        if (c == '\n')
            ++line;
        if ((static_cast<unsigned char>(c) < ' ' && !isBlank(c)) || c == 0x7f)
            return line;
    }
    return 0;
}

} // namespace

CountryFile readCountries(QByteArrayView bytes)
{
    if (bytes.size() > kLargestFile)
        throw Error(QStringLiteral("файл больше 16 МБ"));
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    bytes = withoutEndSign(bytes);
    if (const qint64 line = lineOfBinary(bytes); line != 0)
        throw Error(QStringLiteral("строка %1: это не текст").arg(line));
    if (bytes.trimmed().startsWith('<'))
        throw Error(QStringLiteral("строка 1: это файл XML, а нужен список стран в виде простого текста"));
    return Parser(bytes).read();
}

CountryFile readCountriesFile(const QString &path)
{
    if (QFileInfo(path).isDir())
        throw Error(QStringLiteral("это папка"));
    QFile file(path);
    if (!file.exists())
        throw Error(QStringLiteral("файла нет"));
    if (!file.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("файл не открывается, проверьте права доступа"));
    const QByteArray bytes = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        throw Error(QStringLiteral("ошибка чтения с диска"));
    return readCountries(bytes);
}

} // namespace foreign
