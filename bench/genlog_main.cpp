// zhurnal-genlog FOLDER COUNT: an installation with a log of COUNT made-up contacts.
#include "bench/genlog.h"
#include "store/error.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QStringList arguments = QCoreApplication::arguments();
    bool isNumber = false;
    const qint64 contacts = arguments.size() == 3 ? arguments[2].toLongLong(&isNumber) : 0;
    if (!isNumber || contacts < 1) {
        err << "usage: zhurnal-genlog FOLDER COUNT\n";
        return 2;
    }
    QElapsedTimer timer;
    timer.start();
    try {
        const bench::GeneratedLog made = bench::generateLog(arguments[1], contacts);
        out << made.contacts << " contacts, " << made.calls << " callsigns, " << made.countries
            << " countries, " << made.callbookEntries << " callbook entries, "
            << static_cast<double>(timer.elapsed()) / 1e3 << " s\n";
    } catch (const store::Error &error) {
        err << error.line() << '\n' << error.details() << '\n';
        return 1;
    }
    return 0;
}
