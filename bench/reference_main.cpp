// zhurnal-bench-reference: the windows of the callbook, the country table and the region table on a big log,
// a big callbook and a big country table.
#include "bench/bare.h"
#include "bench/figures.h"
#include "bench/genlog.h"
#include "bench/windowrig.h"
#include "reference/ui/dxcc1.h"
#include "reference/ui/frmcalbuk.h"
#include "reference/ui/rusdx.h"
#include "store/rowwriter.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QKeyEvent>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace bench {

namespace {

constexpr Budget kKeyBudget{3, 16};

void copyFolder(const QString &from, const QString &to)
{
    if (!QDir().mkpath(to))
        throw store::Error(store::ErrorKind::CannotOpen, to, QStringLiteral("the folder cannot be made"));
    const QStringList names = QDir(from).entryList({QStringLiteral("*.mdb")}, QDir::Files);
    for (const QString &name : names)
        copyFile(QDir(from).filePath(name), QDir(to).filePath(name));
}

QStringList texts(store::Connection &file, const QString &sql, const store::Values &values = {})
{
    QStringList list;
    store::Cursor row = file.run(sql, values);
    while (row.next())
        list.append(row.text(0));
    return list;
}

/// Adds rows to a table until it has `wanted`: the first column from `key`, the others the same text in all.
void fill(store::Connection &file, const QString &table, const QStringList &columns, qint64 wanted,
          const std::function<QByteArray(qint64)> &key)
{
    const qint64 there = file.singleNumber(QStringLiteral("SELECT count(*) FROM ") + table);
    store::RowWriter rows(file, table, columns);
    std::vector<QByteArrayView> row(std::size_t(columns.size()), QByteArrayView("Made up"));
    for (qint64 i = there; i < wanted; ++i) {
        const QByteArray text = key(i);
        row.front() = text;
        (void)rows.add(row);
    }
    rows.commit();
}

/// Callsigns of the log that the callbook does not have yet come first; then made-up ones.
void fillCallbook(store::Library &library, qint64 wanted)
{
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    const QStringList calls =
        texts(log, QStringLiteral("SELECT DISTINCT ccall FROM TBLLOG1 LIMIT ?"), {wanted});
    fill(library.connection(library.path(u"\\dbcalbuk.mdb")), QStringLiteral("tblcalbuk"),
         {QStringLiteral("ccall"), QStringLiteral("fam"), QStringLiteral("nname"), QStringLiteral("otch"),
          QStringLiteral("indeks"), QStringLiteral("obl"), QStringLiteral("qth"), QStringLiteral("adres"),
          QStringLiteral("telefon"), QStringLiteral("qslvia")},
         wanted,
         [&calls](qint64 i) { return i < calls.size() ? calls[i].toUtf8() : "Q" + QByteArray::number(i); });
}

void fillCountries(store::Library &library, qint64 wanted)
{
    fill(library.connection(library.path(u"\\dbdxcc1.mdb")), QStringLiteral("tbldxcc"),
         {QStringLiteral("prf"), QStringLiteral("PREF"), QStringLiteral("strana")}, wanted,
         [](qint64 i) { return "Q" + QByteArray::number(i); });
}

/// Types texts into a box of a window, letter by letter; the time from each key's release to everything
/// shown.
class Typist {
public:
    Typist(QWidget &window, const char *box) : m_box(window.findChild<ui::FilterEdit *>(QLatin1String(box)))
    {
        if (m_box == nullptr)
            qFatal("the window has no %s", box);
        window.show();
        window.activateWindow();
        m_box->setFocus();
        settle();
    }

    [[nodiscard]] Samples type(const QStringList &words)
    {
        Samples samples;
        for (const QString &word : words) {
            m_box->clear();
            settle();
            for (const QChar c : word)
                samples.add(key(c));
        }
        return samples;
    }

private:
    double key(QChar c)
    {
        QKeyEvent press(QEvent::KeyPress, c.unicode(), Qt::NoModifier, QString(c));
        QKeyEvent release(QEvent::KeyRelease, c.unicode(), Qt::NoModifier, QString(c));
        QCoreApplication::sendEvent(m_box, &press);
        settle();
        const QElapsedTimer timer = started();
        QCoreApplication::sendEvent(m_box, &release);
        settle();
        return milliseconds(timer);
    }

