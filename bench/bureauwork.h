#pragma once

#include "bench/figures.h"
#include "store/datasource.h"
#include "store/library.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace bench {

/// The statements of the QSL bureau on one log, each as its window runs it, through a data source.
class BureauWork {
public:
    /// `folder`: an installation; opened here, so the first figure is that of a cold connection.
    BureauWork(const QString &folder, int samples);

    void measureOpening(QTextStream &out);
    void measureCounts(QTextStream &out);
    /// `keys`: own-callsign keys with a word on each.
    void measureSearch(QTextStream &out, const QString &name, const QString &key);
    void measureLists(QTextStream &out, const QString &name, const QString &key);
    void measureOthers(QTextStream &out);

private:
    [[nodiscard]] double shown(store::DataSource &source, const store::SqlText &text);
    [[nodiscard]] double counted(store::DataSource &source, const store::SqlText &text, qint64 &count);
    [[nodiscard]] double keyRelease(const QString &beginning, const QString &key);
    void list(QTextStream &out, const QString &name, const store::SqlText &text);
    void countCountry(QTextStream &out, const QString &country);
    void countRegion(QTextStream &out, const QString &region);

    store::Library m_library;
    int m_samples;
    store::DataSource m_calls;
    store::DataSource m_contacts;
    store::DataSource m_country;
    store::DataSource m_counter;
    QStringList m_typed;
    QString m_rareCountry;
    QString m_rareBand;
    QString m_commonRegion;
    QString m_rareRegion;
};

} // namespace bench
