#include "ui/filedialogs.h"

#include <QFileDialog>

namespace ui {

QString SystemFileDialogs::fileToOpen(QWidget *parent, const QString &title, const QString &start,
                                      const QStringList &filters)
{
    return QFileDialog::getOpenFileName(parent, title, start, filters.join(QStringLiteral(";;")));
}

QString SystemFileDialogs::fileToSave(QWidget *parent, const QString &title, const QString &start,
                                      const QStringList &filters)
{
    return QFileDialog::getSaveFileName(parent, title, start, filters.join(QStringLiteral(";;")));
}

} // namespace ui
