#pragma once

#include "interchange/adifimport.h"
#include "interchange/ui/services.h"
#include "store/datasource.h"
#include "ui/filteredit.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QWidget>

#include <memory>

namespace interchange {

/// The import window: appends the contacts of an ADIF file to the log. Lives, once made, as long as the
/// program.
class frmExpo : public QWidget {
    Q_OBJECT

public:
    explicit frmExpo(const Services &services, QWidget *parent = nullptr);
    ~frmExpo() override;

    void cmbExpo_Click();
    /// Takes the contacts of the last import out again that the log had held before.
    void cmbpowtor_Click();

protected:
    void showEvent(QShowEvent *event) override;

Q_SIGNALS:
    /// Rows of the log may have changed.
    void logChanged();

private:
    void buildLayout();
    [[nodiscard]] QWidget *buildRow(QWidget *parent);
    void AADIF(const QString &path);
    [[nodiscard]] bool showProgress(const ImportProgress &progress);
    void showResult(const ImportResult &result);
    void showRow();

    Services m_services;
    store::DataSource Data1;
    std::unique_ptr<AdifImport> m_import; ///< the last one

    QPushButton *cmbExpo;
    QPushButton *cmbpowtor;
    QPushButton *cmbzakr;
    ui::FilterEdit *txtput;
    ui::FilterEdit *txtkol;
    ui::FilterEdit *txtdob;
    QLabel *lblreader;
    QLabel *lblitog;
    QPlainTextEdit *txtpropusk;
};

} // namespace interchange
