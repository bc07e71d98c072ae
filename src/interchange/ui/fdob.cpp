#include "interchange/ui/fdob.h"

#include "interchange/adifexport.h"
#include "interchange/sql.h"
#include "ui/boundfield.h"
#include "ui/dragmover.h"
#include "ui/widgets.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QScopeGuard>
#include <QShowEvent>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <array>
#include <optional>

namespace interchange {

namespace {

const QString kLogFile = QStringLiteral("dbiaru.mdb");
const QString kFilter = QStringLiteral("База данных (dbiaru.mdb Dbiaru.mdb DBIARU.MDB)");
const QString kTitle = QStringLiteral("Ревизия");

struct RowField {
    const char *field;
    const char16_t *caption;
};
/// The fields that the merge copies, in its order.
constexpr std::array<RowField, 14> kRowFields = {{
    {"ccall", u"Позывной"},
    {"ddate", u"Дата"},
    {"ttime", u"Время"},
    {"bband", u"Диапазон"},
    {"rsts", u"RST перед."},
    {"rstr", u"RST прин."},
    {"ps1", u"Вид"},
    {"QTH", u"QTH"},
    {"NNAME", u"Имя"},
    {"QSLVIA", u"QSL via"},
    {"QSLP", u"QSL(пол)"},
    {"QSLO", u"QSL(отп)"},
    {"CONTR", u"Страна"},
    {"PRF", u"op"},
}};

bool isLogName(const QString &path)
{
    return path.right(kLogFile.size()).compare(kLogFile, Qt::CaseInsensitive) == 0;
}

bool isOld(const QString &path)
{
    const auto wrong = store::Library::inspect(path);
    return wrong && wrong->kind() == store::ErrorKind::Jet;
}

QString sentence(const QString &text, qint64 number)
{
    return number > 0 ? QStringLiteral(" ") + text.arg(number) : QString();
}

} // namespace

Fdob::Fdob(const Services &services, QWidget *parent)
    : QWidget(parent, Qt::Window), m_services(services), Data1(QStringLiteral("Data1"), services.databases),
      Data2(QStringLiteral("Data2"), services.databases), Data3(QStringLiteral("Data3"), services.databases),
      Data4(QStringLiteral("Data4"), services.databases)
{
    setObjectName(QStringLiteral("Fdob"));
    setWindowTitle(kTitle);
    setAttribute(Qt::WA_QuitOnClose, false);
    Form_Load();
    buildLayout();
    connect(Command1, &QPushButton::clicked, this, &Fdob::Command1_Click);
    connect(Command2, &QPushButton::clicked, this, &Fdob::Command2_Click);
    connect(Command3, &QPushButton::clicked, this, &Fdob::Command3_Click);
    connect(Command4, &QPushButton::clicked, this, &QWidget::close);
    connect(Command5, &QPushButton::clicked, this, &Fdob::Command5_Click);
    connect(cmbAdif, &QPushButton::clicked, this, &Fdob::cmbAdif_Click);
}

Fdob::~Fdob()
{
    // The fields read from the data sources, which are members: they must go first.
    qDeleteAll(findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
}

void Fdob::Form_Load()
{
    const QString ownLog = m_services.databases.path(u"\\dbiaru.mdb");
    for (store::DataSource *source : {&Data1, &Data2, &Data3, &Data4}) {
        source->setDatabaseName(ownLog);
        source->setRecordSource(sql::logTable());
        source->setFirstPage(1);
    }
}

void Fdob::buildLayout()
{
    auto *content = new QWidget(this);
    lblitog = ui::makeLabel(content, QString()); // first: what is built after it may have something to tell
    auto *column = new QVBoxLayout(content);
    for (QGroupBox *group : {buildPaths(content), buildCounters(content)})
        column->addWidget(group);
    column->addWidget(buildRows(content), 1);
    lblitog->setObjectName(QStringLiteral("lblitog"));
    lblitog->setAccessibleName(QStringLiteral("Итог"));
    lblitog->setWordWrap(true);
    lblitog->setMinimumHeight(2 * fontMetrics().lineSpacing());
    lblitog->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(lblitog);
    Command3 = ui::makeButton(content, "Command3", QStringLiteral("Выполнить"),
                              QStringLiteral("Добавить недостающие связи и обменяться отметками QSL"));
    Command4 = ui::makeButton(content, "Command4", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
    Command5 = ui::makeButton(content, "Command5", QStringLiteral("Исправить даты и время"),
                              QStringLiteral("В своём журнале: 05-Mar-02 станет 05.03.02, 905 станет 9:05"));
    cmbAdif = ui::makeButton(
        content, "cmbAdif", QStringLiteral("ADIF"),
        QStringLiteral("Весь свой журнал в файлы LOG_ADIF0, LOG_ADIF1, ... по 500 связей в папке программы"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(Command3);
    buttons->addStretch();
    buttons->addWidget(cmbAdif);
    buttons->addWidget(Command5);
    buttons->addStretch();
    buttons->addWidget(Command4);
    column->addLayout(buttons);
    const QList<QWidget *> order = {Command1, Command2, Command3, cmbAdif, Command5, Command4};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    constexpr QSize kWanted(720, 660);
    ui::fillScrolled(this, content, kWanted);
}

void Fdob::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        Command1->setFocus();
}

/// Groups that were dragged away stand in their places when the window is opened again.
void Fdob::closeEvent(QCloseEvent *event)
{
    for (qsizetype place = 0; place < m_movers.size(); ++place)
        m_movers[place]->restore(static_cast<int>(place));
    QWidget::closeEvent(event);
}

QGroupBox *Fdob::buildPaths(QWidget *parent)
{
    auto *group = new QGroupBox(QStringLiteral("Журналы"), parent);
    group->setObjectName(QStringLiteral("Frame1"));
    constexpr int kPathCharacters = 40;
    Command1 = ui::makeButton(group, "Command1", QStringLiteral("Откуда"),
                              QStringLiteral("Выбрать журнал, из которого добавлять"));
    Command2 = ui::makeButton(group, "Command2", QStringLiteral("Куда"),
                              QStringLiteral("Выбрать журнал, в который добавлять"));
    Text1 = ui::makeDisplay(group, "Text1", QStringLiteral("Откуда: файл журнала"), kPathCharacters);
    Text2 = ui::makeDisplay(group, "Text2", QStringLiteral("Куда: файл журнала"), kPathCharacters);
    auto *grid = new QGridLayout(group);
    grid->addWidget(Command1, 0, 0);
    grid->addWidget(Text1, 0, 1);
    grid->addWidget(Command2, 1, 0);
    grid->addWidget(Text2, 1, 1);
    grid->setColumnStretch(1, 1);
    m_movers.append(new ui::DragMover(group)); // the group owns it
    return group;
}

QGroupBox *Fdob::buildCounters(QWidget *parent)
{
    auto *group = new QGroupBox(QStringLiteral("Счёт"), parent);
    group->setObjectName(QStringLiteral("Frame2"));
    constexpr int kCountCharacters = 8;
    auto *row = new QHBoxLayout(group);
    const auto counter = [&](const char *name, const QString &caption) {
        ui::FilterEdit *edit = ui::makeDisplay(group, name, caption, kCountCharacters);
        edit->setAlignment(Qt::AlignRight);
        edit->setText(QStringLiteral("0"));
        row->addWidget(ui::makeLabel(group, caption, edit));
        row->addWidget(edit);
        return edit;
    };
    Text4 = counter("Text4", QStringLiteral("Всего QSO"));
    Text3 = counter("Text3", QStringLiteral("Новых QSO"));
    Text5 = counter("Text5", QStringLiteral("Осталось проверить"));
    row->addStretch();
    m_movers.append(new ui::DragMover(group));
    return group;
}

QGroupBox *Fdob::buildRows(QWidget *parent)
{
    auto *group = new QGroupBox(QStringLiteral("Первая связь"), parent);
    group->setObjectName(QStringLiteral("Frame3"));
    auto *grid = new QGridLayout(group);
    grid->setVerticalSpacing(2);
    grid->addWidget(ui::makeLabel(group, QStringLiteral("Откуда")), 0, 1);
    grid->addWidget(ui::makeLabel(group, QStringLiteral("Куда")), 0, 2);
    const ui::BoundField::Run silent = [this](const std::function<void()> &operation) {
        try {
            operation();
        } catch (const store::Error &error) {
            showResult(error.line());
        }
    };
    for (std::size_t i = 0; i < kRowFields.size(); ++i) {
        const QString caption = QString::fromUtf16(kRowFields[i].caption);
        const int row = static_cast<int>(i) + 1;
        grid->addWidget(ui::makeLabel(group, caption), row, 0);
        int column = 1;
        for (auto *source : {&Data1, &Data2}) {
            const QByteArray name =
                (column == 1 ? "txtbas1_" : "txtbas2_") + QByteArray::number(qulonglong(i));
            ui::FilterEdit *edit = ui::makeDisplay(group, name.constData(), caption, 8);
            new ui::BoundField(edit, *source, QLatin1String(kRowFields[i].field), silent);
            grid->addWidget(edit, row, column++);
        }
    }
    grid->setRowStretch(static_cast<int>(kRowFields.size()) + 1, 1);
    m_movers.append(new ui::DragMover(group));
    return group;
}

void Fdob::showResult(const QString &text)
{
    lblitog->setText(text);
}

/// An error of the merge is told with its number: the engine's, or, where the engine was not asked, 1000 and
/// the kind of the failure.
void Fdob::showError(const store::Error &error)
{
    constexpr int kOwnNumbers = 1000;
    const int number = error.code() != 0 ? error.code() : kOwnNumbers + static_cast<int>(error.kind());
    m_services.messages.inform(QStringLiteral("Ошибка %1\n\n%2").arg(number).arg(error.line()),
                               ui::programTitle());
}

store::Progress Fdob::copying()
{
    return [this](qint64 done, qint64 total) {
        (void)m_services.progress.advance(QStringLiteral("Копия журнала, страниц"), done, total);
    };
}

// ---- the two logs

QString Fdob::chooseLog(const QString &title, const QString &present)
{
    return m_services.dialogs.fileToOpen(
        this, title, present.isEmpty() ? m_services.databases.folder() : QFileInfo(present).path(),
        {kFilter});
}

void Fdob::openLog(store::DataSource &source, const QString &path)
{
    const bool readable = isLogName(path) && !isOld(path);
    source.setDatabaseName(readable ? path : Data3.databaseName());
    source.setRecordSource(readable ? sql::logTable() : sql::noContact());
    source.refresh();
}

void Fdob::Command1_Click()
{
    const QString path = chooseLog(QStringLiteral("Откуда"), Text1->text());
    if (path.isEmpty())
        return;
    Text1->setText(path);
    showCounters({});
    showResult({});
    ui::guarded(m_services.messages, [&] { openLog(Data1, path); });
}

void Fdob::Command2_Click()
{
    const QString path = chooseLog(QStringLiteral("Куда"), Text2->text());
    if (path.isEmpty())
        return;
    Text2->setText(path);
    showCounters({});
    showResult({});
    ui::guarded(m_services.messages, [&] {
        if (isLogName(path) && isOld(path) && !asTarget(path))
            return;
        openLog(Data2, path);
    });
}

/// An old database is not written to. False where it stays what it is.
bool Fdob::asTarget(const QString &path)
{
    if (!isOld(path))
        return true;
    const bool wanted = m_services.messages.askYesNo(
        QStringLiteral(
            "Файл %1 записан старой программой (формат Jet). Добавлять связи в такой файл журнал не "
            "может, но может преобразовать его; исходный файл останется рядом под другим именем.\n\n"
            "Преобразовать сейчас?")
            .arg(path),
        kTitle);
    if (!wanted || !m_services.oldDatabases.convertInPlace(path))
        return false;
    return true;
}

// ---- merge

void Fdob::Command3_Click()
{
    showResult({});
    if (!isLogName(Text1->text()) || !isLogName(Text2->text())) {
        m_services.messages.inform(QStringLiteral("Неверно выбран файл ( dbiaru.mdb )"),
                                   QStringLiteral("XA _ XA"));
        return;
    }
    showCounters({});
    try {
        if (!asTarget(Text2->text()))
            return;
        if (!isOld(Text1->text())) {
            merge(Text1->text(), false);
            return;
        }
        const QString copies = m_services.databases.userFolder(); // may not have been needed before
        (void)QDir().mkpath(copies);
        const QTemporaryDir folder(copies + QStringLiteral("/merge"));
        if (!folder.isValid())
            throw store::Error(store::ErrorKind::CannotOpen, copies, folder.errorString());
        const QString converted = folder.filePath(kLogFile);
        if (!m_services.oldDatabases.convertTo(Text1->text(), converted))
            return;
        const auto letGo = qScopeGuard([&] { m_services.databases.close(converted); });
        merge(converted, true);
    } catch (const store::Error &error) {
        showError(error);
    }
}

void Fdob::merge(const QString &sourcePath, bool oldSource)
{
    for (store::DataSource *source : {&Data1, &Data2})
        source->update();
    LogMerge merge(m_services.databases, sourcePath, Text2->text(),
                   oldSource ? LogMerge::Source::OnlyGives : LogMerge::Source::Exchanges);
    std::optional<store::Error> failure;
    {
        const ui::ProgressScope scope(m_services.progress, kTitle, true);
        try {
            merge.run(
                [this](const MergeCounters &counters) {
                    showCounters(counters);
                    return m_services.progress.advance(QStringLiteral("Проверено связей"), counters.examined,
                                                       counters.total);
                },
                copying());
        } catch (const store::Error &error) {
            failure = error;
        }
    }
    const MergeCounters &counters = merge.counters();
    showCounters(counters);
    QString text;
    if (counters.total > 0) {
        text = counters.stopped ? QStringLiteral("Остановлено; повторное «Выполнить» продолжит.")
               : failure ? QStringLiteral("Прервано; повторное «Выполнить» продолжит.")
                         : QStringLiteral("Готово.");
        text += QStringLiteral(" Новых связей: %1.").arg(counters.added);
        text += sentence(QStringLiteral("Отметок и маршрутов добавлено связям «Куда»: %1."), counters.marked);
        text += sentence(QStringLiteral("Связям «Откуда»: %1."), counters.markedBack);
        text +=
            sentence(oldSource ? QStringLiteral("В старый файл «Откуда» отметки не переносятся (связей: %1).")
                               : QStringLiteral("Файл «Откуда» только для чтения: отметки туда не перенесены "
                                                "(связей: %1)."),
                     counters.keptBack);
    }
    showResult(text);
    Q_EMIT logChanged();
    if (failure)
        showError(*failure);
    ui::guarded(m_services.messages, [&] {
        if (!oldSource)
            openLog(Data1, Text1->text());
        openLog(Data2, Text2->text());
    });
}

void Fdob::showCounters(const MergeCounters &counters)
{
    Text4->setText(QString::number(counters.total));
    Text3->setText(QString::number(counters.added));
    Text5->setText(QString::number(counters.total - counters.examined));
}

// ---- own log

void Fdob::Command5_Click()
{
    showResult({});
    ui::guarded(m_services.messages, [this] {
        const ui::ProgressScope scope(m_services.progress, QStringLiteral("Исправление дат и времени"), true);
        const RepairCounters counters = repairDatesAndTimes(
            m_services.databases, Data3.databaseName(),
            [this](qint64 done, qint64 total) {
                return m_services.progress.advance(QStringLiteral("Связей"), done, total);
            },
            copying());
        showResult(QStringLiteral("%1 Просмотрено связей: %2. Исправлено дат: %3, времён: %4.")
                       .arg(counters.stopped ? QStringLiteral("Остановлено.") : QStringLiteral("Готово."))
                       .arg(counters.visited)
                       .arg(counters.dates)
                       .arg(counters.times));
        for (store::DataSource *source : {&Data1, &Data2, &Data3})
            if (source->databaseName() == Data3.databaseName())
                source->refresh();
        Q_EMIT logChanged();
    });
}

void Fdob::cmbAdif_Click()
{
    showResult({});
    ui::guarded(m_services.messages, [this] {
        Data4.setRecordSource(sql::allContacts());
        Data4.refresh();
        if (Data4.isEmpty())
            return;
        ExportResult result;
        {
            const ui::ProgressScope scope(m_services.progress, QStringLiteral("ADIF"), true);
            result = AdifExport(m_services.databases, Data4.databaseName())
                         .numbered(Data4.recordSource(),
                                   store::joinSuffix(m_services.databases.folder(), u"\\LOG_ADIF"), m_band,
                                   [this](const QString &what, qint64 done, qint64 total) {
                                       return m_services.progress.advance(what, done, total);
                                   });
        }
        if (result.stopped) {
            showResult(QStringLiteral("Остановлено: файлы не записаны."));
            return;
        }
        QString text = QStringLiteral("Записано связей: %1, файлов: %2 (последний — %3).")
                           .arg(result.contacts)
                           .arg(result.files.size())
                           .arg(QFileInfo(result.files.constLast()).fileName());
        text += sentence(QStringLiteral("Без верной даты или времени: %1."), result.undated);
        text += sentence(QStringLiteral("В журнале исправлены рапорт или вид связи: %1."), result.repaired);
        showResult(text);
        Q_EMIT logChanged();
        if (result.repairFailure)
            m_services.messages.error(*result.repairFailure);
    });
}

} // namespace interchange
