#include "report/ui/frmpreview.h"

#include "report/ui/pdffile.h"
#include "ui/widgets.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QSize>
#include <QSpinBox>
#include <QStyle>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace report {

namespace {

constexpr int kWholePage = -1;
constexpr int kPageWidth = -2;
constexpr int kOther = -3; ///< a zoom that is not in the list, shown as text
constexpr std::array<int, 9> kZooms = {50, 75, 100, 125, 150, 200, 250, 300, 400};
constexpr QSize kFrame(20, 60); ///< the window's own and the desktop's bars

} // namespace

frmPreview::frmPreview(const Services &services, Printing &printing, std::unique_ptr<Document> document)
    : QWidget(nullptr, Qt::Window), m_services(services), m_printing(printing),
      m_document(std::move(document)), m_pages(std::make_unique<PagePainter>(*m_document))
{
    setObjectName(QStringLiteral("frmPreview"));
    const QString &title = m_document->layout().title;
    setWindowTitle(title.isEmpty() ? QStringLiteral("Просмотр печати")
                                   : QStringLiteral("Просмотр печати: ") + title);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    buildLayout();
    addShortcuts();
    connect(cmbpecat, &QPushButton::clicked, this, &frmPreview::cmbpecat_Click);
    connect(cmbpdf, &QPushButton::clicked, this, &frmPreview::cmbpdf_Click);
    connect(cmbzakr, &QPushButton::clicked, this, &QWidget::close);
    connect(Stranica, &PageView::pageChanged, this, &frmPreview::showPage);
    connect(Stranica, &PageView::zoomChanged, this, &frmPreview::showZoom);
    showPage();
    showZoom();
}

frmPreview::~frmPreview()
{
    ui::deleteContent(this); // the view paints from the document, which is a member
}

void frmPreview::buildLayout()
{
    auto *column = new QVBoxLayout(this);
    QBoxLayout *files = newGroup();
    cmbpecat = ui::makeButton(this, "cmbpecat", QStringLiteral("Печать"),
                              QStringLiteral("Напечатать на принтере (Ctrl+P)"));
    cmbpdf = ui::makeButton(this, "cmbpdf", QStringLiteral("PDF"),
                            QStringLiteral("Сохранить страницы в файл PDF (Ctrl+S)"));
    files->addWidget(cmbpecat);
    files->addWidget(cmbpdf);
    QBoxLayout *pages = newGroup();
    addPageButtons(pages);
    QBoxLayout *place = m_document->layout().sheet ? newGroup() : nullptr;
    if (place != nullptr)
        addFirstPlace(place);
    QBoxLayout *zoom = newGroup();
    addZoom(zoom);
    QBoxLayout *end = newGroup();
    cmbzakr =
        ui::makeButton(this, "cmbzakr", QStringLiteral("Закрыть"), QStringLiteral("Закрыть окно (Esc)"));
    end->addWidget(cmbzakr);
    addBar(column, {files, pages}, place != nullptr ? Groups{place, zoom, end} : Groups{zoom, end});

    Stranica = new PageView(*m_document, *m_pages, this);
    Stranica->setObjectName(QStringLiteral("Stranica"));
    Stranica->setAccessibleName(QStringLiteral("Страница"));
    Stranica->setToolTip(QStringLiteral("PgUp, PgDn: страницы; Ctrl и колесо мыши: масштаб"));
    column->addWidget(Stranica, 1);
    lblitog = ui::makeLabel(this, QString());
    lblitog->setObjectName(QStringLiteral("lblitog"));
    lblitog->setAccessibleName(QStringLiteral("Итог"));
    lblitog->setWordWrap(true);
    lblitog->hide();
    column->addWidget(lblitog);
    setOrder();
    constexpr QSize kWanted(1100, 720);
    resize(screen() != nullptr ? kWanted.boundedTo(screen()->availableSize() - kFrame) : kWanted);
}

/// Controls that stay side by side.
QBoxLayout *frmPreview::newGroup()
{
    auto *group = new QHBoxLayout(new QWidget(this));
    group->setContentsMargins({});
    return group;
}

