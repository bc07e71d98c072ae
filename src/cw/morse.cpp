#include "cw/morse.h"

#include <QHash>

namespace cw {

namespace {

struct Row {
    QStringView characters; ///< letters in lower case
    const char *pattern;
};

constexpr Row kTable[] = {
    {u"aа", "13"},     {u"bб", "3111"},  {u"wв", "133"},    {u"gг", "331"},   {u"dд", "311"},
    {u"eе", "1"},      {u"vж", "1113"},  {u"zз", "3311"},   {u"iи", "11"},    {u"jй", "1333"},
    {u"kк", "313"},    {u"lл", "1311"},  {u"mм", "33"},     {u"nн", "31"},    {u"oо", "333"},
    {u"pп", "1331"},   {u"rр", "131"},   {u"sс", "111"},    {u"tт", "3"},     {u"uу", "113"},
    {u"fф", "1131"},   {u"hх", "1111"},  {u"cц", "3131"},   {u"ч", "3331"},   {u"ш", "3333"},
    {u"qщ", "3313"},   {u"yы", "3133"},  {u"xь", "3113"},   {u"э", "11311"},  {u"ю", "1133"},
    {u"я", "1313"},    {u"0", "33333"},  {u"1", "13333"},   {u"2", "11333"},  {u"3", "11133"},
    {u"4", "11113"},   {u"5", "11111"},  {u"6", "31111"},   {u"7", "33111"},  {u"8", "33311"},
    {u"9", "33331"},   {u":", "333111"}, {u";", "31313"},   {u"?", "113311"}, {u"!", "331133"},
    {u"\"", "131131"}, {u"'", "133331"}, {u"()", "313313"}, {u",", "131313"}, {u"-", "311113"},
    {u".", "111111"},  {u"/№", "31131"},
};

QHash<QChar, QString> makePatterns()
{
    QHash<QChar, QString> patterns;
    for (const Row &row : kTable)
        for (const QChar c : row.characters) {
            patterns.insert(c, QLatin1String(row.pattern));
            patterns.insert(c.toUpper(), QLatin1String(row.pattern));
        }
    return patterns;
}

} // namespace

QString morsePattern(QChar c)
{
    static const QHash<QChar, QString> patterns = makePatterns();
    return patterns.value(c, QStringLiteral("0"));
}

QString elementString(QStringView text)
{
    QString elements;
    for (const QChar c : text)
        elements += morsePattern(c) + QLatin1Char('0');
    return elements;
}

qsizetype charactersBegun(QStringView text, qsizetype position)
{
    qsizetype begun = 0;
    qsizetype elements = 0;
    while (begun < text.size() && elements < position)
        elements += morsePattern(text[begun++]).size() + 1;
    return begun;
}

} // namespace cw
