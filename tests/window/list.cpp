// Lists bound to a data source: what counts as chosen, and finding a row by typing.
#include "support/installation.h"
#include "ui/dblist.h"

#include <QSignalSpy>
#include <QTest>

using testsupport::Installation;

namespace {

constexpr int kNames = 700; ///< more than a list reads at once

/// A list over names N000 ... N699.
class Names {
public:
    Names() : source(QStringLiteral("Data1"), in.databases), list(source, QStringLiteral("nname"))
    {
        in.sql(QStringLiteral("dbname.mdb"),
               QStringLiteral("DELETE FROM tblNAME; WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 "
                              "FROM n WHERE i<%1) INSERT INTO tblNAME SELECT printf('N%03d',i) FROM n")
                   .arg(kNames - 1));
        source.setDatabaseName(in.databases.path(u"\\dbname.mdb"));
        source.setRecordSource(u"select * from tblNAME order by nname");
        source.refresh();
        list.show();
        list.setFocus();
        if (!QTest::qWaitForWindowActive(&list))
            qFatal("the list does not get active");
    }

    Installation in;
    store::DataSource source;
    ui::DbList list;
};

} // namespace

class ListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void focusAloneChoosesNothing()
    {
        Names n;
        QCOMPARE(n.list.currentIndex().row(), 0);
        QCOMPARE(n.list.chosenText(), QString());
        QCOMPARE(n.list.text(), QStringLiteral("N000")); // shown as the first one
        QSignalSpy reached(&n.list, &ui::DbList::reached);
        QSignalSpy confirmed(&n.list, &ui::DbList::confirmed);
        QTest::keyClick(&n.list, Qt::Key_Return);
        QCOMPARE(n.list.chosenText(), QStringLiteral("N000"));
        QCOMPARE(reached.size(), 1);
        QCOMPARE(confirmed.size(), 1);
        QTest::keyClick(&n.list, Qt::Key_Down);
        QCOMPARE(n.list.chosenText(), QStringLiteral("N001"));
        QCOMPARE(reached.size(), 2);
        QCOMPARE(confirmed.size(), 1);
    }
    void spaceChooses()
    {
        Names n;
        QSignalSpy reached(&n.list, &ui::DbList::reached);
        QTest::keyClick(&n.list, Qt::Key_Space);
        QCOMPARE(n.list.chosenText(), QStringLiteral("N000"));
        QCOMPARE(reached.size(), 1);
        QTest::keyClick(&n.list, Qt::Key_Space);
        QCOMPARE(reached.size(), 1);
    }
    void chosenByText()
    {
        Names n;
        QSignalSpy reached(&n.list, &ui::DbList::reached);
        QSignalSpy chosen(&n.list, &ui::DbList::chosen);
        n.list.choose(QStringLiteral("N650"));
        QCOMPARE(n.list.chosenText(), QStringLiteral("N650"));
        n.list.choose(QStringLiteral("nobody"));
        QCOMPARE(n.list.chosenText(), QString());
        QCOMPARE(reached.size() + chosen.size(), 0);
    }
    void typedLettersFindARowFarDown()
    {
        Names n;
        QVERIFY(n.list.model()->rowCount() < kNames);
        QSignalSpy reached(&n.list, &ui::DbList::reached);
        QTest::keyClicks(&n.list, QStringLiteral("n69"));
        QCOMPARE(n.list.chosenText(), QStringLiteral("N690"));
        QCOMPARE(reached.constLast().constFirst().toString(), QStringLiteral("N690"));
    }
    void failedReadingEndsTheSearch()
    {
        Names n;
        QSignalSpy failed(n.list.sourceModel(), &ui::SourceModel::failed);
        n.in.sql(QStringLiteral("dbname.mdb"), QStringLiteral("DROP TABLE tblNAME"));
        n.list.choose(QStringLiteral("N650"));
        QCOMPARE(n.list.chosenText(), QString());
        QVERIFY(!failed.isEmpty());
    }
};

QTEST_MAIN(ListTest)
#include "list.moc"