/// In one line where the screen has room for it, else in two.
void frmPreview::addBar(QBoxLayout *column, const Groups &first, const Groups &second)
{
    const int gap = style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, this);
    int needed = column->contentsMargins().left() + column->contentsMargins().right() - gap;
    for (const QBoxLayout *group : first + second)
        needed += group->parentWidget()->sizeHint().width() + gap;
    const bool narrow = screen() != nullptr && needed > screen()->availableSize().width() - kFrame.width();
    for (const Groups &groups : narrow ? QList<Groups>{first, second} : QList<Groups>{first + second}) {
        auto *line = new QHBoxLayout;
        column->addLayout(line);
        for (QBoxLayout *group : groups) {
            if (line->count() > 0)
                line->addStretch();
            line->addWidget(group->parentWidget());
        }
    }
}

/// Tab goes as one reads, whether the bar has one line or two.
void frmPreview::setOrder()
{
    QList<QWidget *> order = {Stranica, cmbpecat, cmbpdf, cmbperv, cmbpred, txtstr, cmbsled, cmbposl};
    if (txtmesto != nullptr)
        order.append(txtmesto);
    order.append({cmbminus, cbmasst, cmbplus, cmbzakr});
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmPreview::addPageButtons(QBoxLayout *bar)
{
    const auto button = [this, bar](const char *name, const QString &caption, const QString &tip, auto page) {
        QPushButton *made = ui::makeButton(this, name, caption, tip);
        made->setMaximumWidth(made->fontMetrics().horizontalAdvance(QStringLiteral("MMM")) + 16);
        connect(made, &QPushButton::clicked, this, [this, page] { Stranica->setPage(page()); });
        bar->addWidget(made);
        return made;
    };
    cmbperv = button("cmbperv", QStringLiteral("|◀"), QStringLiteral("Первая страница (Home)"),
                     [] { return qint64{1}; });
    cmbpred = button("cmbpred", QStringLiteral("◀"), QStringLiteral("Предыдущая страница (PgUp)"),
                     [this] { return Stranica->page() - 1; });
    txtstr = new QSpinBox(this);
    txtstr->setObjectName(QStringLiteral("txtstr"));
    txtstr->setToolTip(QStringLiteral("Номер страницы"));
    txtstr->setAccessibleName(txtstr->toolTip());
    txtstr->setAlignment(Qt::AlignRight);
    txtstr->setKeyboardTracking(false);
    txtstr->setMinimumWidth(ui::editWidth(txtstr, 6));
    connect(txtstr, &QSpinBox::valueChanged, this, [this](int page) { Stranica->setPage(page); });
    lblstr = ui::makeLabel(this, pageCount());
    lblstr->setObjectName(QStringLiteral("lblstr"));
    bar->addWidget(txtstr);
    bar->addWidget(lblstr);
    cmbsled = button("cmbsled", QStringLiteral("▶"), QStringLiteral("Следующая страница (PgDn)"),
                     [this] { return Stranica->page() + 1; });
    cmbposl = button("cmbposl", QStringLiteral("▶|"), QStringLiteral("Последняя страница (End)"),
                     [this] { return m_document->pages(); });
}

void frmPreview::addZoom(QBoxLayout *bar)
{
    cmbminus = ui::makeButton(this, "cmbminus", QStringLiteral("−"), QStringLiteral("Мельче (Ctrl+минус)"));
    cmbplus = ui::makeButton(this, "cmbplus", QStringLiteral("+"), QStringLiteral("Крупнее (Ctrl+плюс)"));
    for (QPushButton *button : {cmbminus, cmbplus})
        button->setMaximumWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("MMM")) + 16);
    cbmasst = new QComboBox(this);
    cbmasst->setObjectName(QStringLiteral("cbmasst"));
    cbmasst->setToolTip(QStringLiteral("Масштаб"));
    cbmasst->setAccessibleName(cbmasst->toolTip());
    cbmasst->addItem(QStringLiteral("Вся страница"), kWholePage);
    cbmasst->addItem(QStringLiteral("По ширине"), kPageWidth);
    for (const int zoom : kZooms)
        cbmasst->addItem(QStringLiteral("%1 %").arg(zoom), zoom);
    bar->addWidget(cmbminus);
    bar->addWidget(cbmasst);
    bar->addWidget(cmbplus);
    connect(cbmasst, &QComboBox::activated, this, &frmPreview::zoomChosen);
    connect(cmbminus, &QPushButton::clicked, this, [this] { Stranica->zoomBy(-1); });
    connect(cmbplus, &QPushButton::clicked, this, [this] { Stranica->zoomBy(1); });
}

