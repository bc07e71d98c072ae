#include "awards/ui/blankview.h"

#include "awards/blanksummary.h"
#include "ui/widgets.h"

#include <QVBoxLayout>

namespace awards {

BlankView::BlankView(store::Library &databases, store::DataSource &source, const char *gridName,
                     ui::StatusLine &status, QWidget *parent)
    : QWidget(parent), m_databases(databases), m_source(source), m_status(status)
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
    connect(&m_source, &store::DataSource::wasReset, this, &BlankView::count);
    connect(&m_source, &store::DataSource::rowRemoved, this, &BlankView::count);
    connect(&m_source, &store::DataSource::rowChanged, this, [this] {
        if (!m_source.editPending()) // a changed cell has been saved
            count();
    });
    connect(m_grid, &ui::DbGrid::deleteAsked, this,
            [this](int row) { m_status.asked([&] { m_source.removeRow(row); }); });
    connect(m_grid->sourceModel(), &ui::SourceModel::failed, this,
            [this](const store::Error &error) { m_status.tell(error); });
    count();
}

void BlankView::count()
{
    m_status.quietly(
        [this] { lblsvod->setText(summaryLine(summarize(m_databases, m_source.databaseName()))); });
}

} // namespace awards
