#include "store/error.h"

#include <QFileInfo>

#include <utility>

namespace store {

Error::Error(ErrorKind kind, QString file, QString engineText, QString sql, int code)
    : m_kind(kind), m_code(code), m_file(std::move(file)), m_engineText(std::move(engineText)),
      m_sql(std::move(sql))
{
    m_what = line().toUtf8();
}

QString Error::text() const
{
    const QString name = m_file.isEmpty() ? QStringLiteral("базы данных") : QFileInfo(m_file).fileName();
    switch (m_kind) {
    case ErrorKind::Missing:
        return QStringLiteral("Файл %1 не найден.").arg(name);
    case ErrorKind::CannotOpen:
        return QStringLiteral("Файл %1 не открывается. Проверьте права доступа.").arg(name);
    case ErrorKind::NotChosen:
        return QStringLiteral("Файлов с именем %1 несколько (они различаются большими и малыми буквами), ни "
                              "один не выбран.")
            .arg(name);
    case ErrorKind::Foreign:
        return QStringLiteral("Файл %1 не является базой данных журнала. Он оставлен без изменений.")
            .arg(name);
    case ErrorKind::Jet:
        return QStringLiteral(
                   "Файл %1 создан старой программой (формат Jet) и не преобразован. Он оставлен без "
                   "изменений; преобразование предлагается при запуске журнала.")
            .arg(name);
    case ErrorKind::MissingTable:
        return QStringLiteral("В файле %1 нет нужной таблицы. Он оставлен без изменений.").arg(name);
    case ErrorKind::Newer:
        return QStringLiteral("Файл %1 записан более новой версией программы. Он оставлен без изменений.")
            .arg(name);
    case ErrorKind::Damaged:
        return QStringLiteral("Файл %1 повреждён.").arg(name);
    case ErrorKind::Locked:
        return QStringLiteral("Файл %1 занят другой программой.").arg(name);
    case ErrorKind::ReadOnly:
        return QStringLiteral("Файл %1 открыт только для чтения, записать в него нельзя.").arg(name);
    case ErrorKind::DiskFull:
        return QStringLiteral("На диске нет места: файл %1 не записан.").arg(name);
    case ErrorKind::InputOutput:
        return QStringLiteral("Ошибка чтения или записи файла %1.").arg(name);
    case ErrorKind::Gone:
        return QStringLiteral("Строка файла %1 удалена или изменена в другом окне или другой программой. "
                              "Правка не сохранена: %2.")
            .arg(name, m_engineText);
    case ErrorKind::Outdated:
        return QStringLiteral(
                   "Файл %1 тем временем изменён в другом окне или другой программой. В него ничего "
                   "не записано.")
            .arg(name);
    case ErrorKind::BadText:
        return QStringLiteral("Запрос не выполнен: недопустимый знак или ошибка в выражении.");
    case ErrorKind::BadDate:
        return QStringLiteral("Запрос не выполнен: неверная дата.");
    case ErrorKind::Unreadable:
        return QStringLiteral("Файл %1 не прочитан: %2.").arg(name, m_engineText);
    case ErrorKind::Unwritable:
        return QStringLiteral("Файл %1 не записан: %2.").arg(m_file, m_engineText);
    case ErrorKind::Other:
        break;
    }
    return QStringLiteral("Ошибка при работе с файлом %1.").arg(name);
}

QString Error::details() const
{
    QString details = m_engineText;
    if (m_code != 0)
        details += QStringLiteral("\nКод: %1").arg(m_code);
    if (!m_file.isEmpty())
        details += QStringLiteral("\nФайл: %1").arg(m_file);
    if (!m_sql.isEmpty())
        details += QStringLiteral("\nЗапрос: %1").arg(m_sql);
    return details;
}

QString Error::line() const
{
    QString line = text();
    const bool told =
        m_kind == ErrorKind::Unreadable || m_kind == ErrorKind::Unwritable || m_kind == ErrorKind::Gone;
    if (!m_engineText.isEmpty() && !told)
        line += QStringLiteral(" (%1)").arg(m_engineText);
    return line;
}

} // namespace store