    ui::FilterEdit *m_box;
};

/// Every n-th word of a list, `count` of them.
QStringList sample(const QStringList &words, int count)
{
    QStringList chosen;
    const qsizetype step = std::max<qsizetype>(1, words.size() / std::max(1, count));
    for (qsizetype i = 0; i < words.size() && chosen.size() < count; i += step)
        chosen.append(words[i]);
    return chosen;
}

bool measure(QTextStream &out, const QString &folder, qint64 records, qint64 countries, int samples)
{
    store::Library library({folder, false}, folder);
    fillCallbook(library, records);
    fillCountries(library, countries);
    SilentMessages messages;
    NoProgress progress;
    ui::SystemFileDialogs dialogs;
    const reference::Services services{library, messages, progress, dialogs};
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    const QStringList calls =
        sample(texts(log, QStringLiteral("SELECT DISTINCT ccall FROM TBLLOG1")), samples);
    store::Connection &table = library.connection(library.path(u"\\dbdxcc1.mdb"));
    const QStringList names = texts(table, QStringLiteral("SELECT DISTINCT strana FROM tbldxcc"));
    const QStringList prefixes = texts(table, QStringLiteral("SELECT prf FROM tbldxcc ORDER BY prf"));
    const QStringList regions = texts(library.connection(library.path(u"\\dbrusdx.mdb")),
                                      QStringLiteral("SELECT pref FROM tblrus ORDER BY pref"));

    printHead(out);
    const auto run = [&](const QString &name, QWidget &window, const char *box, const QStringList &words) {
        printFigure(out, name, Typist(window, box).type(words), kKeyBudget);
        out.flush();
        window.hide();
    };
    reference::frmcalbuk callbook(services);
    run(QStringLiteral("key release, callbook"), callbook, "txtserch", calls);
    reference::dxcc1 editor(services);
    run(QStringLiteral("key release, country by prefix"), editor, "txtserch", sample(prefixes, samples));
    run(QStringLiteral("key release, country by name"), editor, "txtserch1", sample(names, samples));
    reference::rusdx browser(services);
    run(QStringLiteral("key release, region"), browser, "txtserch", sample(regions, samples));
    return !messages.told();
}

int run(int &argc, char **argv)
{
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Measures the windows of callbook, countries and regions on a copy of a log of made-up contacts."));
    parser.addHelpOption();
    const QCommandLineOption folderOption(
        QStringLiteral("folder"), QStringLiteral("A folder filled by zhurnal-genlog; it is only read."),
        QStringLiteral("DIR"));
    const QCommandLineOption recordsOption(QStringLiteral("records"),
                                           QStringLiteral("Records of the callbook."), QStringLiteral("N"),
                                           QStringLiteral("200000"));
    const QCommandLineOption countriesOption(QStringLiteral("countries"),
                                             QStringLiteral("Rows of the country table."),
                                             QStringLiteral("N"), QStringLiteral("10000"));
    const QCommandLineOption samplesOption(QStringLiteral("samples"),
                                           QStringLiteral("Words typed in each box."), QStringLiteral("K"),
                                           QStringLiteral("200"));
    parser.addOptions({folderOption, recordsOption, countriesOption, samplesOption});
    parser.process(application);

    QTextStream out(stdout);
    const QString folder = QDir(parser.value(folderOption)).absolutePath();
    const auto contacts = generatedContacts(folder);
    if (!contacts) {
        QTextStream(stderr) << folder << " was not filled by zhurnal-genlog\n";
        return 1;
    }
    const QTemporaryDir scratch(QDir::temp().filePath(QStringLiteral("zhurnal-bench-XXXXXX")));
    const QString copy = scratch.filePath(QStringLiteral("copy"));
    copyFolder(folder, copy);
    out << *contacts << " contacts, " << parser.value(recordsOption) << " callbook records, "
        << parser.value(countriesOption) << " rows of countries\n";
    const bool well =
        measure(out, copy, parser.value(recordsOption).toLongLong(),
                parser.value(countriesOption).toLongLong(), parser.value(samplesOption).toInt());
    return well ? 0 : 1;
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
