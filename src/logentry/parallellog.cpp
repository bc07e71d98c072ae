#include "logentry/parallellog.h"

#include "logentry/sql.h"

namespace logentry {

namespace {

QString path(Sources &sources)
{
    return sources.databases().path(u"\\dblog.mdb");
}

} // namespace

void ParallelLog::empty()
{
    m_sources.databases().execute(path(m_sources), sql::emptyParallelLog());
    m_sources.Data15.refresh();
}

qint64 ParallelLog::load(const store::Progress &copying, const store::Progress &loading)
{
    store::Library &library = m_sources.databases();
    const QString file = path(m_sources);
    (void)library.connection(file); // a file that is missing or foreign is told before the copy is made
    library.makeVerifiedCopy(m_sources.mainLogPath(), copying);
    const qint64 rows = library.execute(file, sql::loadParallelLog(m_sources.mainLogPath()), loading);
    for (store::DataSource *source : {&m_sources.Data1, &m_sources.Data5})
        source->refresh(); // the grid shows the rows that came in
    return rows;
}

} // namespace logentry
