#include "ui/dbgrid.h"

#include "ui/boundfield.h"
#include "ui/filteredit.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <utility>

namespace ui {

namespace {

/// What a text takes at most: dates, times and reports are digits, anything else may be as wide as a "W".
/// Measures the two only where the font is another one than last time.
class WidestText {
public:
    [[nodiscard]] int width(const QString &text, const QStyleOptionViewItem &option)
    {
        if (m_digit == 0 || !(m_font == option.font)) {
            m_font = option.font;
            m_digit = option.fontMetrics.horizontalAdvance(QLatin1Char('0'));
            m_widest = option.fontMetrics.horizontalAdvance(QLatin1Char('W'));
        }
        int width = 0;
        for (const QChar c : text)
            width += (c >= u'0' && c <= u'9') || c == u'.' || c == u':' ? m_digit : m_widest;
        return width;
    }

private:
    QFont m_font;
    int m_digit = 0;
    int m_widest = 0;
};

class UpperCaseDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setRules(DbGrid::CellFilter filter, DbGrid::CellText taken)
    {
        m_filter = std::move(filter);
        m_taken = std::move(taken);
    }

    /// Text only: the style's own painting of a cell costs ten times as much, and the grid is painted at
    /// every key.
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QString text = index.data(Qt::DisplayRole).toString();
        const bool selected = (option.state & QStyle::State_Selected) != 0;
        const auto group = (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
        if (selected)
            painter->fillRect(option.rect, option.palette.brush(group, QPalette::Highlight));
        if (!text.isEmpty()) {
            constexpr int kMargin = 3;
            const QRect box = option.rect.adjusted(kMargin, 0, -kMargin, 0);
            painter->setPen(
                option.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
            // Measuring costs as much as drawing: only a text that may not fit is measured.
            const bool fits = m_widest.width(text, option) <= box.width() ||
                              option.fontMetrics.horizontalAdvance(text) <= box.width();
            painter->drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                              fits ? text : option.fontMetrics.elidedText(text, Qt::ElideRight, box.width()));
        }
        if ((option.state & QStyle::State_HasFocus) != 0) {
            QStyleOptionFocusRect frame;
            frame.QStyleOption::operator=(option);
            option.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, painter, option.widget);
        }
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &,
                          const QModelIndex &index) const override
    {
        auto *edit = new FilterEdit(parent);
        edit->setFrame(false);
        edit->setAccessibleName(
            index.model()->headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString());
        edit->setFilter(
            [filter = m_filter, column = index.column()](QChar typed, qsizetype length, const QKeyEvent *) {
                return filter ? filter(column, typed, length) : typed.toUpper();
            });
        return edit;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        qobject_cast<FilterEdit *>(editor)->setText(index.data(Qt::EditRole).toString());
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        const QString text = qobject_cast<FilterEdit *>(editor)->text();
        if (const std::optional<QString> taken = m_taken ? m_taken(index.column(), text) : text)
            model->setData(index, *taken, Qt::EditRole);
    }

private:
    DbGrid::CellFilter m_filter;
    DbGrid::CellText m_taken;
    mutable WidestText m_widest;
};

} // namespace

DbGrid::DbGrid(store::DataSource &source, QList<GridColumn> columns, Run run, QWidget *parent)
    : QTableView(parent), m_model(new SourceModel(source, std::move(columns), true, this)),
      m_run(std::move(run))
{
    setModel(m_model);
    setItemDelegate(new UpperCaseDelegate(this));
    setSelectionBehavior(SelectItems);
    setSelectionMode(SingleSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false); // Tab leaves the grid, so that the whole window can be used without a mouse
    setWordWrap(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsMovable(false);
    QList<int> widths;
    for (const GridColumn &column : m_model->columns())
        widths.append(column.width);
    setColumnWidths(widths);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *old, QWidget *now) { leftWithFocus(old, now); });
}

void DbGrid::setCellRules(CellFilter filter, CellText taken)
{
    static_cast<UpperCaseDelegate *>(itemDelegate())->setRules(std::move(filter), std::move(taken));
}

void DbGrid::setColumnWidths(const QList<int> &characters)
{
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    for (int column = 0; column < characters.size(); ++column) {
        if (characters[column] <= 0)
            continue;
        const int heading = fontMetrics().horizontalAdvance(m_model->columns()[column].heading);
        setColumnWidth(column, std::max(characters[column] * digit, heading) + 7);
    }
}

