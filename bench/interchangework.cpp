#include "bench/interchangework.h"

#include "bench/bare.h"
#include "interchange/adifexport.h"
#include "interchange/adifimport.h"
#include "interchange/logmerge.h"
#include "interchange/sql.h"
#include "store/dialect.h"
#include "store/library.h"
#include "store/safefile.h"

#include <QDir>

#include <vector>

namespace bench {

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");

bool goOn(const QString &, qint64, qint64)
{
    return true;
}

/// The sorted rows read and written as text, and no more than that.
double bareExport(const QString &log, const QString &file)
{
    store::Connection connection(log, store::OpenMode::ReadOnly);
    const QElapsedTimer timer = started();
    const store::SelectQuery query = store::translateSelect(interchange::sql::allContacts());
    const QByteArray sql =
        QStringLiteral("SELECT ccall,rsts,rstr,ps1,bband,ddate,ttime FROM TBLLOG1 ORDER BY %1")
            .arg(query.order.join(QLatin1Char(',')))
            .toUtf8();
    BareStatement select(connection, sql.constData());
    store::SafeFile out(file);
    QByteArray line;
    while (select.step()) {
        line.clear();
        for (int column = 0; column < 7; ++column) {
            const QByteArray text = select.text(column);
            line.append(" <name:").append(QByteArray::number(text.size())).append('>').append(text);
        }
        line.append("<eor>\r\n");
        out.write(line);
    }
    out.finish();
    out.publish();
    return milliseconds(timer);
}

/// Rows of a log held in memory, the fields of a row one behind the other.
struct HeldRows {
    QByteArray texts;
    std::vector<qsizetype> ends;
    int columns = 0;

    HeldRows(const QString &log, const QByteArray &sql)
    {
        store::Connection connection(log, store::OpenMode::ReadOnly);
        store::Cursor cursor = connection.run(QString::fromUtf8(sql));
        columns = cursor.columnCount();
        while (cursor.next())
            for (int i = 0; i < columns; ++i) {
                texts.append(cursor.utf8(i).data(), cursor.utf8(i).size());
                ends.push_back(texts.size());
            }
    }
    [[nodiscard]] std::size_t rows() const { return ends.size() / static_cast<std::size_t>(columns); }
    [[nodiscard]] QByteArray text(std::size_t row, int column) const
    {
        const std::size_t place = row * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column);
        const qsizetype begin = place == 0 ? 0 : ends[place - 1];
        return QByteArray::fromRawData(texts.constData() + begin, ends[place] - begin);
    }
};

double bareImport(const QString &log, const HeldRows &rows)
{
    store::Connection connection(log, store::OpenMode::ReadWrite);
    const QElapsedTimer timer = started();
    BareStatement(connection, "BEGIN IMMEDIATE").run();
    BareStatement insert(connection,
                         "INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,QTH,NNAME,ps1,PRF,CONTR) "
                         "VALUES(?,?,?,?,?,?,?,?,?,?,?)");
    for (std::size_t row = 0; row < rows.rows(); ++row) {
        for (int column = 0; column < rows.columns; ++column)
            insert.bind(column + 1, rows.text(row, column));
        insert.run();
    }
    BareStatement(connection, "COMMIT").run();
    return milliseconds(timer);
}

constexpr auto kMergedFields = "ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,QSLVIA,QSLP,QSLO,CONTR,PRF";

/// Each row of the source looked for in the target, and added where it is not there.
qint64 bareMerge(const QString &source, const QString &target, double &time)
{
    store::Connection from(source, store::OpenMode::ReadOnly);
    store::Connection to(target, store::OpenMode::ReadWrite);
    const QElapsedTimer timer = started();
    BareStatement(to, "BEGIN IMMEDIATE").run();
    const QByteArray select = QByteArray("SELECT ") + kMergedFields + " FROM TBLLOG1 ORDER BY rowid";
    BareStatement read(from, select.constData());
    BareStatement find(to,
                       "SELECT rowid,QSLP,QSLO,QSLVIA FROM TBLLOG1 WHERE ccall=? AND ddate=? AND bband=? AND "
                       "rsts=? LIMIT 1");
    const QByteArray sql =
        QByteArray("INSERT INTO TBLLOG1(") + kMergedFields + ") VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?)";
    BareStatement insert(to, sql.constData());
    qint64 added = 0;
    while (read.step()) {
        int parameter = 0;
        for (const int column : {0, 1, 3, 4})
            find.bind(++parameter, read.text(column));
        const bool found = find.step();
        find.reset();
        if (found)
            continue;
        for (int column = 0; column < 14; ++column)
            insert.bind(column + 1, read.text(column));
        insert.run();
        ++added;
    }
    BareStatement(to, "COMMIT").run();
    time = milliseconds(timer);
    return added;
}

} // namespace

InterchangeWork::InterchangeWork(const QString &installation, const QString &scratch)
    : m_model(QDir(installation).filePath(kLog)), m_scratch(scratch),
      m_copies(QDir(scratch).filePath("copies"))
{
    if (!QDir().mkpath(m_copies))
        throw store::Error(store::ErrorKind::CannotOpen, m_copies,
                           QStringLiteral("the folder cannot be made"));
}

QString InterchangeWork::path(const QString &name) const
{
    return QDir(m_scratch).filePath(name);
}

QString InterchangeWork::emptyLog(const QString &folder) const
{
    QDir(path(folder)).removeRecursively();
    QDir().mkpath(path(folder));
    store::Library databases({path(folder), false}, m_copies);
    (void)databases.createMissingFiles();
    return path(folder) + QLatin1Char('/') + kLog;
}

