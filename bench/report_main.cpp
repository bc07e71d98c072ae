// zhurnal-bench-report: the log of a period from the table to the PDF, and one page of a big log on the
// screen.
#include "bench/bare.h"
#include "bench/figures.h"
#include "bench/genlog.h"
#include "report/document.h"
#include "report/shipped.h"
#include "report/ui/pagepainter.h"
#include "report/ui/pdffile.h"
#include "store/library.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace bench {

namespace {

constexpr Budget kPdf{3000, std::nullopt}; ///< of 10,000 contacts
constexpr qint64 kPdfContacts = 10000;

/// Puts the first `contacts` of the log into the table that the layout reads.
void stage(store::Library &databases, qint64 contacts)
{
    store::Connection &print = databases.connection(databases.path(u"\\dbprint.mdb"));
    print.exec(QStringLiteral("ATTACH ? AS log"), {databases.path(u"\\dbiaru.mdb")});
    print.exec(QStringLiteral("DELETE FROM tblprint"));
    print.exec(QStringLiteral("INSERT INTO tblprint SELECT * FROM log.TBLLOG1 ORDER BY rowid LIMIT ?"),
               {contacts});
    print.exec(QStringLiteral("DETACH log"));
}

std::unique_ptr<report::Document> read(store::Library &databases)
{
    const QString name = QStringLiteral("vurnal.rpt");
    return report::Document::read(report::readLayout(report::shippedLayout(name), name), databases);
}

void measurePdf(QTextStream &out, store::Library &databases, const QString &path, int runs)
{
    Samples samples;
    qint64 pages = 0;
    qint64 rows = 0;
    for (int run = 0; run < runs; ++run) {
        const QElapsedTimer timer = started();
        const auto document = read(databases);
        if (!report::writePdf(*document, path, [](qint64, qint64) { return true; }))
            throw store::Error(store::ErrorKind::Unwritable, path, QString());
        samples.add(milliseconds(timer));
        pages = document->pages();
        rows = document->rows();
    }
    printFigure(out, QStringLiteral("log of a period, %1 contacts to PDF").arg(rows), samples, kPdf);
    out << pages << " pages, " << QFile(path).size() / 1024 << " KiB\n";
}

void measurePreview(QTextStream &out, store::Library &databases, int runs)
{
    Samples reading;
    Samples painting;
    qint64 rows = 0;
    for (int run = 0; run < runs; ++run) {
        const QElapsedTimer timer = started();
        const auto document = read(databases);
        reading.add(milliseconds(timer));
        rows = document->rows();
        const report::PagePainter pages(*document);
        constexpr int kScale = 4;
        QImage image((pages.pageSize() * kScale).toSize(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.scale(kScale, kScale);
        const QElapsedTimer page = started();
        pages.paint(painter, document->pages() / 2 + 1);
        painting.add(milliseconds(page));
    }
    printFigure(out, QStringLiteral("preview of %1 contacts, read").arg(rows), reading);
    printFigure(out, QStringLiteral("preview, one page painted"), painting);
}

int run(int &argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Measures the report of a period on made-up contacts: into a PDF file, and in the preview."));
    parser.addHelpOption();
    const QCommandLineOption rowsOption(QStringLiteral("rows"), QStringLiteral("Contacts of the preview."),
                                        QStringLiteral("N"), QStringLiteral("100000"));
    const QCommandLineOption runsOption(QStringLiteral("runs"), QStringLiteral("Runs of each operation."),
                                        QStringLiteral("K"), QStringLiteral("5"));
    parser.addOptions({rowsOption, runsOption});
    parser.process(application);
    const qint64 rows = std::max(1LL, parser.value(rowsOption).toLongLong());
    const int runs = std::max(1, parser.value(runsOption).toInt());

    QTextStream out(stdout);
    printHead(out);
    const QTemporaryDir scratch(QDir::temp().filePath(QStringLiteral("zhurnal-bench-XXXXXX")));
    (void)generateLog(scratch.filePath(QStringLiteral("made")), rows);
    store::Library databases({scratch.filePath(QStringLiteral("made")), false}, scratch.path());
    stage(databases, std::min(rows, kPdfContacts));
    measurePdf(out, databases, scratch.filePath(QStringLiteral("log.pdf")), runs);
    stage(databases, rows);
    measurePreview(out, databases, runs);
    return 0;
}

} // namespace

} // namespace bench

int main(int argc, char *argv[])
{
    try {
        return bench::run(argc, argv);
    } catch (const store::Error &error) {
        QTextStream(stderr) << error.details() << '\n';
        return 1;
    }
}
