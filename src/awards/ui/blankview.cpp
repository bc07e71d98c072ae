#include "awards/ui/blankview.h"

#include "ui/widgets.h"

#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

namespace awards {

BlankView::BlankView(store::Library &databases, store::DataSource &source, const char *gridName,
                     ui::StatusLine &status, QWidget *parent)
    : QWidget(parent), m_source(source), m_status(status), m_count(databases)
{
    const QList<ui::GridColumn> columns = {{QStringLiteral("ccall"), QStringLiteral("Call"), 12},
                                           {QStringLiteral("ddate"), QStringLiteral("Date"), 9},
                                           {QStringLiteral("ttime"), QStringLiteral("time"), 6},
                                           {QStringLiteral("bband"), QStringLiteral("Band"), 5},
                                           {QStringLiteral("rsts"), QStringLiteral("rsts"), 5},
                                           {QStringLiteral("rstr"), QStringLiteral("rstr"), 5},
                                           {QStringLiteral("mult"), QStringLiteral("mult"), 6},
                                           {QStringLiteral("point"), QStringLiteral("point"), 6},
                                           {QStringLiteral("ps"), QStringLiteral("Remarks"), 10},
                                           {QStringLiteral("CONTR"), QStringLiteral("Country"), 14}};
    m_grid = new ui::DbGrid(
        m_source, columns, [this](const auto &operation) { return m_status.asked(operation); }, this);
    m_grid->setObjectName(QLatin1String(gridName));
    m_grid->setAccessibleName(QStringLiteral("Бланк"));
    m_grid->setToolTip(QStringLiteral("Связи для заявки. Буквы и цифры меняют ячейку, Del убирает строку"));
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    lblsvod = ui::makeLabel(this, QString());
    lblsvod->setObjectName(QStringLiteral("lblsvod"));
    lblsvod->setAccessibleName(QStringLiteral("Итоги бланка"));
    lblsvod->setToolTip(QStringLiteral(
        "Без карточки: строки, для которых в журнале нет полученной QSL за этот день на этом диапазоне"));
    lblsvod->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(m_grid, 1);
    column->addWidget(lblsvod);
    m_counting.setSingleShot(true);
    connect(&m_counting, &QTimer::timeout, this, &BlankView::count);
    connect(&m_source, &store::DataSource::wasReset, this, &BlankView::countSoon);
    connect(&m_source, &store::DataSource::rowRemoved, this, &BlankView::countSoon);
    connect(&m_source, &store::DataSource::rowChanged, this, [this] {
        if (!m_source.editPending()) // a changed row has been saved
            countSoon();
    });
    connect(m_grid, &ui::DbGrid::deleteAsked, this,
            [this](int row) { m_status.asked([&] { m_source.removeRow(row); }); });
    connect(m_grid->sourceModel(), &ui::SourceModel::failed, this,
            [this](const store::Error &error) { m_status.tell(error); });
}

void BlankView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    countSoon(); // what has changed while nobody saw it
}

// ---- counts

void BlankView::countSoon()
{
    m_stale = true;
    if (isVisible())
        m_counting.start(0);
}

void BlankView::count()
{
    m_status.quietly([this] {
        lblsvod->clear(); // old counts must not stand where the new ones cannot be had
        if (std::exchange(m_stale, false))
            m_count.begin(m_source.databaseName());
        constexpr int kPiece = 500; // some 20 ms of a long log
        if (!m_count.step(kPiece))
            m_counting.start(0);
        lblsvod->setText(summaryLine(m_count.summary(), m_count.done()));
    });
}

} // namespace awards
