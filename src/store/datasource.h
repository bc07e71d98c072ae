#pragma once

#include "store/dialect.h"
#include "store/library.h"
#include "store/sqltext.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <map>
#include <optional>

namespace store {

/// The data control without widgets: a file, a record source, a current row, and an edit that is saved when
/// the source moves or is refreshed. Fields, lists and grids are bound to it.
///
/// Rows are read as they are asked for: a million-row table opens with one page. The number of rows is
/// complete only after moveLast(). No statement stays open between two calls.
class DataSource : public QObject {
    Q_OBJECT

public:
    DataSource(QString name, Library &library, QObject *parent = nullptr);

    [[nodiscard]] const QString &name() const noexcept { return m_name; }

    /// Path of the database file.
    void setDatabaseName(const QString &path);
    [[nodiscard]] const QString &databaseName() const noexcept { return m_databaseName; }
    /// "Access" or "Access 2000;": both name the native format and change nothing.
    void setConnect(const QString &connect) { m_connect = connect; }
    [[nodiscard]] const QString &connect() const noexcept { return m_connect; }
    /// Table name or SELECT; takes effect at the next refresh().
    void setRecordSource(const SqlText &text);
    [[nodiscard]] const SqlText &recordSource() const noexcept { return m_recordSource; }

    /// Rows that a refresh reads at once. Few for a source that only counts. A result that the log file keeps
    /// counted is not read at all before a row of it is asked for.
    void setFirstPage(int rows) noexcept { m_firstPage = rows; }

    /// Saves a pending edit, then runs the record source anew and stands on its first row. Throws Error:
    /// where the saving failed, the edit stays pending and the rows stay; where the query failed, the source
    /// is empty.
    void refresh();

    /// True where there is no current row: an empty result, or behind the last row.
    [[nodiscard]] bool eof();
    /// True where the result has no row at all.
    [[nodiscard]] bool isEmpty();
    /// Rows known so far; all of them after moveLast().
    [[nodiscard]] int recordCount();
    /// Moving saves a pending edit first. Moving in an empty result does nothing.
    void moveFirst();
    void moveNext();
    void movePrevious();
    void moveLast();
    void moveTo(int row);
    [[nodiscard]] int currentRow() const noexcept { return m_current; }

    [[nodiscard]] const QStringList &fieldNames();
    [[nodiscard]] bool hasField(const QString &field);
    /// Text of a field of the current row (of the pending edit, where there is one); empty behind the end and
    /// for a field that the record source does not deliver.
    [[nodiscard]] QString field(const QString &field);
    /// Changes a field of the current or the added row; saved later. Does nothing where there is no row and
    /// none was begun, and for a field that is not there.
    void setField(const QString &field, const QString &text);
    /// Begins a new row. A pending edit is saved first.
    void addNew();
    /// Saves the pending edit. Throws Error and keeps the edit.
    void update();
    /// Drops the pending edit.
    void cancelUpdate();
    [[nodiscard]] bool editPending() const noexcept { return m_pending != Pending::None; }
    /// The last run of the record source failed. Reading gives an empty result; adding or changing a row runs
    /// it anew.
    [[nodiscard]] bool failed() const noexcept { return m_failed; }
    [[nodiscard]] bool addPending() const noexcept { return m_pending == Pending::Adding; }
    /// Deletes a row from its table.
    void removeRow(int row);

    /// For lists and grids: rows that can be shown without reading further.
    [[nodiscard]] int knownRows();
    [[nodiscard]] bool canFetchMore();
    void fetchMore();
    void fetchAll();
    /// Text of a field of any known row.
    [[nodiscard]] QString text(int row, const QString &field);
    /// What tells a row from all others, to find it again after a refresh.
    struct RowMark {
        qint64 key;           ///< the table's own; an emptied table gives its keys out again
        QStringList identity; ///< of a contact: callsign, date, time and band
    };
    /// Mark of a known row as it was read; nothing for a list of values.
    [[nodiscard]] std::optional<RowMark> mark(int row);
    /// The row that has the mark now; -1 where none has. Reads all rows.
    [[nodiscard]] int find(const RowMark &mark);
    /// True where rows can be changed: one table's rows, not a list of different values, in a file that can
    /// be written.
    [[nodiscard]] bool updatable();

Q_SIGNALS:
    void aboutToReset();
    void wasReset();
    /// Rows have been read in behind the known ones.
    void rowsAdded(int first, int last);
    /// A row has been deleted.
    void rowRemoved(int row);
    void rowChanged(int row);
    /// Another row is current, or the current one's fields have changed.
    void currentChanged();

private:
    enum class Pending { None, Editing, Adding };
    enum class Reading {
        ByRowId, ///< the table's own order, page after page behind the last rowid
        ByValue, ///< different values of one column, page after page behind the last value
        InOrder  ///< any other order: a first page, then everything
    };
    using Row = QStringList;

    void run();
    void compose();
    [[nodiscard]] QString composed(const QString &columns, const QString &firstColumns) const;
    void clearRows();
    [[nodiscard]] Connection &connection();
    [[nodiscard]] QString columnList() const;
    void readFirstPage();
    void readUpTo(int row);
    void readPage(int limit);
    [[nodiscard]] Values pageArguments() const;
    void readAllKeys();
    [[nodiscard]] Row rowOf(const Cursor &cursor) const;
    void appendRow(const Cursor &cursor);
    void noteColumns(Cursor &cursor);
    void ensureRun();
    [[nodiscard]] const Row *row(int index);
    [[nodiscard]] int fieldIndex(const QString &field) const;
    void setCurrent(int row);
    [[nodiscard]] QString typedTexts() const;
    [[nodiscard]] bool keyed() const noexcept { return !m_query.distinct; }
    void countAtOnce();
    [[nodiscard]] bool countFromTally();

    QString m_name;
    Library &m_library;
    QString m_databaseName;
    QString m_connect = QStringLiteral("Access");
    SqlText m_recordSource;

    int m_firstPage = 64; ///< more rows than a window shows
    bool m_hasRun = false;
    bool m_failed = false;
    SelectQuery m_query;
    Reading m_reading = Reading::ByRowId;
    QList<SelectBranch> m_branches; ///< conditions of the result's parts, mostly one
    QString m_pageSql;              ///< the next page's statement
    QString m_keysSql;              ///< the same, for the keys alone
    bool m_unread = false;          ///< counted, and no row read so far
    QStringList m_fields;
    QHash<QString, int> m_fieldIndex;
    bool m_complete = true;
    QList<qint64> m_keys;    ///< rowids of the known rows of a table
    QList<Row> m_values;     ///< the known rows of a list of values
    QHash<int, Row> m_cache; ///< rows of a table that were read lately
    int m_knownCount = -1;   ///< full count where it is known without reading the rows
    int m_current = 0;

    [[nodiscard]] QStringList identityFields() const;

    Pending m_pending = Pending::None;
    QStringList m_identity;         ///< of the row that is being edited, as it was read
    std::map<int, QString> m_edits; ///< field index to new text
};

} // namespace store
