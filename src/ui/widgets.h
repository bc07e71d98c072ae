#pragma once

#include "ui/filteredit.h"

#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QString>

#include <functional>

namespace ui {

/// Entry field under its own name, with a tip that is also its accessible name. `characters`: width to
/// reserve.
[[nodiscard]] FilterEdit *makeEdit(QWidget *parent, const char *name, const QString &tip, int characters);

/// Field that only shows, and that Tab passes over.
[[nodiscard]] FilterEdit *makeDisplay(QWidget *parent, const char *name, const QString &tip, int characters);

/// Button that Enter presses as the space bar does.
[[nodiscard]] QPushButton *makeButton(QWidget *parent, const char *name, const QString &caption,
                                      const QString &tip);

/// Label that names `buddy` to the eye and to a screen reader.
[[nodiscard]] QLabel *makeLabel(QWidget *parent, const QString &text, QWidget *buddy = nullptr);

/// The field turns every character into its upper-case form.
void upperCased(FilterEdit *edit);

/// The widget's place stays free while it is hidden: nothing jumps when it comes and goes.
void keepPlace(QWidget *widget);

/// Narrow margins and gaps, for a window of many panels on a small screen.
void compact(QLayout *layout);

/// Makes a widget's text larger by a factor and, where wanted, bold.
void enlarge(QWidget *widget, double factor, bool bold);

/// Fills a window with `content`, which scrolls where the window is too small for it: a small screen or a
/// large font.
/// `foot`, if there is one, stays in sight below it. The window gets the size `wanted`, as far as the screen
/// allows.
void fillScrolled(QWidget *window, QWidget *content, QSize wanted, QWidget *foot = nullptr);

/// Deletes all that stands in a window whose fields and grids are bound to data sources that the window owns:
/// they must go before the sources do. The focus leaves first, because leaving a field saves it and may tell
/// something in a line that is about to go too.
void deleteContent(QWidget *window);

/// Runs `function` behind everything that is waiting to be run and what that leaves behind. A window that
/// comes to the front is told so before the one that goes back is told, and that one then saves what has been
/// typed into it: only after this is there something to read. Where a mouse button is down the function waits
/// for the second click of a double one: rows must not move away under the pointer between the two.
void onceOthersHaveSaved(QObject *context, const std::function<void()> &function);

/// Width of `characters` digits in a field, its frame included.
[[nodiscard]] int editWidth(const QWidget *widget, int characters);

} // namespace ui
