#include "foreign/codepage.h"

#include <QByteArrayView>

namespace foreign {

namespace {

constexpr int kRussian = 1251;
constexpr int kRussianDos = 866;
constexpr int kRussianMac = 10007;
constexpr int kWestern = 1252;
constexpr int kWesternMac = 10000;
constexpr int kOldWesternMac = 0x8000; ///< as Excel 2 to 4 number them, and as some programs still do
constexpr int kOldWestern = 0x8001;

struct Candidates {
    int plain;   ///< the page by its number
    int russian; ///< the one that may be meant; the same where the number is taken at its word
};

Candidates candidates(int recorded)
{
    switch (recorded) {
    case 0:
    case 367:  // ASCII
    case 1200: // no page of bytes
    case kWestern:
    case kOldWestern:
        return {kWestern, kRussian};
    case 437:
    case 850:
        return {recorded, kRussianDos};
    case kWesternMac:
    case kOldWesternMac:
        return {kWesternMac, kRussianMac};
    default:
        return {recorded, recorded};
    }
}

QByteArray codecName(int page)
{
    switch (page) {
    case kRussianMac:
        return QByteArrayLiteral("x-mac-cyrillic");
    case kWesternMac:
        return QByteArrayLiteral("macintosh");
    case 20866:
        return QByteArrayLiteral("KOI8-R");
    case 21866:
        return QByteArrayLiteral("KOI8-U");
    default:
        return (page >= 1250 && page <= 1258 ? "windows-" : "IBM") + QByteArray::number(page);
    }
}

bool isCyrillic(QChar c)
{
    return c.script() == QChar::Script_Cyrillic;
}

/// Russian letters stand together; those that a Western text yields when it is read as Russian stand alone
/// among Latin ones ("Kцln").
bool readsAsRussian(CodePage page, const std::vector<QByteArray> &texts)
{
    qsizetype together = 0;
    qsizetype alone = 0;
    for (const QByteArray &bytes : texts) {
        const QString text = page.text(bytes);
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (!isCyrillic(text[i]))
                continue;
            const QChar before = i > 0 ? text[i - 1] : QChar();
            const QChar after = i + 1 < text.size() ? text[i + 1] : QChar();
            if (isCyrillic(before) || isCyrillic(after))
                ++together;
            else if (before.isLetter() || after.isLetter())
                ++alone;
        }
    }
    return together > alone;
}

QStringDecoder decoder(int page)
{
    for (const QByteArray &name : {codecName(page), codecName(kRussian)}) {
        QStringDecoder found(name.constData());
        if (found.isValid())
            return found;
    }
    return QStringDecoder(QStringDecoder::Latin1);
}

} // namespace

CodePage::CodePage(int number) : m_number(number), m_decoder(decoder(number)) {}

QString CodePage::text(const QByteArray &bytes)
{
    m_decoder.resetState();
    return m_decoder.decode(bytes);
}

CodePage CodePage::judged(int recorded, const std::vector<QByteArray> &texts)
{
    const Candidates pages = candidates(recorded);
    if (pages.plain != pages.russian && readsAsRussian(CodePage(pages.russian), texts))
        return CodePage(pages.russian);
    return CodePage(pages.plain);
}

} // namespace foreign
