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

QStringList mainLogObjects()
{
    const QString counters = countryCountersTable();
    // A row is the first of its callsign (of its confirmed callsign) in a country when no other one is there:
    // one step in an index, instead of a count.
    const QString newest =
        QStringLiteral("(NOT EXISTS(SELECT 1 FROM TBLLOG1 WHERE CONTR=%1.CONTR AND ccall IS "
                       "%1.ccall AND rowid<>%1.rowid))");
    const QString newestCard = QStringLiteral(
        "(ifnull(length(%1.QSLP),0)>0 AND NOT EXISTS(SELECT 1 FROM TBLLOG1 WHERE CONTR=%1.CONTR AND ccall IS "
        "%1.ccall AND length(QSLP)>0 AND rowid<>%1.rowid))");
    const QString count = QStringLiteral(
        "INSERT INTO %1(contr,calls,cards) SELECT %2.CONTR,0,0 WHERE length(%2.CONTR)>0 AND NOT "
        "EXISTS(SELECT 1 FROM "
        "%1 WHERE contr=%2.CONTR);UPDATE %1 SET calls=calls+%3,cards=cards+%4 WHERE contr=%2.CONTR;");
    const QString add = count.arg(counters, QStringLiteral("NEW"), newest.arg(QStringLiteral("NEW")),
                                  newestCard.arg(QStringLiteral("NEW")));
    const QString takeAway =
        QStringLiteral("UPDATE %1 SET calls=calls-%2,cards=cards-%3 WHERE contr=OLD.CONTR;")
            .arg(counters, newest.arg(QStringLiteral("OLD")), newestCard.arg(QStringLiteral("OLD")));
    return {
        QStringLiteral("CREATE INDEX IF NOT EXISTS zh_log_call ON TBLLOG1(ccall COLLATE NOCASE)"),
        QStringLiteral("CREATE INDEX IF NOT EXISTS zh_log_date ON TBLLOG1(%1)")
            .arg(dateKeyExpression(QStringLiteral("ddate"))),
        QStringLiteral("CREATE INDEX IF NOT EXISTS zh_log_country ON TBLLOG1(CONTR COLLATE NOCASE,ccall "
                       "COLLATE NOCASE)"),
        QStringLiteral(
            "CREATE INDEX IF NOT EXISTS zh_log_card ON TBLLOG1(CONTR COLLATE NOCASE,ccall COLLATE NOCASE) "
            "WHERE length(QSLP)>0"),
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
        QStringLiteral("CREATE TRIGGER IF NOT EXISTS zh_log_insert AFTER INSERT ON TBLLOG1 BEGIN %1 END")
            .arg(add),
        QStringLiteral("CREATE TRIGGER IF NOT EXISTS zh_log_delete AFTER DELETE ON TBLLOG1 BEGIN %1 END")
            .arg(takeAway),
        // An update takes the old row out and puts the new one in; the two never differ in rowid, so that
        // each "no other row" test sees only rows that the update leaves alone.
        QStringLiteral(
            "CREATE TRIGGER IF NOT EXISTS zh_log_update AFTER UPDATE OF ccall,CONTR,QSLP ON TBLLOG1 "
            "BEGIN %1 %2 END")
            .arg(takeAway, add),
    };
}

QString index(const char *name, const char *table, const char *column)
{
    return QStringLiteral("CREATE INDEX IF NOT EXISTS %1 ON %2(%3 COLLATE NOCASE)")
        .arg(QLatin1String(name), QLatin1String(table), QLatin1String(column));
}

QList<FileLayout> makeLayouts()
{
    const TableLayout log{QStringLiteral("TBLLOG1"), columns(kLogColumns), true, false, {}};
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
        columns("prf PREF strana kont cq iaru GradN GradE Dolg Shir"),
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

} // namespace store
