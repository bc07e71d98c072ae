#include "reference/ui/updatepanel.h"

#include "ui/widgets.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace reference {

namespace {

enum Column { Action, Prefix, Country, Detail, kColumns };
constexpr std::array<const char16_t *, kColumns> kHeadings = {u"Строка", u"prf", u"Страна", u"Подробно"};

} // namespace

void UpdateModel::setPlan(const CountryPlan &plan)
{
    beginResetModel();
    m_plan = plan;
    endResetModel();
}

int UpdateModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_plan.changes.size() + m_plan.remarks.size());
}

int UpdateModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(kColumns);
}

QVariant UpdateModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    if (index.row() < m_plan.remarks.size()) { // they come first, or nobody would read them
        if (index.column() == Action)
            return QStringLiteral("Замечание");
        return index.column() == Detail ? m_plan.remarks[index.row()] : QString();
    }
    const CountryChange &change = m_plan.changes[index.row() - m_plan.remarks.size()];
    switch (index.column()) {
    case Action:
        return change.kindText();
    case Prefix:
        return change.prf();
    case Country:
        return change.country();
    default:
        return change.what();
    }
}

QVariant UpdateModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QString::fromUtf16(kHeadings.at(std::size_t(section)));
}

UpdatePanel::UpdatePanel(QWidget *parent)
    : QGroupBox(QStringLiteral("Обновление таблицы стран"), parent), m_model(new UpdateModel(this))
{
    setObjectName(QStringLiteral("FrObnow"));
    lblobnow = ui::makeLabel(this, QString());
    lblobnow->setObjectName(QStringLiteral("lblobnow"));
    lblobnow->setWordWrap(true);
    lstobnow = new QTableView(this);
    lstobnow->setObjectName(QStringLiteral("lstobnow"));
    lstobnow->setAccessibleName(QStringLiteral("Что будет сделано"));
    lstobnow->setToolTip(QStringLiteral("Что будет добавлено, изменено и удалено"));
    lstobnow->setModel(m_model);
    lstobnow->setSelectionBehavior(QAbstractItemView::SelectRows);
    lstobnow->setSelectionMode(QAbstractItemView::SingleSelection);
    lstobnow->setAlternatingRowColors(true);
    lstobnow->setTabKeyNavigation(false);
    lstobnow->setWordWrap(false);
    lstobnow->verticalHeader()->hide();
    lstobnow->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    constexpr int kRowGap = 6;
    lstobnow->verticalHeader()->setDefaultSectionSize(lstobnow->fontMetrics().height() + kRowGap);
    lstobnow->horizontalHeader()->setStretchLastSection(true);
    lstobnow->horizontalHeader()->setHighlightSections(false);
    const int character = lstobnow->fontMetrics().horizontalAdvance(QLatin1Char('W'));
    for (const auto &[column, width] : {std::pair{Action, 9}, std::pair{Prefix, 8}, std::pair{Country, 14}})
        lstobnow->setColumnWidth(column, width * character);
    auto *question = ui::makeLabel(this, QStringLiteral("Обновить таблицу стран?"));
    cmbda = ui::makeButton(this, "cmbda", QStringLiteral("Да"), QStringLiteral("Обновить таблицу стран"));
    cmbnet =
        ui::makeButton(this, "cmbnet", QStringLiteral("Нет"), QStringLiteral("Оставить таблицу как есть"));

    auto *answer = new QHBoxLayout;
    answer->addStretch();
    answer->addWidget(question);
    answer->addWidget(cmbda);
    answer->addWidget(cmbnet);
    auto *whole = new QVBoxLayout(this);
    ui::compact(whole);
    whole->addWidget(lblobnow);
    whole->addWidget(lstobnow, 1);
    whole->addLayout(answer);
}

void UpdatePanel::ask(const QString &file, const CountryPlan &plan)
{
    lblobnow->setText(file + QLatin1Char('\n') + plan.summary());
    m_model->setPlan(plan);
    lstobnow->scrollToTop();
    show();
    cmbnet->setFocus(); // Enter alone changes nothing
    // The frame shows where Enter goes. The reason of the focus alone would be lost where the window is only
    // just coming back from the choice of the file.
    window()->setAttribute(Qt::WA_KeyboardFocusChange);
}

void UpdatePanel::dismiss()
{
    hide();
    m_model->setPlan({});
}

} // namespace reference