void frmPreview::addFirstPlace(QBoxLayout *bar)
{
    txtmesto = new QSpinBox(this);
    txtmesto->setObjectName(QStringLiteral("txtmesto"));
    txtmesto->setRange(1, m_document->placesPerSheet());
    txtmesto->setToolTip(
        QStringLiteral("Первое свободное место на начатом листе: слева направо, сверху вниз"));
    txtmesto->setAccessibleName(QStringLiteral("Начать с места"));
    txtmesto->setKeyboardTracking(false);
    bar->addWidget(ui::makeLabel(this, QStringLiteral("Начать с места"), txtmesto));
    bar->addWidget(txtmesto);
    connect(txtmesto, &QSpinBox::valueChanged, this, &frmPreview::firstPlaceChanged);
}

void frmPreview::addShortcuts()
{
    const auto add = [this](const QList<QKeySequence> &keys, auto action) {
        for (const QKeySequence &key : keys) {
            auto *shortcut = new QShortcut(key, this);
            connect(shortcut, &QShortcut::activated, this, action);
        }
    };
    add({Qt::Key_PageUp}, [this] { Stranica->setPage(Stranica->page() - 1); });
    add({Qt::Key_PageDown}, [this] { Stranica->setPage(Stranica->page() + 1); });
    add({Qt::Key_Home}, [this] { Stranica->setPage(1); });
    add({Qt::Key_End}, [this] { Stranica->setPage(m_document->pages()); });
    add({Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}, [this] { Stranica->zoomBy(1); });
    add({Qt::CTRL | Qt::Key_Minus}, [this] { Stranica->zoomBy(-1); });
    add({Qt::CTRL | Qt::Key_P}, [this] { cmbpecat_Click(); });
    add({Qt::CTRL | Qt::Key_S}, [this] { cmbpdf_Click(); });
    add({Qt::Key_Escape}, [this] { close(); });
}

void frmPreview::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        Stranica->setFocus();
}

/// What is being written needs the pages.
void frmPreview::closeEvent(QCloseEvent *event)
{
    event->setAccepted(!m_busy);
}

QString frmPreview::pageCount() const
{
    return QStringLiteral("из %1").arg(m_document->pages());
}

void frmPreview::showPage()
{
    const qint64 pages = m_document->pages();
    const qint64 page = Stranica->page();
    const QSignalBlocker blocker(txtstr);
    txtstr->setRange(1, int(std::min<qint64>(pages, std::numeric_limits<int>::max())));
    txtstr->setValue(int(page));
    lblstr->setText(pageCount());
    for (QPushButton *button : {cmbperv, cmbpred})
        button->setEnabled(page > 1);
    for (QPushButton *button : {cmbsled, cmbposl})
        button->setEnabled(page < pages);
}

void frmPreview::showZoom()
{
    const PageView::Fit fit = Stranica->fit();
    const int zoom = int(std::lround(Stranica->zoom()));
    const int wanted = fit == PageView::Fit::Page    ? kWholePage
                       : fit == PageView::Fit::Width ? kPageWidth
                                                     : zoom;
    if (const int old = cbmasst->findData(kOther); old >= 0)
        cbmasst->removeItem(old);
    int index = cbmasst->findData(wanted);
    if (index < 0) {
        cbmasst->addItem(QStringLiteral("%1 %").arg(zoom), kOther);
        index = cbmasst->count() - 1;
    }
    cbmasst->setCurrentIndex(index);
}

