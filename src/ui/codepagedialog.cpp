#include "ui/codepagedialog.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ui {

namespace {

constexpr int kShownCharacters = 108;

} // namespace

CodePageDialog::CodePageDialog(const QString &file, const foreign::CodePageDoubt &doubt, QWidget *parent)
    : QDialog(parent), m_pages(new QButtonGroup(this))
{
    setObjectName(QStringLiteral("frmcodepage"));
    setWindowTitle(QStringLiteral("Кодовая страница"));
    auto *column = new QVBoxLayout(this);
    auto *question = new QLabel(
        QStringLiteral(
            "В файле %1 записана кодовая страница %2, но его тексты на неё не похожи.\nВыберите, в какой "
            "странице строки читаются правильно. Выбор действует и для других таких файлов.")
            .arg(file, foreign::codePageTitle(doubt.headerCodePage)),
        this);
    question->setTextFormat(Qt::PlainText);
    column->addWidget(question);
    for (const foreign::CodePageSample &sample : doubt.samples) {
        QStringList remarks;
        if (&sample == &doubt.samples.front())
            remarks.append(QStringLiteral("подходит лучше всего"));
        if (sample.codePage == doubt.headerCodePage)
            remarks.append(QStringLiteral("записана в файле"));
        addSample(sample, remarks.join(QStringLiteral(", ")));
    }
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(QStringLiteral("ОК"), QDialogButtonBox::AcceptRole);
    QPushButton *leave =
        buttons->addButton(QStringLiteral("Не преобразовывать"), QDialogButtonBox::RejectRole);
    ok->setObjectName(QStringLiteral("cmbok"));
    leave->setObjectName(QStringLiteral("cmbleave"));
    leave->setToolTip(QStringLiteral("Оставить файл таким, как он есть"));
    ok->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
}

void CodePageDialog::addSample(const foreign::CodePageSample &sample, const QString &remark)
{
    const QString name = foreign::codePageTitle(sample.codePage);
    auto *button =
        new QRadioButton(remark.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, remark), this);
    button->setObjectName(QStringLiteral("opPage_%1").arg(sample.codePage));
    button->setToolTip(QStringLiteral("Читать тексты в этой кодовой странице"));
    m_pages->addButton(button, sample.codePage);
    button->setChecked(m_pages->buttons().size() == 1);
    auto *rows = new QLabel(this);
    rows->setObjectName(QStringLiteral("rows_%1").arg(sample.codePage));
    rows->setTextFormat(Qt::PlainText);
    rows->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    rows->setBackgroundRole(QPalette::Base);
    rows->setAutoFillBackground(true);
    rows->setMargin(4);
    rows->setAccessibleName(QStringLiteral("Строки в кодовой странице %1").arg(name));
    const int width = kShownCharacters * rows->fontMetrics().averageCharWidth();
    QStringList shown;
    for (const QString &row : sample.rows)
        shown.append(rows->fontMetrics().elidedText(row, Qt::ElideRight, width));
    rows->setText(shown.join(QLatin1Char('\n')));
    rows->setMinimumWidth(width + (3 * rows->margin()));
    layout()->addWidget(button);
    layout()->addWidget(rows);
}

int CodePageDialog::codePage() const
{
    return m_pages->checkedId();
}

} // namespace ui
