#pragma once

#include <QString>
#include <QTextStream>

namespace bench {

/// ADIF export and import of a whole log and the merge of two, each against the bare work: the same rows read
/// or written through the engine alone, in one transaction.
class InterchangeWork {
public:
    /// `installation`: a folder of zhurnal-genlog, only read. `scratch`: an empty folder for the files.
    InterchangeWork(const QString &installation, const QString &scratch);

    /// All contacts into one file, and into files of 500.
    void measureExport(QTextStream &out, int runs);
    /// A file of all contacts into an empty log.
    void measureImport(QTextStream &out, int runs);
    /// Two logs of `contacts` each, half of which both hold.
    void measureMerge(QTextStream &out, int runs, qint64 contacts);

private:
    [[nodiscard]] QString path(const QString &name) const;
    /// An empty log of the installation's layout under that folder of the scratch; its path.
    [[nodiscard]] QString emptyLog(const QString &folder) const;
    void removeCopies() const;

    QString m_model;
    QString m_scratch;
    QString m_copies;
};

} // namespace bench