void frmPreview::zoomChosen(int index)
{
    const int chosen = cbmasst->itemData(index).toInt();
    if (chosen == kWholePage)
        Stranica->setFit(PageView::Fit::Page);
    else if (chosen == kPageWidth)
        Stranica->setFit(PageView::Fit::Width);
    else if (chosen != kOther)
        Stranica->setZoom(chosen);
}

void frmPreview::firstPlaceChanged(int place)
{
    m_document->setFirstPlace(place);
    Stranica->setPage(Stranica->page());
}

void frmPreview::tell(const QString &what)
{
    lblitog->setText(what);
    lblitog->show();
}

bool frmPreview::step(qint64 done, qint64 total)
{
    return m_services.progress.advance(QStringLiteral("Страниц"), done, total);
}

/// A file named after the layout, beside the program's own.
QString frmPreview::proposedPdf() const
{
    const QString name = QFileInfo(m_document->layout().path).completeBaseName() + QStringLiteral(".pdf");
    return QDir(m_services.databases.folder()).filePath(name);
}

void frmPreview::cmbpdf_Click()
{
    if (m_busy)
        return;
    QString path = m_services.dialogs.fileToSave(this, QStringLiteral("Сохранить в PDF"), proposedPdf(),
                                                 {QStringLiteral("PDF (*.pdf *.PDF)")});
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().compare(QLatin1String("pdf"), Qt::CaseInsensitive) != 0) {
        // Also "vurnal.rpt" and "log.2026": pages never take the place of anything but pages.
        path += QStringLiteral(".pdf");
        if (QFileInfo::exists(path) &&
            !m_services.messages.askYesNo(
                QStringLiteral("Файл %1 уже есть. Заменить его?").arg(QFileInfo(path).fileName()),
                ui::programTitle()))
            return;
    }
    m_busy = true;
    ui::guarded(m_services.messages, [&] {
        const ui::ProgressScope scope(m_services.progress, QStringLiteral("Сохранение в PDF"), true);
        const bool complete =
            writePdf(*m_document, path, [this](qint64 done, qint64 total) { return step(done, total); });
        tell(complete ? QStringLiteral("Сохранено страниц: %1, файл %2")
                            .arg(QString::number(m_document->pages()), path)
                      : QStringLiteral("Остановлено, файл не записан."));
    });
    m_busy = false;
}

void frmPreview::cmbpecat_Click()
{
    if (m_busy)
        return;
    if (!m_printing.available()) {
        m_services.messages.inform(
            QStringLiteral("В системе нет принтера. Установите принтер или сохраните страницы в файл PDF."),
            ui::programTitle());
        return;
    }
    const PrintWish wish{m_document->layout().title, m_pages->pageSize(), int(m_document->pages()),
                         int(Stranica->page())};
    const std::unique_ptr<PrintTarget> target = m_printing.choose(this, wish);
    if (!target)
        return;
    m_busy = true;
    ui::guarded(m_services.messages, [&] {
        bool stopped = false;
        const ui::ProgressScope scope(m_services.progress, QStringLiteral("Печать"), true);
        const bool complete = paintPages(*m_document, target->device(), target->firstPage(),
                                         target->lastPage(), [&](qint64 done, qint64 total) {
                                             stopped = !step(done, total);
                                             return !stopped;
                                         });
        if (!complete)
            target->abort();
        if (complete || stopped)
            tell(complete ? QStringLiteral("Отправлено на печать страниц: %1.")
                                .arg(target->lastPage() - target->firstPage() + 1)
                          : QStringLiteral("Печать остановлена."));
        if (!complete && !stopped)
            throw store::Error(store::ErrorKind::Unwritable, QStringLiteral("для принтера"),
                               QStringLiteral("принтер не принимает страницы"));
    });
    m_busy = false;
}

} // namespace report
