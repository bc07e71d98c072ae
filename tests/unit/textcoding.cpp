// How the coding of a text file is found out.
#include "foreign/textcoding.h"

#include "base/bandplan.h"
#include "base/translit.h"

#include <QFile>
#include <QStringConverter>
#include <QTest>

using foreign::decode;
using foreign::detectCoding;
using foreign::TextCoding;

namespace {

QByteArray encoded(const QString &text, const char *coding)
{
    QStringEncoder encoder(coding);
    return encoder(text);
}

} // namespace

class TextCodingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void byteCodings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("towns") << "<QTH:6>Москва <NAME:6>Сергей";
        QTest::newRow("capitals") << "<QTH:6>МОСКВА <NAME:6>СЕРГЕЙ <QTH:6>САМАРА <NAME:4>ИВАН";
        QTest::newRow("small") << "<QTH:6>москва <NAME:6>сергей <QTH:6>самара <NAME:4>иван";
        QTest::newRow("few") << "<NAME:4>Юрий <QTH:4>Орел";
        QTest::newRow("rare letters") << "Щёлково Йошкар-Ола Яхрома Пётр Фёдор Эдуард Хабаровск Цимлянск";
        QTest::newRow("sentence") << "Связь была слабой, карточка отправлена через бюро. Привет из Рязани!";
    }
    void byteCodings()
    {
        QFETCH(QString, text);
        const QByteArray windows = encoded(text, "windows-1251");
        QCOMPARE(detectCoding(windows).coding, TextCoding::Windows1251);
        QCOMPARE(decode(windows, TextCoding::Windows1251), text);
        const QByteArray dos = encoded(text, "IBM866");
        QCOMPARE(detectCoding(dos).coding, TextCoding::Ibm866);
        QCOMPARE(decode(dos, TextCoding::Ibm866), text);
        const QByteArray koi = encoded(text, "KOI8-R");
        QCOMPARE(detectCoding(koi).coding, TextCoding::KoiR);
        QCOMPARE(decode(koi, TextCoding::KoiR), text);
        QCOMPARE(detectCoding(text.toUtf8()).coding, TextCoding::Utf8);
    }

    void everyNameOfTheProgramsOwnList()
    {
        // Twenty names and more are told for certain, whichever they are.
        QFile file(QStringLiteral(TEST_DATA "/../../data/tblgorod.tsv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList towns;
        for (const QByteArray &line : file.readAll().split('\n'))
            towns.append(QString::fromUtf8(line.split('\t').front()));
        int pieces = 0;
        for (qsizetype i = 0; i + 20 < towns.size(); i += 20, ++pieces) {
            const QString text = towns.mid(i, 20).join(QLatin1Char('\n'));
            QCOMPARE(detectCoding(encoded(text, "windows-1251")).coding, TextCoding::Windows1251);
            QCOMPARE(detectCoding(encoded(text, "IBM866")).coding, TextCoding::Ibm866);
            QCOMPARE(detectCoding(encoded(text, "KOI8-R")).coding, TextCoding::KoiR);
            QCOMPARE(detectCoding(encoded(text.toUpper(), "windows-1251")).coding, TextCoding::Windows1251);
            QCOMPARE(detectCoding(encoded(text.toUpper(), "KOI8-R")).coding, TextCoding::KoiR);
        }
        QVERIFY(pieces > 100);
    }

    void marks()
    {
        const QString text = QStringLiteral("<NAME:4>Юрий");
        const auto utf8 = detectCoding("\xEF\xBB\xBF" + text.toUtf8());
        QCOMPARE(utf8.coding, TextCoding::Utf8);
        QCOMPARE(utf8.mark, 3);
        const QByteArray little = encoded(text, "UTF-16LE");
        QCOMPARE(detectCoding("\xFF\xFE" + little).coding, TextCoding::Utf16Le);
        QCOMPARE(decode(little, TextCoding::Utf16Le), text);
        const QByteArray big = encoded(text, "UTF-16BE");
        QCOMPARE(detectCoding("\xFE\xFF" + big).coding, TextCoding::Utf16Be);
        QCOMPARE(decode(big, TextCoding::Utf16Be), text);
        QCOMPARE(foreign::codingName(TextCoding::KoiR), QStringLiteral("KOI8-R"));
    }

    void damagedUtf8()
    {
        QCOMPARE(detectCoding({}).coding, TextCoding::Utf8);
        QCOMPARE(detectCoding("plain").coding, TextCoding::Utf8);
        const QByteArray name = QStringLiteral("Пётр ").toUtf8();
        QCOMPARE(detectCoding(name.chopped(2)).coding, TextCoding::Utf8); // cut off within ё
        QCOMPARE(detectCoding(name + '\xD0').coding, TextCoding::Utf8);
        // One character cut by its bytes among many whole ones.
        QCOMPARE(detectCoding(name.repeated(10) + "\xD0 " + name).coding, TextCoding::Utf8);
        QCOMPARE(decode("\xD0 x", TextCoding::Utf8), QStringLiteral("\uFFFD x"));
        // Overlong forms and surrogates are no UTF-8.
        QVERIFY(detectCoding("\xC0\x80 \xE0\x80\x80").coding != TextCoding::Utf8);
        QVERIFY(detectCoding("\xED\xA0\x80").coding != TextCoding::Utf8);
        QVERIFY(detectCoding("\xF4\x90\x80\x80").coding != TextCoding::Utf8);
    }

    void pieces()
    {
        QByteArray target("a");
        foreign::appendUtf8(target, "bc", TextCoding::KoiR);
        foreign::appendUtf8(target, "\xC0", TextCoding::KoiR);
        QCOMPARE(target, QByteArray("abc") + QStringLiteral("ю").toUtf8());
        QVERIFY(foreign::isAscii("abc"));
        QVERIFY(!foreign::isAscii("\x80"));
    }

    void transliteration_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("ascii");
        QTest::newRow("name") << "Сергей"
                              << "Sergey";
        QTest::newRow("capital of several letters") << "Щукин Юля Ё"
                                                    << "Shchukin Yulya Yo";
        QTest::newRow("capitals") << "ЩУКИН ХАНТЫ БОРЩ"
                                  << "SHCHUKIN KHANTY BORSHCH";
        QTest::newRow("signs dropped") << "Подъезд Тверь"
                                       << "Podezd Tver";
        QTest::newRow("Ukrainian") << "Київ Єва Ґалаґан Івано-Франківськ"
                                   << "Kiyiv Yeva Galagan Ivano-Frankivsk";
        QTest::newRow("Belarusian") << "Магілёў"
                                    << "Magilyou";
        QTest::newRow("Latin with marks") << "Köln São Łódź Straße"
                                          << "Koln Sao Lodz Strasse";
        QTest::newRow("typographic") << "«Луч» № 5 — да…"
                                     << "\"Luch\" No 5 - da...";
        QTest::newRow("foreign script") << "東京 \U0001F600"
                                        << "?? ?";
        QTest::newRow("control characters") << "a\r\nb\u007f"
                                            << "a  b ";
    }
    void transliteration()
    {
        QFETCH(QString, text);
        QFETCH(QString, ascii);
        QCOMPARE(base::toAscii(text), ascii);
    }

    void frequencies_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("label");
        for (const base::Band &band : base::bandPlan()) {
            const QString label = QString::fromUtf16(band.label);
            QTest::addRow("low end of %s", band.adif) << QString::number(band.low, 'f', 6) << label;
            QTest::addRow("high end of %s", band.adif) << QString::number(band.high, 'f', 6) << label;
            QTest::addRow("label of %s", band.adif) << label << label;
        }
        QTest::newRow("comma") << "3,65"
                               << "3,5";
        QTest::newRow("blanks") << " 14.025 "
                                << "14";
        QTest::newRow("kHz") << "14025"
                             << "14";
        QTest::newRow("kHz with a part") << "7012.5"
                                         << "7";
        QTest::newRow("30 m in kHz") << "10120"
                                     << "10";
        QTest::newRow("10 GHz") << "10368.1"
                                << "10000";
        QTest::newRow("VHF in kHz") << "144300"
                                    << "144";
        QTest::newRow("Hz") << "14025000"
                            << "14";
        QTest::newRow("outside") << "12.5"
                                 << "";
        QTest::newRow("no number") << "20m"
                                   << "";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("zero") << "0"
                              << "";
        QTest::newRow("negative") << "-14"
                                  << "";
        QTest::newRow("huge") << "1e300"
                              << "";
    }
    void frequencies()
    {
        QFETCH(QString, text);
        QFETCH(QString, label);
        const base::Band *band = base::bandOfFrequency(text);
        QCOMPARE(band == nullptr ? QString() : QString::fromUtf16(band->label), label);
    }

    void bandNames()
    {
        QCOMPARE(QString::fromUtf16(base::bandOfAdifName(u"70cm")->label), QStringLiteral("430"));
        QCOMPARE(QString::fromUtf16(base::bandOfAdifName(u"20M")->label), QStringLiteral("14"));
        QVERIFY(base::bandOfAdifName(u"20") == nullptr);
        QCOMPARE(base::bandOfLabel(u"1.8")->adif, "160M");
        QVERIFY(base::bandOfLabel(u"1,80") == nullptr);
    }
};

QTEST_GUILESS_MAIN(TextCodingTest)
#include "textcoding.moc"
