#pragma once

#include "reference/callbookfile.h"
#include "store/schema.h"
#include "support/errorof.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// What the tests of the callbook's files share.
namespace testsupport {

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

inline QString fixture(const char *name)
{
    return QStringLiteral(TEST_DATA "/callbook/") + QLatin1String(name);
}

/// A folder with an empty callbook and no other file.
class Book {
public:
    Book() : databases({m_folder.path(), false}, m_user.path())
    {
        const store::TableLayout *table = store::tableLayout(u"tblcalbuk");
        store::Connection::create(path())->exec(store::createTableSql(*table));
        (void)databases.connection(path()); // gets its indexes
    }

    [[nodiscard]] QString path() const { return file("dbcalbuk.mdb"); }
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString file(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    [[nodiscard]] QStringList copies() const
    {
        return QDir(m_user.path()).entryList({QStringLiteral("dbcalbuk.*.mdb")}, QDir::Files);
    }
    [[nodiscard]] QString copyPath() const { return m_user.filePath(copies().front()); }
    // Through connections of their own, as another program would; what a failure left behind is undone first.
    void sql(const QString &statement) const
    {
        store::Connection(path(), store::OpenMode::ReadWrite).exec(statement);
    }
    /// Records with these values, from the callsign on.
    void add(const QList<QStringList> &added) const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        store::Transaction transaction(connection);
        for (const QStringList &values : added)
            connection.exec(QStringLiteral("INSERT INTO tblcalbuk(%1) VALUES(?%2)")
                                .arg(reference::callbookFields().mid(0, values.size()).join(QLatin1Char(',')),
                                     QStringLiteral(",?").repeated(values.size() - 1)),
                            store::Values(values.begin(), values.end()));
        transaction.commit();
    }
    void add(const QStringList &values) const { add(QList<QStringList>{values}); }
    /// All records as they are stored, fields joined by "|".
    [[nodiscard]] QStringList records(const QString &order = QStringLiteral("rowid")) const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        store::Cursor cursor =
            connection.run(QStringLiteral("SELECT %1 FROM tblcalbuk ORDER BY %2")
                               .arg(reference::callbookFields().join(QStringLiteral("||'|'||")), order));
        QStringList list;
        while (cursor.next())
            list.append(cursor.text(0));
        return list;
    }
    [[nodiscard]] qint64 count() const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        return connection.singleNumber(QStringLiteral("SELECT count(*) FROM tblcalbuk"));
    }

    [[nodiscard]] QString text(const QByteArray &bytes) const
    {
        QString name = file("list.txt");
        put(name, bytes);
        return name;
    }
    [[nodiscard]] reference::CallbookExamination examined(const QByteArray &bytes)
    {
        return reference::CallbookFile(databases, text(bytes)).examine();
    }
    reference::CallbookImportResult import(const QByteArray &bytes,
                                           const reference::CallbookImportSteps &steps = {})
    {
        return reference::CallbookFile(databases, text(bytes)).import(steps);
    }

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_user;

public:
    store::Library databases;
};

/// `rows` stations.
inline QByteArray many(int rows)
{
    QByteArray text = "ccall;nname;qth\r\n";
    for (int row = 0; row < rows; ++row)
        text += "R" + QByteArray::number(row) + ";N" + QByteArray::number(row) + ";Town\r\n";
    return text;
}

/// What has become of the records: "added+filled=unchanged-skipped".
inline QString figures(const reference::CallbookImportResult &result)
{
    return QStringLiteral("%1+%2=%3-%4%5")
        .arg(result.added)
        .arg(result.filled)
        .arg(result.unchanged)
        .arg(result.skipped)
        .arg(result.stopped ? QStringLiteral(" stopped") : QString());
}

} // namespace testsupport
