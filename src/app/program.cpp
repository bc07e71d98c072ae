#include "app/program.h"

#include "app/oldinstallation.h"
#include "report/shipped.h"
#include "store/schema.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScreen>

#include <utility>

namespace app {

Program::Program(ui::Messages &messages, QString programFolder, QString userFolder)
    : m_messages(messages), m_programFolder(std::move(programFolder)), m_userFolder(std::move(userFolder)),
      m_keyboard(ui::makeKeyboardLayout())
{
    m_keyWatch = ui::watchKeys(m_repeatMarker);
    if (!m_keyWatch)
        return;
    QCoreApplication::instance()->installNativeEventFilter(m_keyWatch.get());
    QCoreApplication::instance()->installEventFilter(&m_repeatMarker);
}

Program::~Program() = default;

bool Program::start()
{
    store::DataFolder folder;
    try {
        folder = store::chooseDataFolder(m_programFolder, m_userFolder);
    } catch (const store::Error &error) {
        m_messages.error(error);
        return false;
    }
    m_lock = std::make_unique<store::InstanceLock>(folder.path);
    if (!m_lock->held()) {
        m_messages.inform(QStringLiteral("Журнал в папке %1 уже открыт другой программой.").arg(folder.path),
                          ui::programTitle());
        return false;
    }
    m_library = std::make_unique<store::Library>(folder, m_userFolder, [this](const QStringList &paths) {
        return m_messages.choose(
            QStringLiteral("В папке несколько файлов, имена которых различаются только регистром "
                           "букв. Какой открыть?"),
            ui::programTitle(), paths);
    });
    m_emergency = std::make_unique<interchange::EmergencyFile>(QStringList{folder.path, m_userFolder});
    try {
        for (const store::FileLayout &layout : store::fileLayouts())
            (void)m_library->path(QLatin1Char('\\') + layout.name); // asks now, where it must
    } catch (const store::Error &error) {
        m_messages.error(error);
        return false;
    }
    OldInstallation oldInstallation(m_messages, m_progress);
    const QStringList notConverted = oldInstallation.convert(*m_library);
    QStringList created;
    std::optional<store::Error> failure;
    if (!folder.readOnly) {
        try {
            created = m_library->createMissingFiles();
            report::createMissingLayouts(*m_library);
        } catch (const store::Error &error) {
            failure = error;
        }
    }
    m_reports = std::make_unique<report::PreviewReports>(
        report::Services{*m_library, m_messages, m_progress, m_dialogs});
    m_window = std::make_unique<logentry::frmlog>(
        logentry::Services{*m_library, m_clock, m_messages, *m_keyboard, *m_emergency, m_progress, m_keyLine,
                           m_pacer, m_dialogs, *m_reports});
    m_windows = std::make_unique<Windows>(
        interchange::Services{*m_library, m_messages, m_progress, m_dialogs, m_oldDatabases},
        qsl::Services{*m_library, m_clock, m_messages, m_progress, *m_reports},
        awards::Services{*m_library, m_messages, *m_reports},
        reference::Services{*m_library, m_messages, m_progress, m_dialogs}, *m_window);
    // The frame of the window and the desktop's bars need room too; on a small screen it fills what there is.
    constexpr QSize kFrame(20, 60);
    if (const QScreen *screen = m_window->screen();
        screen != nullptr &&
        !QRect(QPoint(), screen->availableSize()).contains(QRect(QPoint(), m_window->size() + kFrame)))
        m_window->setWindowState(Qt::WindowMaximized);
    m_window->show();
    m_window->tick();
    tellAboutFiles(created, failure, notConverted, oldInstallation.left());
    return true;
}

/// What stands in the way of the window's files, one line for each kind of trouble that several of them may
/// share. `old`: files of the old program that have been left alone.
QStringList Program::openingLines(const QStringList &alreadyTold, const QList<store::OldFile> &old) const
{
    QStringList lines;
    QStringList missing;
    QStringList oldNames;
    QStringList known = alreadyTold;
    for (const store::OldFile &file : old) {
        oldNames.append(QFileInfo(file.source).fileName());
        known.append(file.target);
    }
    for (const store::Error &error : m_window->openingErrors()) {
        const QString name = QFileInfo(error.file()).fileName();
        if (known.contains(error.file()))
            continue;
        if (error.kind() == store::ErrorKind::Jet)
            oldNames.append(name);
        else if (error.kind() == store::ErrorKind::Missing)
            missing.append(name);
        else
            lines.append(error.line());
    }
    if (!missing.isEmpty())
        lines.append(QStringLiteral("Не найдены файлы: %1.").arg(missing.join(QStringLiteral(", "))));
    if (!oldNames.isEmpty())
        lines.append(
            QStringLiteral("Созданы старой программой (формат Jet), не преобразованы и оставлены без "
                           "изменений файлы: %1. %2")
                .arg(oldNames.join(QStringLiteral(", ")),
                     m_library->readOnly()
                         ? QStringLiteral("Преобразовать их можно, когда в папку можно будет записывать.")
                         : QStringLiteral("Преобразование предлагается при запуске журнала.")));
    return lines;
}

/// What the operator must know about the database files: only what is out of the ordinary, in one message.
/// `alreadyTold`: files whose trouble the operator has just been told of.
void Program::tellAboutFiles(const QStringList &created, const std::optional<store::Error> &failure,
                             const QStringList &alreadyTold, const QList<store::OldFile> &old)
{
    QStringList lines;
    if (m_library->readOnly())
        lines.append(
            QStringLiteral("В папку %1 нельзя записывать. Файлы открыты только для чтения: связи не будут "
                           "записаны в журнал.")
                .arg(m_library->folder()));
    if (failure)
        lines.append(failure->line());
    lines += openingLines(alreadyTold, old);
    if (!m_library->readOnly())
        for (const QString &path : m_library->readOnlyFiles())
            lines.append(QStringLiteral("Файл %1 открыт только для чтения.").arg(path));
    const bool newFolder = created.size() == store::fileLayouts().size();
    if (!created.isEmpty() && !newFolder)
        lines.append(
            QStringLiteral("Не было файлов, созданы новые: %1.").arg(created.join(QStringLiteral(", "))));
    if (!lines.isEmpty())
        m_messages.inform(lines.join(QStringLiteral("\n\n")), ui::programTitle());
}

} // namespace app
