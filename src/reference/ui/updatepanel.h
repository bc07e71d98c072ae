#pragma once

#include "reference/countryupdate.h"

#include <QAbstractTableModel>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

namespace reference {

/// The changes of a plan and its remarks, a line each.
class UpdateModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setPlan(const CountryPlan &plan);
    [[nodiscard]] const CountryPlan &plan() const noexcept { return m_plan; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    CountryPlan m_plan;
};

/// Asks whether the country table is to be renewed, and shows how: in the place of the table, so that the
/// list can be as long as it is and the window be resized.
class UpdatePanel : public QGroupBox {
    Q_OBJECT

public:
    explicit UpdatePanel(QWidget *parent);

    /// Shows itself with a plan made from a file; the focus is on "Нет".
    void ask(const QString &file, const CountryPlan &plan);
    [[nodiscard]] const CountryPlan &plan() const noexcept { return m_model->plan(); }
    /// The plan is done or given up.
    void dismiss();

    QTableView *lstobnow;
    QPushButton *cmbda;
    QPushButton *cmbnet;

private:
    UpdateModel *m_model;
    QLabel *lblobnow;
};

} // namespace reference
