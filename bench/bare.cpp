#include "bench/bare.h"

namespace bench {

namespace {

constexpr double kMostTimesTheBareWork = 2;

} // namespace

void printAgainst(QTextStream &out, const QString &name, const Samples &work, const Samples &bare)
{
    printFigure(out, name, work, Budget{kMostTimesTheBareWork * bare.median(), {}});
    printFigure(out, QStringLiteral("  the bare work"), bare);
    out << "  that is " << QString::number(work.median() / bare.median(), 'f', 2) << " times the bare work\n";
    out.flush(); // a million rows take their time
}

} // namespace bench
