#include "ui/messageboxes.h"

#include "ui/codepagedialog.h"

#include <QGridLayout>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace ui {

namespace {

/// "Show Details..." of the platform in the program's language.
void captionDetails(QMessageBox &box, const QString &details)
{
    if (details.isEmpty())
        return;
    box.setDetailedText(details);
    const auto buttons = box.buttons();
    for (QAbstractButton *button : buttons)
        if (box.buttonRole(button) == QMessageBox::ActionRole)
            button->setText(QStringLiteral("Подробности"));
}

/// A short text must not make a box too narrow for its title.
void answer(QMessageBox &box)
{
    constexpr int kLeastCharacters = 44;
    if (auto *grid = qobject_cast<QGridLayout *>(box.layout()))
        grid->addItem(new QSpacerItem(kLeastCharacters * box.fontMetrics().averageCharWidth(), 0),
                      grid->rowCount(), 0, 1, grid->columnCount());
    box.exec();
}

struct Answer {
    QString caption;
    QMessageBox::ButtonRole role;
};

/// True for the first answer; Enter and Esc give the second.
bool ask(const QString &text, const QString &title, const Answer &first, const Answer &second,
         QWidget *parent)
{
    constexpr int kLongest = 1200; // more would push the buttons off the screen
    const QString shown = text.size() > kLongest ? text.left(kLongest) + QStringLiteral("…") : text;
    QMessageBox box(QMessageBox::Question, title, shown, QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText);
    QPushButton *agreed = box.addButton(first.caption, first.role);
    QPushButton *refused = box.addButton(second.caption, second.role);
    box.setDefaultButton(refused);
    box.setEscapeButton(refused);
    answer(box);
    return box.clickedButton() == agreed;
}

} // namespace

QString programTitle()
{
    return QStringLiteral("Zhurnal");
}

bool MessageBoxes::askYesNo(const QString &text, const QString &title)
{
    return ask(text, title, {QStringLiteral("Да"), QMessageBox::YesRole},
               {QStringLiteral("Нет"), QMessageBox::NoRole}, m_active.window());
}

bool MessageBoxes::askOk(const QString &text, const QString &title)
{
    return ask(text, title, {QStringLiteral("ОК"), QMessageBox::AcceptRole},
               {QStringLiteral("Отмена"), QMessageBox::RejectRole}, m_active.window());
}

void MessageBoxes::inform(const QString &text, const QString &title)
{
    QMessageBox box(QMessageBox::Information, title, text, QMessageBox::NoButton, m_active.window());
    box.setTextFormat(Qt::PlainText);
    box.addButton(QStringLiteral("ОК"), QMessageBox::AcceptRole);
    answer(box);
}

QString MessageBoxes::choose(const QString &text, const QString &title, const QStringList &options)
{
    QInputDialog dialog(m_active.window());
    dialog.setWindowTitle(title);
    dialog.setLabelText(text);
    dialog.setComboBoxItems(options);
    dialog.setOption(QInputDialog::UseListViewForComboBoxItems);
    dialog.setOkButtonText(QStringLiteral("ОК"));
    dialog.setCancelButtonText(QStringLiteral("Отмена"));
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

QString MessageBoxes::askText(const QString &prompt, const QString &title)
{
    QInputDialog dialog(m_active.window());
    dialog.setWindowTitle(title);
    dialog.setLabelText(prompt);
    constexpr int kLeastCharacters = 44; // a short prompt must not cut the title
    dialog.resize(kLeastCharacters * dialog.fontMetrics().averageCharWidth(), dialog.sizeHint().height());
    dialog.setOkButtonText(QStringLiteral("ОК"));
    dialog.setCancelButtonText(QStringLiteral("Отмена"));
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

int MessageBoxes::chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt)
{
    CodePageDialog dialog(file, doubt, m_active.window());
    return dialog.exec() == QDialog::Accepted ? dialog.codePage() : 0;
}

void MessageBoxes::error(const store::Error &error)
{
    QMessageBox box(QMessageBox::Warning, programTitle(), error.text(), QMessageBox::NoButton,
                    m_active.window());
    box.setTextFormat(Qt::PlainText);
    QPushButton *ok = box.addButton(QStringLiteral("ОК"), QMessageBox::AcceptRole);
    box.setDefaultButton(ok); // not the details
    box.setEscapeButton(ok);
    captionDetails(box, error.details());
    answer(box);
}

NotStoredChoice MessageBoxes::notStored(const store::Error &error, const QString &contact,
                                        const QString &whereSaved)
{
    QMessageBox box(QMessageBox::Critical, programTitle(), error.text(), QMessageBox::NoButton,
                    m_active.window());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(contact + QStringLiteral("\n\n") + whereSaved);
    QPushButton *retry = box.addButton(QStringLiteral("Повторить"), QMessageBox::AcceptRole);
    QPushButton *back = box.addButton(QStringLiteral("Вернуть в поля"), QMessageBox::RejectRole);
    box.setDefaultButton(retry);
    box.setEscapeButton(back);
    captionDetails(box, error.details());
    answer(box);
    return box.clickedButton() == retry ? NotStoredChoice::Retry : NotStoredChoice::GiveBack;
}

} // namespace ui
