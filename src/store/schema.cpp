#include "store/schema.h"

#include "store/functions.h"

namespace store {

namespace {

/// Columns from a list of names; a name with "~" in front may hold Cyrillic.
QList<ColumnLayout> columns(const char *names)
{
    QList<ColumnLayout> list;
    const QStringList parts = QString::fromLatin1(names).split(u' ', Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const bool latin = !part.startsWith(u'~');
        list.append({latin ? part : part.mid(1), latin});
    }
    return list;
}

constexpr auto kLogColumns = "ccall ddate ttime bband rsts rstr ~mult ~point ~ps ps1 ~PS2 ~QTH ~NNAME QSLVIA "
                             "~QSLP ~QSLO CONTR CONT PRF";

const QString kLogTable = QStringLiteral("TBLLOG1");
/// The country whose callsigns tell their region.
const QString kCountryOfRegions = QStringLiteral("RUSSIAN");

QString index(const QString &name, const QString &table, const QStringList &keys, const QString &rows = {})
{
    QStringList collated;
    for (const QString &key : keys)
        collated.append(key + QStringLiteral(" COLLATE NOCASE"));
    const QString which = rows.isEmpty() ? QString() : QStringLiteral(" WHERE ") + rows;
    return QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2(%3)%4")
        .arg(name, table, collated.join(QLatin1Char(',')), which);
}

QString index(const char *name, const char *table, const char *column)
{
    return index(QLatin1String(name), QLatin1String(table), QStringList{QLatin1String(column)});
}

/// Different callsigns per country, as SQL of the triggers.
struct CountrySteps {
    QString add;
    QString takeAway;
};

CountrySteps countrySteps()
{
    const QString counters = countryCountersTable();
    // A row is the first of its callsign (of its confirmed callsign) in a country when no other one is there:
    // one step in an index, instead of a count. Null and empty are one callsign.
    // CASE, because the engine works out both sides of an AND.
    const QString other = QStringLiteral(
        "NOT EXISTS(SELECT 1 FROM TBLLOG1 WHERE CONTR=%1.CONTR AND ccall %3%2 AND rowid<>%1.rowid)");
    const auto newest = [&](const QString &row, const QString &rows) {
        return QStringLiteral("CASE WHEN ifnull(%1.ccall,'')<>'' THEN %2 ELSE %3 AND %4 END")
            .arg(row, other.arg(row, rows, QStringLiteral("=%1.ccall").arg(row)),
                 other.arg(row, rows, QStringLiteral("=''")),
                 other.arg(row, rows, QStringLiteral("IS NULL")));
    };
    const auto newestCall = [&](const QString &row) { return QStringLiteral("(%1)").arg(newest(row, {})); };
    const auto newestCard = [&](const QString &row) {
        return QStringLiteral("(CASE WHEN length(%1.QSLP)>0 THEN (%2) ELSE 0 END)")
            .arg(row, newest(row, QStringLiteral(" AND length(QSLP)>0")));
    };
    const QString added = QStringLiteral("NEW");
    const QString removed = QStringLiteral("OLD");
    return {QStringLiteral("INSERT INTO %1(contr,calls,cards) SELECT NEW.CONTR,0,0 WHERE "
                           "length(NEW.CONTR)>0 AND NOT EXISTS(SELECT 1 FROM %1 WHERE contr=NEW.CONTR);"
                           "UPDATE %1 SET calls=calls+%2,cards=cards+%3 WHERE contr=NEW.CONTR;")
                .arg(counters, newestCall(added), newestCard(added)),
            QStringLiteral("UPDATE %1 SET calls=calls-%2,cards=cards-%3 WHERE contr=OLD.CONTR;")
                .arg(counters, newestCall(removed), newestCard(removed))};
}

/// Values of a row, or of the log's columns, as the tally has them.
QString tallied(const QString &row)
{
    const QString mark = QStringLiteral("CASE WHEN length(%1%2)>0 THEN '1' ELSE '' END");
    return QStringLiteral("ifnull(%1bband,''),ifnull(%1CONTR,''),%2,%3")
        .arg(row, mark.arg(row, QStringLiteral("QSLO")), mark.arg(row, QStringLiteral("QSLP")));
}

QString tallyAdd()
{
    // Most rows find theirs: the insertion is for the first of its kind.
    return QStringLiteral("UPDATE %1 SET contacts=contacts+1 WHERE (bband,CONTR,QSLO,QSLP)=(%2);"
                          "INSERT INTO %1(bband,CONTR,QSLO,QSLP,contacts) SELECT %2,1 WHERE changes()=0;")
        .arg(tallyTable(), tallied(QStringLiteral("NEW.")));
}

QString tallyTakeAway()
{
    return QStringLiteral("UPDATE %1 SET contacts=contacts-1 WHERE (bband,CONTR,QSLO,QSLP)=(%2);")
        .arg(tallyTable(), tallied(QStringLiteral("OLD.")));
}

QStringList logIndexes()
{
    const QString call = QStringLiteral("ccall");
    const QString country = QStringLiteral("CONTR");
    const QString band = QStringLiteral("bband");
    const QString key = QStringLiteral("PRF");
    const QString confirmed = QStringLiteral("length(QSLP)>0");
    return {
        index(QStringLiteral("zh_log_call"), kLogTable, {call}),
        QStringLiteral("CREATE INDEX IF NOT EXISTS zh_log_date ON TBLLOG1(%1)")
            .arg(dateKeyExpression(QStringLiteral("ddate"))),
        // Lists of callsigns walk along an index whose columns answer the rest of their condition: however
        // few rows meet it, no row of the table is read for nothing.
        QStringLiteral("DROP INDEX IF EXISTS zh_log_country"), // of the first layout, without band and key
        index(QStringLiteral("zh_log_key"), kLogTable, {key, call, band}),
        index(QStringLiteral("zh_log_place"), kLogTable, {country, call, band, key}),
        index(QStringLiteral("zh_log_card"), kLogTable, {country, call}, confirmed),
        index(QStringLiteral("zh_log_confirmed"), kLogTable, {call}, confirmed),
        index(QStringLiteral("zh_log_region"), kLogTable,
              {QStringLiteral("substr(ccall,3,2)"), call, band, key, QStringLiteral("QSLO"),
               QStringLiteral("QSLP"), country},
              QStringLiteral("CONTR='%1' COLLATE NOCASE").arg(kCountryOfRegions)),
    };
}

QStringList logTriggers()
{
    const CountrySteps country = countrySteps();
    const QString drop = QStringLiteral("DROP TRIGGER IF EXISTS %1"); // one of an older layout
    const QString create = QStringLiteral("CREATE TRIGGER %1 AFTER %2 ON TBLLOG1 %3BEGIN %4 END");
    QStringList objects;
    const auto add = [&](const char *name, const char *event, const QString &when, const QString &body) {
        objects.append(drop.arg(QLatin1String(name)));
        objects.append(create.arg(QLatin1String(name), QLatin1String(event), when, body));
    };
    add("zh_log_insert", "INSERT", {}, country.add + tallyAdd());
    add("zh_log_delete", "DELETE", {}, country.takeAway + tallyTakeAway());
    // An update takes the old row out and puts the new one in; the two never differ in rowid, so that each
    // "no other row" test sees only rows that the update leaves alone.
    add("zh_log_update", "UPDATE OF ccall,CONTR,QSLP", {}, country.takeAway + country.add);
    add("zh_log_tally", "UPDATE OF bband,CONTR,QSLO,QSLP",
        QStringLiteral("WHEN (%1) IS NOT (%2) ")
            .arg(tallied(QStringLiteral("OLD.")), tallied(QStringLiteral("NEW."))),
        tallyTakeAway() + tallyAdd());
    return objects;
}

QStringList logCounters()
{
    const QString counters = countryCountersTable();
    const QString tally = tallyTable();
    return {
        QStringLiteral(
            "CREATE TABLE IF NOT EXISTS %1(contr TEXT COLLATE NOCASE PRIMARY KEY,calls INTEGER NOT NULL,"
            "cards INTEGER NOT NULL) WITHOUT ROWID")
            .arg(counters),
        QStringLiteral("DELETE FROM %1").arg(counters),
        QStringLiteral(
            "INSERT INTO %1(contr,calls,cards) SELECT CONTR,count(DISTINCT ifnull(ccall,'') COLLATE NOCASE),"
            "count(DISTINCT CASE WHEN length(QSLP)>0 THEN ifnull(ccall,'') END COLLATE NOCASE) FROM TBLLOG1 "
            "WHERE length(CONTR)>0 GROUP BY CONTR COLLATE NOCASE")
            .arg(counters),
        QStringLiteral("CREATE TABLE IF NOT EXISTS %1(bband TEXT COLLATE NOCASE,CONTR TEXT COLLATE NOCASE,"
                       "QSLO TEXT,QSLP TEXT,contacts INTEGER NOT NULL,PRIMARY KEY(bband,CONTR,QSLO,QSLP)) "
                       "WITHOUT ROWID")
            .arg(tally),
        QStringLiteral("DELETE FROM %1").arg(tally),
        QStringLiteral("INSERT INTO %1(bband,CONTR,QSLO,QSLP,contacts) SELECT %2,count(*) FROM TBLLOG1 GROUP "
                       "BY ifnull(bband,'') COLLATE NOCASE,ifnull(CONTR,'') COLLATE NOCASE,3,4")
            .arg(tally, tallied({})),
    };
}

QStringList mainLogObjects()
{
    return logIndexes() + logCounters() + logTriggers();
}

QList<FileLayout> makeLayouts()
{
    const TableLayout log{kLogTable, columns(kLogColumns), true, false, {}};
    TableLayout mainLog = log;
    mainLog.objects = mainLogObjects();
    TableLayout blank = log;
    blank.name = QStringLiteral("tbllogTEMP");
    TableLayout print = log;
    print.name = QStringLiteral("tblprint");
    const TableLayout font{QStringLiteral("tblfont"), columns("~rus ~engl"), false, true, {}};
    const TableLayout names{QStringLiteral("tblNAME"), columns("~nname"), false, false, {}};
    const TableLayout towns{QStringLiteral("tblgorod"),
                            columns("~gorod prf"),
                            false,
                            false,
                            {index("zh_gorod_prf", "tblgorod", "prf")}};
    const TableLayout countries{
        QStringLiteral("tbldxcc"),
        columns("prf PREF strana kont cq iaru GradN GradE Dolg Shir") +
            QList<ColumnLayout>{{ownRowColumn(), true}},
        false,
        false,
        {index("zh_dxcc_prf", "tbldxcc", "prf"), index("zh_dxcc_pref", "tbldxcc", "PREF")}};
    const TableLayout regions{QStringLiteral("tblrus"),
                              columns("pref ~gorod kodcrk kodsrr prf itu cq gradN gradE dolg Shir"),
                              false,
                              false,
                              {index("zh_rus_pref", "tblrus", "pref")}};
    const TableLayout callbook{QStringLiteral("tblcalbuk"),
                               columns("ccall ~fam ~nname ~otch ~indeks ~obl ~qth ~adres ~telefon ~qslvia"),
                               false,
                               false,
                               {index("zh_calbuk_ccall", "tblcalbuk", "ccall")}};
    const TableLayout own{
        QStringLiteral("tbltit"), columns("ccall GradN MinN GradE MinE Dolg Shir"), false, false, {}};
    const TableLayout contest{QStringLiteral("tblQRZ"), columns("ccall ~AALL"), false, false, {}};
    const TableLayout help{QStringLiteral("tblhelp"), columns("contest ~TXTHELP"), false, false, {}};
    const TableLayout title{
        QStringLiteral("tbltitul"),
        columns("~award ~DDATE ~wybor ~ccall ~nname ~ADRESSTR1 ~adresgor ~adresstran ~mod ~bband "
                "~contest ~adresstrit ~txtps1 ~txtps2 ~txtps3"),
        false,
        false,
        {}};
    const TableLayout awards{
        QStringLiteral("tbldiplom"), columns("~strana ~diplom pref ~diptext"), false, false, {}};
    return {
        {QStringLiteral("dbiaru.mdb"), QStringLiteral("журнал"), {mainLog, blank}},
        {QStringLiteral("dblog.mdb"), QStringLiteral("параллельный журнал"), {log}},
        {QStringLiteral("dbcall.mdb"), QStringLiteral("таблица клавиш"), {font}},
        {QStringLiteral("dbname.mdb"), QStringLiteral("имена и города"), {names, towns}},
        {QStringLiteral("dbdxcc1.mdb"), QStringLiteral("страны"), {countries}},
        {QStringLiteral("dbrusdx.mdb"), QStringLiteral("области России"), {regions}},
        {QStringLiteral("dbcalbuk.mdb"), QStringLiteral("адресная книга"), {callbook}},
        {QStringLiteral("dbcontest.mdb"), QStringLiteral("своя станция"), {own, contest}},
        {QStringLiteral("dbhelp.mdb"), QStringLiteral("подсказки"), {help, title}},
        {QStringLiteral("dbdiplom.mdb"), QStringLiteral("дипломы"), {awards}},
        {QStringLiteral("dbprint.mdb"), QStringLiteral("печать"), {print}},
    };
}

} // namespace

QString ownRowColumn()
{
    return QStringLiteral("own");
}

const QList<FileLayout> &fileLayouts()
{
    static const QList<FileLayout> layouts = makeLayouts();
    return layouts;
}

const FileLayout *fileLayout(QStringView fileName)
{
    for (const FileLayout &file : fileLayouts())
        if (fileName.compare(file.name, Qt::CaseInsensitive) == 0)
            return &file;
    return nullptr;
}

const TableLayout *tableLayout(QStringView tableName)
{
    for (const FileLayout &file : fileLayouts())
        for (const TableLayout &table : file.tables)
            if (tableName.compare(table.name, Qt::CaseInsensitive) == 0)
                return &table;
    return nullptr;
}

bool isLatinColumn(QStringView tableName, QStringView columnName)
{
    const TableLayout *table = tableLayout(tableName);
    if (table == nullptr)
        return false;
    for (const ColumnLayout &column : table->columns)
        if (columnName.compare(column.name, Qt::CaseInsensitive) == 0)
            return column.latin;
    return false;
}

QString createTableSql(const TableLayout &table)
{
    QStringList parts;
    for (const ColumnLayout &column : table.columns)
        parts.append(QStringLiteral("%1 TEXT COLLATE NOCASE DEFAULT ''").arg(column.name));
    return QStringLiteral("CREATE TABLE %1(%2)").arg(table.name, parts.join(QStringLiteral(", ")));
}

QString countryCountersTable()
{
    return QStringLiteral("zh_country");
}

QString tallyTable()
{
    return QStringLiteral("zh_tally");
}

bool isTalliedColumn(QStringView columnName)
{
    return columnName.compare(u"bband", Qt::CaseInsensitive) == 0 ||
           columnName.compare(u"CONTR", Qt::CaseInsensitive) == 0;
}

bool isTalliedMark(QStringView columnName)
{
    return columnName.compare(u"QSLO", Qt::CaseInsensitive) == 0 ||
           columnName.compare(u"QSLP", Qt::CaseInsensitive) == 0;
}

bool isCoarseColumn(QStringView tableName, QStringView columnName)
{
    return tableName.compare(kLogTable, Qt::CaseInsensitive) == 0 &&
           (columnName.compare(u"bband", Qt::CaseInsensitive) == 0 ||
            columnName.compare(u"PRF", Qt::CaseInsensitive) == 0);
}

bool isPartOfIndex(QStringView tableName, QStringView columnName, QStringView value)
{
    return value == kCountryOfRegions && columnName.compare(u"CONTR", Qt::CaseInsensitive) == 0 &&
           tableName.compare(kLogTable, Qt::CaseInsensitive) == 0;
}

} // namespace store
