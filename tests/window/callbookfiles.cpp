// The callbook filled from a text file and written to one, in its window.
#include "support/reference.h"

#include <QFile>

using testsupport::Callbook;
using testsupport::kFullRecord;

namespace {

const QString kTitle = QStringLiteral("Пополнение базы: ");

QString write(const Callbook &c, const char *name, const QByteArray &bytes)
{
    QString path = c.w.installation.file(QLatin1String(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("no text file");
    return path;
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// Chooses a file with these bytes.
void import(Callbook &c, const QByteArray &bytes)
{
    c.w.dialogs.chosen = write(c, "stations.csv", bytes);
    c.click("cmbimport");
}

/// A new station, one that is known, a row without a callsign and a column that nobody has.
constexpr auto kStations =
    "ccall;nname;qth;grid\nUA9NEW;Иван;Пермь;LO88\nUA3ABC;Другой;Другой;KO85\n;Никто;;\n";

} // namespace

class CallbookFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The question names what was found; "Нет" changes nothing.
    void asked()
    {
        Callbook c;
        const QStringList before = c.records();
        c.w.messages.yes = false;
        import(c, kStations);
        QCOMPARE(c.w.messages.asked.size(), 1);
        const QString question = c.w.messages.asked.front();
        QVERIFY2(question.startsWith(kTitle), qPrintable(question));
        for (const char16_t *piece :
             {u"stations.csv: записей 3, прочитан как UTF-8.", u"Новых позывных: 1.", u"Уже есть в базе: 1.",
              u"Записи без позывного, не берутся: 1 (строки файла 4).",
              u"Столбцы, которые не берутся (в базе таких нет или они повторены): grid.", u"Пополнить базу?"})
            QVERIFY2(question.contains(QString::fromUtf16(piece)), qPrintable(question));
        QCOMPARE(c.records(), before);
        QCOMPARE(c.status(), QString());
    }

    /// New callsigns are added; of a known one nothing that is filled changes.
    void imported()
    {
        Callbook c;
        const QStringList before = c.records();
        import(c, kStations);
        QCOMPARE(c.records(), before + QStringList(QStringLiteral("UA9NEW||Иван||||Пермь|||")));
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.status(), QStringLiteral("stations.csv: добавлено записей 1, дополнено 0, не взято 1."));
        c.lookUp("ua9new");
        QVERIFY(c.boxes().startsWith(QStringLiteral("UA9NEW||Иван|")));
        QVERIFY(c.w.messages.errors.isEmpty());
    }

    /// The record that is shown is shown as it is afterwards; what was typed into it counts.
    void shownRecordIsFilled()
    {
        Callbook c;
        c.w.installation.sql(QStringLiteral("dbcalbuk.mdb"),
                             QStringLiteral("UPDATE tblcalbuk SET otch='',telefon='' WHERE ccall='UA3ABC'"));
        c.lookUp("ua3abc");
        c.enter("txttelefon", "5-67");
        import(c, "ccall\totch\ttelefon\nua3abc\tSergeevich\t9-99\n");
        QCOMPARE(c.text("txtotch"), QStringLiteral("Sergeevich"));
        QCOMPARE(c.text("txttelefon"), QStringLiteral("5-67"));
        QCOMPARE(c.record("UA3ABC", "otch,telefon"), QStringLiteral("Sergeevich|5-67"));
        QCOMPARE(c.status(), QStringLiteral("stations.csv: добавлено записей 0, дополнено 1."));
    }

    void nothingNew()
    {
        Callbook c;
        import(c, "ccall;nname\nUA3ABC;Другой\n");
        QVERIFY(c.w.messages.asked.isEmpty());
        QCOMPARE(c.w.messages.told.size(), 1);
        QVERIFY(c.w.messages.told.front().contains(QStringLiteral("Ничего нового для базы в файле нет.")));
    }

    void nothingChosen()
    {
        Callbook c;
        c.click("cmbimport");
        c.click("cmbexport");
        QCOMPARE(c.w.dialogs.opened.size(), 2);
        QVERIFY(c.quiet());
    }

    void badFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no header") << QByteArray("UA9NEW;Ivan\n");
        QTest::newRow("binary") << QByteArray("ccall;nname\n\0\1\2;\0\n", 18);
        QTest::newRow("open quote") << QByteArray("ccall;nname\nUA9NEW;\"Ivan\nUA9TWO;Oleg\n");
    }

    void badFiles()
    {
        QFETCH(const QByteArray, bytes);
        Callbook c;
        const QStringList before = c.records();
        import(c, bytes);
        QCOMPARE(c.w.messages.errors.size(), 1);
        QVERIFY(c.w.messages.asked.isEmpty());
        QCOMPARE(c.records(), before);
    }

    void exported()
    {
        Callbook c;
        c.lookUp("ua3abc");
        c.enter("txttelefon", "5;67");
        c.w.dialogs.chosen = c.w.installation.file(QStringLiteral("out.csv"));
        c.click("cmbexport");
        const QByteArray text = content(c.w.dialogs.chosen);
        QVERIFY(text.startsWith("ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia\r\n"));
        QVERIFY(text.contains(";\"5;67\";"));               // what was typed last is there
        QVERIFY(text.contains("\xCC\xEE\xF1\xEA\xE2\xE0")); // Windows-1251
        QCOMPARE(c.status(), QStringLiteral("out.csv: записей 2, кодировка Windows-1251."));
        c.w.dialogs.chosen = c.w.installation.file(QStringLiteral("out.txt"));
        c.click("cmbexport");
        QVERIFY(content(c.w.dialogs.chosen).startsWith("ccall\tfam\t"));
        QVERIFY(c.quiet());
    }

    /// A database is never written over.
    void exportOverTheLog()
    {
        Callbook c;
        const QString log = c.w.installation.file(QStringLiteral("dbiaru.mdb"));
        c.w.dialogs.chosen = log;
        c.click("cmbexport");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QVERIFY(content(log).startsWith("SQLite format 3"));
    }

    void stopped()
    {
        Callbook c;
        QByteArray many = "ccall;nname\n";
        for (int i = 0; i < 5000; ++i)
            many += "Q" + QByteArray::number(i) + ";X\n";
        const QStringList before = c.records();
        c.w.progress.stopNow = true;
        import(c, many);
        QVERIFY(c.w.messages.asked.isEmpty());
        QCOMPARE(c.status(), QStringLiteral("Остановлено: база не изменилась."));
        QCOMPARE(c.records(), before);
        c.w.dialogs.chosen = c.w.installation.file(QStringLiteral("out.csv"));
        c.w.progress.stopNow = false;
        import(c, many);
        QCOMPARE(c.records().size(), before.size() + 5000);
        c.w.progress.stopNow = true;
        c.w.dialogs.chosen = c.w.installation.file(QStringLiteral("out.csv"));
        c.click("cmbexport");
        QCOMPARE(c.status(), QStringLiteral("Остановлено: файл не записан."));
        QVERIFY(!QFile::exists(c.w.dialogs.chosen));
    }
};

QTEST_MAIN(CallbookFilesTest)
#include "callbookfiles.moc"