void InterchangeWork::removeCopies() const
{
    const QDir copies(m_copies);
    for (const QString &copy : copies.entryList(QDir::Files))
        QFile::remove(copies.filePath(copy));
}

void InterchangeWork::measureExport(QTextStream &out, int runs)
{
    const QString log = path(QStringLiteral("export/")) + kLog;
    QDir().mkpath(path(QStringLiteral("export")));
    copyFile(m_model, log);
    const qint64 contacts = contactsOf(log);
    Samples whole;
    Samples numbered;
    Samples bare;
    for (int run = 0; run < runs; ++run) {
        store::Library databases({path(QStringLiteral("export")), false}, m_copies);
        (void)databases.connection(log);
        interchange::AdifExport exporter(databases, log);
        QElapsedTimer timer = started();
        auto result =
            exporter.whole(interchange::sql::allContacts(), path(QStringLiteral("whole.adi")), goOn);
        whole.add(milliseconds(timer));
        if (result.kept != contacts)
            qFatal("%lld contacts exported", result.kept);
        QByteArray band;
        timer.start();
        result =
            exporter.numbered(interchange::sql::allContacts(), path(QStringLiteral("LOG_ADIF")), band, goOn);
        numbered.add(milliseconds(timer));
        if (result.contacts != contacts || result.files.size() != contacts / 500 + 1)
            qFatal("%lld contacts exported", result.contacts);
        for (const QString &file : result.files)
            QFile::remove(file);
        bare.add(bareExport(log, path(QStringLiteral("bare.adi"))));
        removeCopies();
    }
    printAgainst(out, QStringLiteral("ADIF export into one file"), whole, bare);
    printAgainst(out, QStringLiteral("ADIF export into files of 500"), numbered, bare);
    QFile::remove(log);
}

void InterchangeWork::measureImport(QTextStream &out, int runs)
{
    const QString file = path(QStringLiteral("in.adi"));
    qint64 contacts = 0;
    {
        QDir().mkpath(path(QStringLiteral("model")));
        const QString log = path(QStringLiteral("model/")) + kLog;
        copyFile(m_model, log);
        store::Library databases({path(QStringLiteral("model")), false}, m_copies);
        contacts = interchange::AdifExport(databases, log)
                       .whole(interchange::sql::allContacts(), file, goOn)
                       .contacts;
        QFile::remove(log);
    }
    Samples work;
    Samples bare;
    for (int run = 0; run < runs; ++run) {
        const QString log = emptyLog(QStringLiteral("import"));
        {
            store::Library databases({path(QStringLiteral("import")), false}, m_copies);
            (void)databases.connection(log);
            const QElapsedTimer timer = started();
            interchange::AdifImport import(databases, log, file);
            const auto result = import.run([](const interchange::ImportProgress &) { return true; });
            work.add(milliseconds(timer));
            if (result.added != contacts)
                qFatal("%lld of %lld contacts imported", result.added, contacts);
        }
        const HeldRows rows(log,
                            "SELECT ccall,ddate,ttime,bband,rsts,rstr,QTH,NNAME,ps1,PRF,CONTR FROM TBLLOG1 "
                            "ORDER BY rowid");
        bare.add(bareImport(emptyLog(QStringLiteral("bare")), rows));
        removeCopies();
    }
    printAgainst(out, QStringLiteral("ADIF import of %1 contacts").arg(contacts), work, bare);
}

void InterchangeWork::measureMerge(QTextStream &out, int runs, qint64 contacts)
{
    const auto fill = [&](const QString &log, qint64 first) {
        store::Connection connection(log, store::OpenMode::ReadWrite);
        connection.exec(QStringLiteral("ATTACH DATABASE ? AS model"), {m_model});
        connection.exec(
            QStringLiteral("INSERT INTO main.TBLLOG1(%1) SELECT %1 FROM model.TBLLOG1 ORDER BY rowid "
                           "LIMIT ? OFFSET ?")
                .arg(QLatin1String(kMergedFields)),
            {contacts, first});
        connection.exec(QStringLiteral("UPDATE main.TBLLOG1 SET QSLP='',QSLO=''"));
    };
    const QString source = emptyLog(QStringLiteral("source"));
    fill(source, contacts / 2);
    const QString model = emptyLog(QStringLiteral("target"));
    fill(model, 0);
    Samples work;
    Samples bare;
    qint64 added = 0;
    for (int run = 0; run < runs; ++run) {
        const QString target = emptyLog(QStringLiteral("merged"));
        copyFile(model, target);
        {
            store::Library databases({path(QStringLiteral("merged")), false}, m_copies);
            (void)databases.connection(target);
            interchange::LogMerge merge(databases, source, target);
            double copying = 0;
            const QElapsedTimer timer = started();
            merge.run(
                [&](const interchange::MergeCounters &counters) {
                    if (counters.examined == 0)
                        copying = milliseconds(timer);
                    return true;
                },
                {});
            work.add(milliseconds(timer) - copying);
            added = merge.counters().added;
        }
        copyFile(model, target);
        double time = 0;
        if (bareMerge(source, target, time) != added)
            qFatal("the bare merge adds other contacts");
        bare.add(time);
        removeCopies();
    }
    printAgainst(out, QStringLiteral("merge of two logs of %1 contacts, %2 new").arg(contacts).arg(added),
                 work, bare);
}

} // namespace bench
