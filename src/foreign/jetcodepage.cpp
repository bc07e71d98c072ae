#include "foreign/jetcodepage.h"

#include <QStringDecoder>

#include <algorithm>

namespace foreign {

namespace {

constexpr int kWindowsCyrillic = 1251;
constexpr int kDosCyrillic = 866;
constexpr int kBytesAsTheyAre = 28591; // ISO 8859-1: byte and character have the same number

QStringDecoder decoderOf(int codePage)
{
    constexpr int kFirstWindows = 1250;
    constexpr int kLastWindows = 1258;
    const bool windows = codePage >= kFirstWindows && codePage <= kLastWindows;
    const QByteArray name = (windows ? "windows-" : "cp") + QByteArray::number(codePage);
    return QStringDecoder(name.constData());
}

bool hasNonAscii(const QByteArray &text)
{
    return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<uchar>(c) >= 0x80; });
}

/// How much a Cyrillic letter speaks for Russian text: wrong pages turn the frequent letters into rare ones.
double letterWeight(QChar c)
{
    static const QString kFrequent = QStringLiteral("оеаинтсрвлкмдпуяызьбг");
    static const QString kRare = QStringLiteral("чйхжшюцщэфъё");
    static const QString kNeighbours = QStringLiteral("іїєґў");
    constexpr double kRareWeight = 0.3;
    const QChar low = c.toLower();
    if (kFrequent.contains(low))
        return 1;
    return kRare.contains(low) || kNeighbours.contains(low) ? kRareWeight : -1;
}

bool isAscii(QChar c)
{
    return c.unicode() < 0x80;
}

/// Sum of what the characters beyond ASCII of one word say for the page.
double wordWeight(QStringView word)
{
    const auto beyond = std::count_if(word.begin(), word.end(), [](QChar c) { return !isAscii(c); });
    if (beyond == 0)
        return 0;
    const bool latin = std::none_of(word.begin(), word.end(),
                                    [](QChar c) { return !isAscii(c) && c.script() != QChar::Script_Latin; });
    const double all = double(beyond);
    if (latin) // accents stand alone among plain letters
        return 2 * beyond <= word.size() ? all : -all;
    if (beyond != word.size())
        return -all; // two scripts in one word
    double sum = 0;
    for (const QChar c : word)
        sum += letterWeight(c);
    return sum;
}

} // namespace

QString codePageTitle(int codePage)
{
    return codePage == kDosCyrillic ? QStringLiteral("DOS %1").arg(codePage)
                                    : QStringLiteral("Windows-%1").arg(codePage);
}

std::optional<double> codePageFit(const QList<QByteArray> &texts, int codePage)
{
    double sum = 0;
    qsizetype characters = 0;
    QStringDecoder decoder = decoderOf(codePage);
    if (!decoder.isValid())
        return std::nullopt;
    for (const QByteArray &bytes : texts) {
        const QString text = decoder(bytes);
        qsizetype i = 0;
        while (i < text.size()) {
            qsizetype end = i;
            while (end < text.size() && text[end].isLetter())
                ++end;
            if (end == i) { // signs say little, but letters read as signs must not go unnoticed
                constexpr double kSign = -0.5;
                static const QString kUsual = QStringLiteral("«»№–—“”„’…°§");
                if (!isAscii(text[i])) {
                    sum += kUsual.contains(text[i]) ? 0 : kSign;
                    characters += kUsual.contains(text[i]) ? 0 : 1;
                }
                ++i;
                continue;
            }
            const QStringView word = QStringView(text).sliced(i, end - i);
            sum += wordWeight(word);
            characters += std::count_if(word.begin(), word.end(), [](QChar c) { return !isAscii(c); });
            i = end;
        }
    }
    if (characters == 0)
        return std::nullopt;
    return sum / double(characters);
}

namespace {

/// Texts beyond ASCII of the first rows that have any, as bytes.
struct Texts {
    QList<QByteArray> all;
    QList<QByteArray> rows; ///< of the first rows: texts joined
    int headerCodePage = 0;
};

void addRow(const JetFile &file, Texts &texts)
{
    constexpr qsizetype kShownRows = 6;
    QByteArray joined;
    bool wanted = false;
    for (const JetValue &value : file.row()) {
        if (value.kind != jet::ValueKind::Text || value.bytes.isEmpty())
            continue;
        const QByteArray bytes = QString::fromUtf8(value.bytes).toLatin1();
        joined += (joined.isEmpty() ? "" : "  ") + bytes;
        if (!hasNonAscii(bytes))
            continue;
        wanted = true;
        texts.all.append(bytes);
    }
    if (wanted && texts.rows.size() < kShownRows)
        texts.rows.append(joined.simplified());
}

Texts readTexts(const QString &path, const JetOptions &options)
{
    constexpr qsizetype kEnough = 4000;
    JetFile file(path, options);
    Texts texts;
    texts.headerCodePage = file.headerCodePage();
    while (file.jet3() && texts.all.size() < kEnough && file.nextTable() >= 0)
        while (texts.all.size() < kEnough && file.nextRow())
            addRow(file, texts);
    return texts;
}

QStringList shownRows(const QList<QByteArray> &rows, int codePage)
{
    constexpr qsizetype kShownCharacters = 90;
    QStringDecoder decoder = decoderOf(codePage);
    QStringList shown;
    for (const QByteArray &row : rows) {
        const QString text = decoder(row);
        shown.append(text.size() > kShownCharacters ? text.left(kShownCharacters) + QChar(0x2026) : text);
    }
    return shown;
}

} // namespace

std::optional<CodePageDoubt> doubtCodePage(const QString &path, JetOptions options)
{
    constexpr double kClearlyBetter = 0.25;
    constexpr int kWestern = 1252;
    options.codePage = kBytesAsTheyAre;
    options.tablesOnly = false;
    const Texts texts = readTexts(path, options);
    if (texts.all.isEmpty())
        return std::nullopt;
    const int header = texts.headerCodePage != 0 ? texts.headerCodePage : kWestern;
    constexpr double kUnreadable = -1;
    struct Rated {
        int codePage;
        double fit;
    };
    QList<Rated> rated;
    for (const int codePage : {kWindowsCyrillic, kDosCyrillic})
        if (codePage != header)
            rated.append({codePage, codePageFit(texts.all, codePage).value_or(kUnreadable)});
    rated.append({header, codePageFit(texts.all, header).value_or(kUnreadable)});
    const double headerFit = rated.back().fit;
    std::stable_sort(rated.begin(), rated.end(),
                     [](const Rated &a, const Rated &b) { return a.fit > b.fit; });
    if (rated.front().fit <= headerFit + kClearlyBetter)
        return std::nullopt;
    CodePageDoubt doubt;
    doubt.headerCodePage = header;
    for (const Rated &one : rated)
        if (decoderOf(one.codePage).isValid())
            doubt.samples.append({one.codePage, shownRows(texts.rows, one.codePage)});
    return doubt;
}

} // namespace foreign
