#pragma once

#include "report/document.h"
#include "report/shipped.h"
#include "report/ui/pagepainter.h"
#include "report/ui/pageview.h"
#include "report/ui/previewreports.h"
#include "support/window.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QPushButton>
#include <QWindow>

/// Reports on a fresh installation, shown in real windows and printed on a recording printer.
namespace testsupport::reports {

using namespace report;

/// A printer that keeps what it prints.
class RecordedPrinting final : public Printing {
public:
    bool there = true;
    bool chosen = true;
    int first = 1;
    int last = 0; ///< 0: all
    int aborted = 0;
    QList<PrintWish> wishes;
    QBuffer paper;

    [[nodiscard]] bool available() const override { return there; }
    [[nodiscard]] std::unique_ptr<PrintTarget> choose(QWidget *parent, const PrintWish &wish) override
    {
        wishes.append(wish);
        if (!chosen || parent == nullptr)
            return nullptr;
        paper.close();
        paper.setData({});
        if (!paper.open(QIODevice::WriteOnly))
            return nullptr;
        return std::make_unique<Target>(*this, last > 0 ? last : wish.pages);
    }

private:
    class Target final : public PrintTarget {
    public:
        Target(RecordedPrinting &owner, int last) : m_owner(owner), m_last(last) {}
        [[nodiscard]] QPagedPaintDevice &device() override { return m_writer; }
        [[nodiscard]] int firstPage() const override { return m_owner.first; }
        [[nodiscard]] int lastPage() const override { return m_last; }
        void abort() override { ++m_owner.aborted; }

    private:
        RecordedPrinting &m_owner;
        int m_last;
        QPdfWriter m_writer{&m_owner.paper};
    };
};

inline QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// Output of one of the programs that look into PDF files.
inline QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s: %s", qPrintable(program), process.readAllStandardError().constData());
    return QString::fromUtf8(process.readAllStandardOutput());
}

inline QString pdfText(const QString &path)
{
    return outputOf(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
}

inline int pdfPages(const QString &path)
{
    const QStringList lines = outputOf(QStringLiteral("pdfinfo"), {path}).split(u'\n');
    for (const QString &line : lines)
        if (line.startsWith(QLatin1String("Pages:")))
            return line.mid(6).trimmed().toInt();
    return -1;
}

inline constexpr auto kList =
    "<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='60mm' viewBox='0 0 100 60' "
    "data-table='tblprint'><title>Проба</title><text x='5' y='8' font-size='4'>Лист {page} из "
    "{pages}</text><g id='detail' data-height='5' data-rows='8'><path d='M5 16h90' "
    "stroke='#000' stroke-width='0.2'/><text x='5' y='15' font-size='3'>{row} {ccall} {QTH}</text></g></svg>";

/// Reports in the preview, on a fresh installation.
struct Desk {
    Installation installation;
    testsupport::FakeMessages messages;
    testsupport::FakeProgress progress;
    testsupport::FakeDialogs dialogs;
    RecordedPrinting *printing = new RecordedPrinting; ///< the reports own it
    std::unique_ptr<PreviewReports> reports = std::make_unique<PreviewReports>(
        Services{installation.databases, messages, progress, dialogs}, std::unique_ptr<Printing>(printing));

    void rows(int count) const
    {
        installation.sql(
            QStringLiteral("dbprint.mdb"),
            QStringLiteral(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                "tblprint(ccall,ddate,ttime,bband,ps1,rsts,rstr,NNAME,QTH,CONTR) SELECT "
                "'R'||i||'A','05.03.26','10:00','14','CW','599','589','Иван','Тамбов','RUSSIA' FROM n")
                .arg(count));
    }
    void blank(int stations) const
    {
        installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                "tbllogTEMP(ccall,ddate,ttime,bband,rsts,mult) SELECT 'R'||i||'A','05.03.26','10:00','14',"
                "'599','CW' FROM n")
                .arg(stations));
    }
    [[nodiscard]] QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(installation.file(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s", qPrintable(name));
        return file.fileName();
    }
    /// Runs a layout and gives its window.
    QWidget *show(const QByteArray &layout, const QString &name = QStringLiteral("a.rpt"))
    {
        const qsizetype before = reports->windows().size();
        reports->print(write(name, layout));
        const QList<QWidget *> windows = reports->windows();
        if (windows.size() != before + 1)
            qFatal("%s", qPrintable(messages.errors.join(u'\n')));
        windows.last()->activateWindow();
        if (!QTest::qWaitForWindowActive(windows.last()))
            qFatal("the window does not get active");
        return windows.last();
    }
    QWidget *showShipped(const QString &name) { return show(shippedLayout(name), name); }
};

template <typename Widget>
Widget *find(const QWidget *window, const char *name)
{
    auto *widget = window->findChild<Widget *>(QLatin1String(name));
    if (widget == nullptr)
        qFatal("no %s", name);
    return widget;
}

inline PageView *view(const QWidget *window)
{
    return find<PageView>(window, "Stranica");
}

inline void press(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(window->windowHandle(), key, modifiers);
}

inline void click(const QWidget *window, const char *name)
{
    QTest::mouseClick(find<QPushButton>(window, name), Qt::LeftButton);
}

/// A page as a picture of 8 pixels a millimetre, with a rim of 80 pixels around it.
inline constexpr int kRim = 80;
inline QImage picture(const Document &document, qint64 page = 1)
{
    constexpr int kScale = 8;
    const PagePainter pages(document);
    const QSize size = (pages.pageSize() * kScale).toSize();
    QImage image(size + QSize(2 * kRim, 2 * kRim), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(kRim, kRim);
    painter.scale(kScale, kScale);
    pages.paint(painter, page);
    return image;
}

/// What is not white of a picture.
inline QRect inked(const QImage &image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != QColor(Qt::white))
                area |= QRect(x, y, 1, 1);
    return area;
}

} // namespace testsupport::reports
