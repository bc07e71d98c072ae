#pragma once

#include "interchange/logmerge.h"
#include "interchange/ui/services.h"
#include "store/datasource.h"
#include "ui/dragmover.h"
#include "ui/filteredit.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace interchange {

/// The revision window: merges one log into another, exports the whole log to numbered ADIF files, repairs
/// dates and times. Its groups can be dragged to another place of the window. Lives, once made, as long as
/// the program.
class Fdob : public QWidget {
    Q_OBJECT

public:
    explicit Fdob(const Services &services, QWidget *parent = nullptr);
    ~Fdob() override;

    void Command1_Click(); ///< "Откуда"
    void Command2_Click(); ///< "Куда"
    void Command3_Click(); ///< "Выполнить"
    void Command5_Click(); ///< repair of dates and times
    void cmbAdif_Click();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

Q_SIGNALS:
    /// Rows of the program's own log may have changed.
    void logChanged();

private:
    void buildLayout();
    [[nodiscard]] QGroupBox *buildPaths(QWidget *parent);
    [[nodiscard]] QGroupBox *buildCounters(QWidget *parent);
    [[nodiscard]] QGroupBox *buildRows(QWidget *parent);
    void Form_Load();

    [[nodiscard]] QString chooseLog(const QString &title, const QString &present);
    void openLog(store::DataSource &source, const QString &path);
    [[nodiscard]] bool asTarget(const QString &path);
    void merge(const QString &sourcePath, bool oldSource);
    void showCounters(const MergeCounters &counters);
    void showError(const store::Error &error);
    void showResult(const QString &text);
    [[nodiscard]] store::Progress copying();

    Services m_services;
    store::DataSource Data1; ///< source of the merge
    store::DataSource Data2; ///< target
    store::DataSource Data3; ///< own log, for the repair
    store::DataSource Data4; ///< own log, for the export
    QByteArray m_band;       ///< carried on from record to record, from file to file, from export to export

    QList<ui::DragMover *> m_movers; ///< of the groups in their order
    QPushButton *Command1;
    QPushButton *Command2;
    QPushButton *Command3;
    QPushButton *Command4;
    QPushButton *Command5;
    QPushButton *cmbAdif;
    ui::FilterEdit *Text1;
    ui::FilterEdit *Text2;
    ui::FilterEdit *Text3;
    ui::FilterEdit *Text4;
    ui::FilterEdit *Text5;
    QLabel *lblitog;
};

} // namespace interchange
