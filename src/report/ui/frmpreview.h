#pragma once

#include "report/ui/pageview.h"
#include "report/ui/previewreports.h"
#include "report/ui/printing.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <memory>

class QBoxLayout;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace report {

/// Preview of a report: shows its pages, prints them, saves them as PDF.
class frmPreview final : public QWidget {
    Q_OBJECT

public:
    /// `services` and `printing` outlive the window. Throws Error where the pages cannot be painted.
    frmPreview(const Services &services, Printing &printing, std::unique_ptr<Document> document);
    ~frmPreview() override;

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    using Groups = QList<QBoxLayout *>;

    void buildLayout();
    [[nodiscard]] QBoxLayout *newGroup();
    void addBar(QBoxLayout *column, const Groups &first, const Groups &second);
    void setOrder();
    void addPageButtons(QBoxLayout *bar);
    void addZoom(QBoxLayout *bar);
    void addFirstPlace(QBoxLayout *bar);
    void addShortcuts();

    void cmbpecat_Click();
    void cmbpdf_Click();
    [[nodiscard]] QString pageCount() const;
    void showPage();
    void showZoom();
    void zoomChosen(int index);
    void firstPlaceChanged(int place);
    [[nodiscard]] QString proposedPdf() const;
    void tell(const QString &what);
    [[nodiscard]] bool step(qint64 done, qint64 total);

    Services m_services;
    Printing &m_printing;
    std::unique_ptr<Document> m_document;
    std::unique_ptr<PagePainter> m_pages;
    bool m_busy = false; ///< printing or saving

    PageView *Stranica = nullptr;
    QPushButton *cmbpecat = nullptr;
    QPushButton *cmbpdf = nullptr;
    QPushButton *cmbzakr = nullptr;
    QPushButton *cmbperv = nullptr;
    QPushButton *cmbpred = nullptr;
    QPushButton *cmbsled = nullptr;
    QPushButton *cmbposl = nullptr;
    QPushButton *cmbminus = nullptr;
    QPushButton *cmbplus = nullptr;
    QSpinBox *txtstr = nullptr;
    QLabel *lblstr = nullptr;
    QLabel *lblitog = nullptr;
    QComboBox *cbmasst = nullptr;
    QSpinBox *txtmesto = nullptr; ///< null for a layout without cards
};

} // namespace report
