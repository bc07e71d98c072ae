// Town and name: script of the station, narrowing lists, learning.
#include "logentry/completion.h"

#include "logentry/sql.h"
#include "support/installation.h"

#include <QTest>

using logentry::Completion;
using testsupport::Desk;
using testsupport::Installation;

namespace {

constexpr auto kNames = "dbname.mdb";

/// A desk with its completion, a station typed.
struct Table {
    explicit Table(Installation &in, const char *call = "")
        : desk(in), completion(desk.sources, desk.fields, desk.state)
    {
        desk.type(QString::fromUtf8(call));
    }

    QString typed(const char *text, bool cyrillicLayout = false)
    {
        QString entered;
        for (const QChar c : QString::fromUtf8(text)) {
            const logentry::TypedKey key = completion.scriptKey(c, cyrillicLayout);
            entered += key.character;
            switches += key.switchLayout ? 1 : 0;
        }
        return entered;
    }

    Desk desk;
    Completion completion;
    int switches = 0;
};

QStringList all(store::DataSource &source, const char *field)
{
    source.fetchAll();
    QStringList list;
    for (int row = 0; row < source.knownRows(); ++row)
        list.append(source.text(row, QLatin1String(field)));
    return list;
}

} // namespace

class CompletionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements()
    {
        using namespace logentry::sql;
        const auto is = [](const store::SqlText &text, const char *expected) {
            QCOMPARE(text.toString(), QString::fromUtf8(expected));
        };
        is(cyrillicOfKey(u'f'), "select * from tblfont where engl='f'");
        is(cyrillicOfKey(u'\''), "select * from tblfont where engl=''''");
        is(namesFrom(u"Ол"), "select nname from tblNAME where nname like'Ол*' ORDER BY NNAME");
        is(townsFrom(u"Мос", u"MA"),
           "select distinct gorod from tblgorod where gorod like'Мос*' and prf='MA' order by gorod");
        is(nameEqual(u"Олег"), "select nname from tblNAME where nname='Олег'");
        is(townEqual(u"Тверь"), "select * from tblgorod where gorod='Тверь'");
        is(townsOfRegionUnsorted(u"MA"), "select gorod from tblgorod where prf='MA'");
    }

    void scripts_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("cyrillicLayout");
        QTest::addColumn<QString>("entered");
        QTest::addColumn<int>("switches");
        // A German town typed under the Russian layout; Ё and ё are no letters of 192 to 255 and pass.
        QTest::newRow("German, Cyrillic keys") << "DL1ABC"
                                               << "Иукдшт" << true << "Berlin" << 6;
        QTest::newRow("German, Latin keys") << "DL1ABC"
                                            << "Bad Honnef-2." << false << "Bad Honnef-2." << 0;
        QTest::newRow("German, signs of Cyrillic keys") << "DL1ABC"
                                                        << "хъжэбю" << true << "[];',." << 6;
        QTest::newRow("German, Ё") << "DL1ABC"
                                   << "Ёё" << true << "Ёё" << 0;
        QTest::newRow("no station yet") << ""
                                        << "Руку" << true << "Here" << 4;
        QTest::newRow("Russian, Latin keys") << "UA3ABC"
                                             << "Vjcrdf" << false << "Москва" << 6;
        QTest::newRow("Russian, Cyrillic keys") << "UA3ABC"
                                                << "Москва" << true << "Москва" << 0;
        // The signs that share a key with a letter; the key table has the capital letter first.
        QTest::newRow("Russian, sign keys") << "UA3ABC"
                                            << "[];',.`" << false << "ХЪЖЭБЮЁ" << 7;
        QTest::newRow("Russian, signs meant as they are") << "UA3ABC"
                                                          << "ст.-2, 'x'" << true << "ст.-2, 'x'" << 0;
        QTest::newRow("Russian, digits and blank") << "UA3ABC"
                                                   << "1 2-3/" << false << "1 2-3/" << 0;
        QTest::newRow("Russian, Ё and letters above 190") << "UA3ABC"
                                                          << "Ёёщ»" << false << "Ёёщ»" << 0;
        QTest::newRow("Ukrainian") << "UR5ABC"
                                   << "Jktu" << false << "Олег" << 4;
        QTest::newRow("Belarusian") << "EU1ABC"
                                    << "Vbycr" << false << "Минск" << 5;
        QTest::newRow("other scripts") << "UA3ABC"
                                       << "日é" << false << "日é" << 0;
    }
    void scripts()
    {
        QFETCH(QString, call);
        QFETCH(QString, typed);
        QFETCH(bool, cyrillicLayout);
        QFETCH(QString, entered);
        QFETCH(int, switches);
        Installation in;
        Table table(in, qPrintable(call));
        QCOMPARE(table.typed(typed.toUtf8().constData(), cyrillicLayout), entered);
        QCOMPARE(table.switches, switches);
    }

    void characterWithoutAPairPasses()
    {
        Installation in;
        in.sql(QStringLiteral("dbcall.mdb"),
               QStringLiteral(
                   "DELETE FROM tblfont WHERE rus IN ('ф','Ф'); UPDATE tblfont SET rus='' WHERE engl='w'"));
        Table german(in, "DL1ABC");
        QCOMPARE(german.typed("фы"), QStringLiteral("фs"));
        german.desk.type(QStringLiteral("UA3ABC"));
        german.switches = 0;
        QCOMPARE(german.typed("aws"), QStringLiteral("awы"));
        QCOMPARE(german.switches, 1); // where nothing was replaced the layout stays too
    }

    void namesNarrow()
    {
        Installation in;
        Table table(in, "UA3ABC");
        table.desk.fields.txtname = QStringLiteral("оле");
        table.completion.narrowNames();
        const QStringList names = all(table.desk.sources.Data10, "nname");
        QVERIFY(names.contains(QStringLiteral("Олег")));
        for (const QString &name : names)
            QVERIFY(name.startsWith(QStringLiteral("Оле"), Qt::CaseInsensitive));
        QStringList sorted = names;
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(names, sorted);
        table.desk.fields.txtname.clear();
        table.completion.narrowNames();
        QCOMPARE(QString::number(all(table.desk.sources.Data10, "nname").size()),
                 in.rows(QLatin1String(kNames), QStringLiteral("SELECT count(*) FROM tblNAME")).front());
        table.desk.fields.txtname = QStringLiteral("O'Br");
        QVERIFY_THROWS_EXCEPTION(store::Error, table.completion.narrowNames());
    }

    void townsNarrowWithinTheRegion()
    {
        Installation in;
        in.sql(QLatin1String(kNames),
               QStringLiteral("INSERT INTO tblgorod(gorod,prf) VALUES('Мосвилль','ZZ')"));
        Table table(in, "UA3DAB"); // Moscow oblast
        const QString region = table.desk.sources.Data9.field(QStringLiteral("prf"));
        QCOMPARE(region, QStringLiteral("MO"));
        table.desk.fields.txtqth = QStringLiteral("К");
        table.completion.narrowTowns();
        const QStringList towns = all(table.desk.sources.Data8, "gorod");
        QVERIFY(towns.contains(QStringLiteral("Клин")));
        QCOMPARE(towns, in.rows(QLatin1String(kNames),
                                QStringLiteral(
                                    "SELECT DISTINCT gorod FROM tblgorod WHERE prf='MO' AND gorod >= 'К' AND "
                                    "gorod < 'Л' ORDER BY gorod")));
        table.desk.fields.txtqth = QStringLiteral("Мосвилль");
        table.completion.narrowTowns();
        QCOMPARE(all(table.desk.sources.Data8, "gorod"), QStringList());
    }

    void namesAreLearnt()
    {
        Installation in;
        Table table(in, "UA3ABC");
        const auto count = [&] {
            return in.rows(QLatin1String(kNames), QStringLiteral("SELECT count(*) FROM tblNAME"))
                .front()
                .toInt();
        };
        const int before = count();
        const auto learn = [&](const char *name) {
            table.desk.fields.txtname = QString::fromUtf8(name);
            table.completion.learnName();
        };
        learn("Олег");
        learn("ОЛЕГ"); // letter case makes no other name
        learn("");
        QCOMPARE(count(), before);
        learn("Евлампий Мстиславович");
        QCOMPARE(count(), before + 1);
        QVERIFY(all(table.desk.sources.Data10, "nname").contains(QStringLiteral("Евлампий Мстиславович")));
        QCOMPARE(all(table.desk.sources.Data10, "nname").size(), before + 1);
        learn("Евлампий Мстиславович");
        QCOMPARE(count(), before + 1);
        table.desk.fields.txtname = QStringLiteral("O'Brien");
        QVERIFY_THROWS_EXCEPTION(store::Error, table.completion.learnName());
        QCOMPARE(count(), before + 1);
        // Without the list nothing is learnt.
        table.desk.type(QStringLiteral("DL1ABC"));
        QVERIFY(!table.desk.fields.townPanelShown);
        learn("Wolfgang-Amadeus");
        QCOMPARE(count(), before + 1);
    }

    void townsAreLearntWithTheirRegion()
    {
        Installation in;
        Table table(in, "UA3DAB");
        const auto found = [&](const char *town) {
            return in.rows(QLatin1String(kNames),
                           QStringLiteral("SELECT gorod,prf FROM tblgorod WHERE gorod='%1' ORDER BY rowid")
                               .arg(QString::fromUtf8(town)));
        };
        const auto learn = [&](const char *town) {
            table.desk.fields.txtqth = QString::fromUtf8(town);
            table.completion.learnTown();
        };
        learn("Новая Деревня-3");
        QCOMPARE(found("Новая Деревня-3"), QStringList({"Новая Деревня-3|MO"}));
        QVERIFY(all(table.desk.sources.Data8, "gorod").contains(QStringLiteral("Новая Деревня-3")));
        QVERIFY(all(table.desk.sources.Data8, "gorod").contains(QStringLiteral("Клин")));
        learn("Новая Деревня-3");
        learn("новая деревня-3");
        QCOMPARE(found("Новая Деревня-3").size(), 1);
        // A town of that name in another region is a town of that name.
        const QStringList before = found("Тверь");
        QCOMPARE(before.size(), 1);
        learn("Тверь");
        QCOMPARE(found("Тверь"), before);
        learn("");
        table.desk.type(QStringLiteral("DL1ABC"));
        learn("Wolkenkuckucksheim");
        QCOMPARE(found("Wolkenkuckucksheim"), QStringList());
        // A station of Ukraine shows the list as the last Russian one left it, and learns into its region.
        table.desk.type(QStringLiteral("UR5ABC"));
        learn("Хутор Михайловский");
        QCOMPARE(found("Хутор Михайловский"), QStringList({"Хутор Михайловский|MO"}));
    }

    void readOnlyFileKeepsTheWord()
    {
        Installation in;
        Table table(in, "UA3ABC");
        in.sql(QLatin1String(kNames),
               QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON tblNAME BEGIN SELECT "
                              "RAISE(ABORT,'no'); END"));
        table.desk.fields.txtname = QStringLiteral("Евлампий");
        QVERIFY_THROWS_EXCEPTION(store::Error, table.completion.learnName());
        QCOMPARE(table.desk.fields.txtname, QStringLiteral("Евлампий"));
        in.sql(QLatin1String(kNames), QStringLiteral("DROP TRIGGER refuse"));
        table.completion.learnName();
        QCOMPARE(in.rows(QLatin1String(kNames),
                         QStringLiteral("SELECT count(*) FROM tblNAME WHERE nname='Евлампий'")),
                 QStringList({"1"}));
    }

    void namesAreWholeForTheNextStation()
    {
        Installation in;
        Table table(in, "UA3ABC");
        const qsizetype whole = all(table.desk.sources.Data10, "nname").size();
        table.desk.fields.txtname = QStringLiteral("Оле");
        table.completion.narrowNames();
        QVERIFY(all(table.desk.sources.Data10, "nname").size() < whole);
        table.completion.listsShown(); // the name is still being typed
        QVERIFY(all(table.desk.sources.Data10, "nname").size() < whole);
        table.desk.fields.txtname.clear();
        table.completion.listsShown();
        QCOMPARE(all(table.desk.sources.Data10, "nname").size(), whole);
    }
};

QTEST_GUILESS_MAIN(CompletionTest)
#include "completion.moc"
