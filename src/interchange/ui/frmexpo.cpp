#include "interchange/ui/frmexpo.h"

#include "interchange/sql.h"
#include "ui/boundfield.h"
#include "ui/widgets.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QShowEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace interchange {

namespace {

const QString kTitle = QStringLiteral("Импорт из Adif файлов");
constexpr std::size_t kMostLines = 2000; ///< of what was skipped; nobody reads more

struct RowField {
    const char *field;
    const char16_t *caption;
};
constexpr std::array<RowField, 10> kRowFields = {{
    {"ccall", u"Позывной"},
    {"ddate", u"Дата"},
    {"ttime", u"Время"},
    {"bband", u"Диапазон"},
    {"rsts", u"RST перед."},
    {"rstr", u"RST прин."},
    {"QTH", u"QTH"},
    {"NNAME", u"Имя"},
    {"ps1", u"Вид"},
    {"PRF", u"op"},
}};

/// What did not come in as it stands in the file, with the lines where.
QString report(const ImportResult &result)
{
    QStringList lines;
    for (const Skipped &skipped : result.skipped) {
        if (lines.size() == static_cast<qsizetype>(kMostLines))
            break;
        lines.append(QStringLiteral("Строка %1: %2%3")
                         .arg(skipped.line)
                         .arg(skipText(skipped.reason), skipped.records > 1
                                                            ? QStringLiteral(" (%1)").arg(skipped.records)
                                                            : QString()));
    }
    if (result.skipped.size() > kMostLines)
        lines.append(
            QStringLiteral("... и ещё строк: %1").arg(qulonglong(result.skipped.size() - kMostLines)));
    for (const auto &[what, places] : {std::pair{QStringLiteral("даты"), &result.withoutDate},
                                       std::pair{QStringLiteral("времени"), &result.withoutTime}}) {
        QStringList numbers;
        for (std::size_t i = 0; i < std::min(places->size(), kMostLines); ++i)
            numbers.append(QString::number((*places)[i]));
        if (!numbers.isEmpty())
            lines.append(QStringLiteral("Добавлено без %1, строки: %2%3")
                             .arg(what, numbers.join(QStringLiteral(", ")),
                                  places->size() > kMostLines ? QStringLiteral(" ...") : QString()));
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

frmExpo::frmExpo(const Services &services, QWidget *parent)
    : QWidget(parent, Qt::Window), m_services(services), Data1(QStringLiteral("Data1"), services.databases)
{
    setObjectName(QStringLiteral("frmExpo"));
    setWindowTitle(kTitle);
    setAttribute(Qt::WA_QuitOnClose, false);
    Data1.setDatabaseName(m_services.databases.path(u"\\dbiaru.mdb"));
    Data1.setRecordSource(sql::logTable());
    Data1.setFirstPage(1);
    buildLayout();
    connect(cmbExpo, &QPushButton::clicked, this, &frmExpo::cmbExpo_Click);
    connect(cmbpowtor, &QPushButton::clicked, this, &frmExpo::cmbpowtor_Click);
    connect(cmbzakr, &QPushButton::clicked, this, &QWidget::close);
}

frmExpo::~frmExpo()
{
    // The fields read from the data source, which is a member: they must go first.
    qDeleteAll(findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
}

void frmExpo::buildLayout()
{
    auto *content = new QWidget(this);
    constexpr int kPathCharacters = 40;
    constexpr int kCountCharacters = 8;
    cmbExpo = ui::makeButton(content, "cmbExpo", QStringLiteral("Импорт"),
                             QStringLiteral("Выбрать файл ADIF и добавить его связи в журнал"));
    txtput = ui::makeDisplay(content, "txtput", QStringLiteral("Файл ADIF"), kPathCharacters);
    auto *file = new QHBoxLayout;
    file->addWidget(cmbExpo);
    file->addWidget(txtput, 1);

    auto *counts = new QHBoxLayout;
    const auto counter = [&](const char *name, const QString &caption) {
        ui::FilterEdit *edit = ui::makeDisplay(content, name, caption, kCountCharacters);
        edit->setAlignment(Qt::AlignRight);
        counts->addWidget(ui::makeLabel(content, caption, edit));
        counts->addWidget(edit);
        return edit;
    };
    txtkol = counter("txtkol", QStringLiteral("Записей"));
    txtdob = counter("txtdob", QStringLiteral("Добавлено"));
    lblreader = ui::makeLabel(content, QString());
    lblreader->setObjectName(QStringLiteral("lblreader"));
    lblreader->setAccessibleName(QStringLiteral("Как прочитан файл"));
    lblreader->setWordWrap(true);
    counts->addStretch();

    lblitog = ui::makeLabel(content, QString());
    lblitog->setObjectName(QStringLiteral("lblitog"));
    lblitog->setAccessibleName(QStringLiteral("Итог"));
    lblitog->setWordWrap(true);
    txtpropusk = new QPlainTextEdit(content);
    txtpropusk->setObjectName(QStringLiteral("txtpropusk"));
    txtpropusk->setReadOnly(true);
    txtpropusk->setTabChangesFocus(true);
    txtpropusk->setPlaceholderText(QStringLiteral("Здесь будет сказано, что из файла не взято и почему"));
    txtpropusk->setToolTip(QStringLiteral("Что из файла не взято и почему"));
    txtpropusk->setAccessibleName(txtpropusk->toolTip());
    constexpr int kReportLines = 6;
    txtpropusk->setMinimumHeight(kReportLines * fontMetrics().lineSpacing());

    cmbpowtor = ui::makeButton(content, "cmbpowtor", QStringLiteral("Убрать повторы"),
                               QStringLiteral("Убрать из журнала те связи последнего импорта, которые в нём "
                                              "уже были (позывной, дата, диапазон)"));
    cmbpowtor->setEnabled(false);
    cmbzakr = ui::makeButton(content, "cmbzakr", QStringLiteral("Закрыть"), QStringLiteral("Закрыть окно"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmbpowtor);
    buttons->addStretch();
    buttons->addWidget(cmbzakr);

    auto *column = new QVBoxLayout(content);
    column->addLayout(file);
    column->addLayout(counts);
    column->addWidget(lblreader);
    column->addWidget(buildRow(content));
    column->addWidget(txtpropusk, 1);
    column->addWidget(lblitog);
    column->addLayout(buttons);
    const QList<QWidget *> order = {cmbExpo, txtpropusk, cmbpowtor, cmbzakr};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    constexpr QSize kWanted(720, 600);
    ui::fillScrolled(this, content, kWanted);
}

void frmExpo::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        cmbExpo->setFocus();
}

QWidget *frmExpo::buildRow(QWidget *parent)
{
    auto *group = new QGroupBox(QStringLiteral("Связь в журнале"), parent);
    auto *grid = new QGridLayout(group);
    grid->setVerticalSpacing(2);
    const ui::BoundField::Run silent = [this](const std::function<void()> &operation) {
        try {
            operation();
        } catch (const store::Error &error) {
            lblitog->setText(error.line());
        }
    };
    constexpr int kColumns = 2;
    for (std::size_t i = 0; i < kRowFields.size(); ++i) {
        const QString caption = QString::fromUtf16(kRowFields[i].caption);
        const QByteArray name = "txtL_" + QByteArray::number(qulonglong(i));
        ui::FilterEdit *edit = ui::makeDisplay(group, name.constData(), caption, 8);
        new ui::BoundField(edit, Data1, QLatin1String(kRowFields[i].field), silent); // the edit owns it
        const int place = static_cast<int>(i);
        grid->addWidget(ui::makeLabel(group, caption, edit), place / kColumns, place % kColumns * 2);
        grid->addWidget(edit, place / kColumns, place % kColumns * 2 + 1);
    }
    return group;
}

void frmExpo::cmbExpo_Click()
{
    const QString path = m_services.dialogs.fileToOpen(
        this, kTitle,
        txtput->text().isEmpty() ? m_services.databases.folder() : QFileInfo(txtput->text()).path(),
        {QStringLiteral("Все файлы (*)"), QStringLiteral("ADIF (*.adi *.adif *.adx *.ADI *.ADIF *.ADX)")});
    if (path.isEmpty())
        return;
    txtput->setText(path);
    AADIF(path);
}

void frmExpo::AADIF(const QString &path)
{
    for (ui::FilterEdit *edit : {txtkol, txtdob})
        edit->clear();
    for (QLabel *label : {lblreader, lblitog})
        label->clear();
    txtpropusk->clear();
    cmbpowtor->setEnabled(false);
    m_import.reset();
    ui::guarded(m_services.messages, [&] {
        auto import = std::make_unique<AdifImport>(m_services.databases, Data1.databaseName(), path);
        lblreader->setText(
            QStringLiteral("Как прочитан: %1; %2").arg(readerText(import->reader()), import->coding()));
        ImportResult result;
        {
            const ui::ProgressScope scope(m_services.progress, kTitle, true);
            result = import->run([this](const ImportProgress &progress) { return showProgress(progress); });
        }
        m_import = std::move(import);
        showResult(result);
        if (result.failure)
            m_services.messages.error(*result.failure);
        showRow();
        Q_EMIT logChanged();
    });
}

bool frmExpo::showProgress(const ImportProgress &progress)
{
    const bool copying = progress.phase == ImportProgress::Phase::Copying;
    if (!copying) {
        txtkol->setText(QString::number(progress.records));
        txtdob->setText(QString::number(progress.added));
    }
    return m_services.progress.advance(copying ? QStringLiteral("Копия журнала, страниц")
                                               : QStringLiteral("Прочитано байт"),
                                       progress.done, progress.total);
}

void frmExpo::showResult(const ImportResult &result)
{
    txtkol->setText(QString::number(result.records));
    txtdob->setText(QString::number(result.added));
    txtpropusk->setPlainText(report(result));
    QStringList lines;
    if (!result.isAdif)
        lines.append(QStringLiteral("В файле нет записей ADIF, журнал не изменён."));
    else if (result.records == result.withoutContact)
        lines.append(QStringLiteral("В файле нет связей, журнал не изменён."));
    if (result.stopped)
        lines.append(QStringLiteral("Остановлено: добавленное осталось в журнале."));
    if (const qint64 skipped = result.skippedRecords(); skipped > 0)
        lines.append(QStringLiteral("Не взято записей: %1.").arg(skipped));
    if (result.held > 0)
        lines.append(
            QStringLiteral("Из добавленных связей в журнале уже были (позывной, дата, диапазон): %1.")
                .arg(result.held));
    lblitog->setText(lines.join(QLatin1Char(' ')));
    cmbpowtor->setEnabled(result.held > 0);
}

/// The last contact of the log, which is the last one that came in.
void frmExpo::showRow()
{
    Data1.refresh();
    Data1.moveLast();
}

void frmExpo::cmbpowtor_Click()
{
    ui::guarded(m_services.messages, [this] {
        AdifImport::Removal removal;
        {
            const ui::ProgressScope scope(m_services.progress, QStringLiteral("Убрать повторы"), false);
            removal = m_import->removeRepeats([this](qint64 done, qint64 total) {
                (void)m_services.progress.advance(QStringLiteral("Копия журнала и связи"), done, total);
            });
        }
        QString text = QStringLiteral("Убрано повторов: %1.").arg(removal.removed);
        if (removal.kept > 0)
            text += QStringLiteral(" Осталось, потому что после импорта их изменили или удалили: %1.")
                        .arg(removal.kept);
        lblitog->setText(text);
        cmbpowtor->setEnabled(false);
        showRow();
        Q_EMIT logChanged();
    });
}

} // namespace interchange
