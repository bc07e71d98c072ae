#pragma once

#include <QString>
#include <QTextStream>

namespace bench {

/// Operations on the whole log, each against the bare work: the same rows read and written through the engine
/// alone, in one transaction, on a copy of the same file. Every run has a fresh copy, on the disk before the
/// clock starts.
class BulkWork {
public:
    /// `installation`: a folder of zhurnal-genlog, only read. `scratch`: an empty folder for the copies.
    BulkWork(const QString &installation, const QString &scratch);

    /// Country revision of a log that is right, and of one without countries and operator marks. The verified
    /// copy that goes before it is a figure of its own.
    void measureRevision(QTextStream &out, int runs);
    /// A parallel log of that many contacts loaded into the log.
    void measureParallelLoad(QTextStream &out, int runs, qint64 contacts);
    /// All contacts as one period: copied into the print table, once into the empty one and once more over
    /// the copy, and shown in the grid's source.
    void measurePeriod(QTextStream &out, int runs);

private:
    /// The log of the next run: a copy of `model` under the installation's name.
    void putLog(const QString &model);
    /// A copy of `model` for the bare work; its path.
    [[nodiscard]] QString putBare(const QString &model);

    QString m_folder; ///< an installation to work in
    QString m_copies; ///< the user's folder of that installation
    QString m_model;  ///< the log as it was made
    QString m_scratch;
    qint64 m_contacts = 0;
};

} // namespace bench