void DbGrid::showLastRow()
{
    try {
        m_model->source().fetchAll();
    } catch (const store::Error &error) {
        Q_EMIT m_model->failed(error);
    }
    executeDelayedItemsLayout(); // now, not once more at the painting
    scrollToBottom();
}

bool DbGrid::saveRow()
{
    if (state() == EditingState) {
        if (QWidget *editor = indexWidget(currentIndex()))
            commitData(editor);
        else if (auto *edit = qobject_cast<FilterEdit *>(QApplication::focusWidget());
                 edit && isAncestorOf(edit))
            commitData(edit);
    }
    return m_run([this] { savePending(m_model->source()); });
}

bool DbGrid::editing() const
{
    // The grid has one cell at most open, and that has the focus of its window.
    const QWidget *inFocus = window()->focusWidget();
    return m_model->source().editPending() || (inFocus != this && isAncestorOf(inFocus));
}

void DbGrid::readAgain()
{
    store::DataSource &source = m_model->source();
    const bool focused = isAncestorOf(window()->focusWidget()); // then an open cell is closed
    const QModelIndex current = currentIndex();
    const int column = current.column();
    const int place = verticalScrollBar()->value();
    const int sourceRow = source.currentRow();
    const auto mark = source.mark(sourceRow);
    const bool together = current.isValid() && current.row() == sourceRow;
    source.refresh();
    if (focused)
        setFocus();
    if (mark) {
        const int row = source.find(*mark);
        source.moveTo(std::max(0, row));
        if (together)
            setCurrentIndex(row >= 0 ? m_model->index(row, column) : QModelIndex());
    }
    if (place > 0) {
        source.fetchAll(); // the place may lie behind the first page
        doItemsLayout();
        verticalScrollBar()->setValue(place);
    }
}

void DbGrid::leftWithFocus(QWidget *old, QWidget *now)
{
    const bool wasHere = old == this || (old != nullptr && isAncestorOf(old));
    if (!wasHere || m_leaving || now == nullptr || now == this || isAncestorOf(now) ||
        now->window() != window() || !m_model->source().editPending() || m_model->source().addPending())
        return;
    // The message of a failure gives the focus back to where it came from: that is no new leaving, and the
    // row that is not saved gets the focus instead. Otherwise the messages would never end.
    m_leaving = true;
    if (!saveRow()) {
        setFocus();
        // The mouse was pressed on the button and let go over the message: it would stay drawn pressed.
        if (auto *button = qobject_cast<QAbstractButton *>(now))
            QMetaObject::invokeMethod(
                button, [button] { button->setDown(false); }, Qt::QueuedConnection);
    }
    m_leaving = false;
}

void DbGrid::keyPressEvent(QKeyEvent *event)
{
    if (state() != EditingState && event->modifiers() == Qt::NoModifier) {
        if (event->key() == Qt::Key_Delete) {
            if (currentIndex().isValid())
                Q_EMIT deleteAsked(currentIndex().row());
            event->accept();
            return;
        }
        if (event->key() == Qt::Key_Escape && m_model->source().editPending()) {
            m_model->source().cancelUpdate();
            event->accept();
            return;
        }
    }
    QTableView::keyPressEvent(event);
}

void DbGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (m_returning || !current.isValid() || current.row() == previous.row())
        return;
    const auto move = [&] {
        savePending(m_model->source());
        m_model->source().moveTo(current.row());
    };
    if (!m_run(move) && previous.isValid()) {
        // The row could not be saved: it stays the current one with what was typed.
        m_returning = true;
        setCurrentIndex(previous);
        m_returning = false;
        // The view marks the cell that was asked for only after this.
        QMetaObject::invokeMethod(this, &DbGrid::markCurrent, Qt::QueuedConnection);
    }
}

bool DbGrid::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    if (trigger == AnyKeyPressed && !m_typedColumns.isEmpty() && !m_typedColumns.contains(index.column()))
        return false;
    const bool asked = (trigger == DoubleClicked || trigger == EditKeyPressed) &&
                       editTriggers().testFlag(trigger) && index.isValid();
    if (asked && !index.flags().testFlag(Qt::ItemIsEditable))
        Q_EMIT editRefused();
    return QTableView::edit(index, trigger, event);
}

void DbGrid::markCurrent()
{
    selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
    scrollTo(currentIndex());
}

} // namespace ui
