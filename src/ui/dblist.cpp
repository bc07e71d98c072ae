#include "ui/dblist.h"

#include <QKeyEvent>

namespace ui {

DbList::DbList(store::DataSource &source, const QString &field, QWidget *parent)
    : QListView(parent), m_model(new SourceModel(source, {{field, field}}, false, this))
{
    setModel(m_model);
    setUniformItemSizes(true); // a list of 300,000 callsigns is not measured line by line
    setSpacing(1);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(this, &QListView::clicked, this, [this](const QModelIndex &index) {
        Q_EMIT chosen(m_model->data(index, Qt::DisplayRole).toString());
    });
}

QString DbList::text() const
{
    const QModelIndex index = currentIndex().isValid() ? currentIndex() : m_model->index(0, 0);
    return index.isValid() && m_model->rowCount() > 0 ? m_model->data(index, Qt::DisplayRole).toString()
                                                      : QString();
}

QString DbList::chosenText() const
{
    // The focus alone makes a row the current one, without selecting it.
    const QModelIndexList chosen = selectionModel()->selectedIndexes();
    return chosen.isEmpty() ? QString() : m_model->data(chosen.front(), Qt::DisplayRole).toString();
}

void DbList::choose(const QString &text)
{
    for (int before = -1; m_model->canFetchMore({}) && m_model->rowCount() > before;) {
        before = m_model->rowCount();
        m_model->fetchMore({}); // brings no row where reading fails, which has been told
    }
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex index = m_model->index(row, 0);
        if (m_model->data(index, Qt::DisplayRole).toString() != text)
            continue;
        setCurrentIndex(index);
        return;
    }
    setCurrentIndex({});
}

void DbList::keyboardSearch(const QString &search)
{
    constexpr int kSearched = 20000;
    while (m_model->rowCount() < kSearched && m_model->canFetchMore({})) {
        const int before = m_model->rowCount();
        m_model->fetchMore({});
        if (m_model->rowCount() == before)
            break; // reading failed, which has been told
    }
    QListView::keyboardSearch(search);
}

void DbList::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex before = currentIndex();
    const bool wasChosen = !selectionModel()->selectedIndexes().isEmpty();
    if (event->key() == Qt::Key_Down && !wasChosen && before.isValid())
        setCurrentIndex(before); // the focus alone has come to the first row: it is not passed over
    else
        QListView::keyPressEvent(event);
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool chosen = !wasChosen && !selectionModel()->selectedIndexes().isEmpty(); // by the space bar
    if (!currentIndex().isValid() || (currentIndex() == before && !enter && !chosen))
        return;
    const QString text = m_model->data(currentIndex(), Qt::DisplayRole).toString();
    if (enter)
        setCurrentIndex(currentIndex()); // one that only the focus has made current is now selected
    Q_EMIT reached(text);
    if (enter)
        Q_EMIT confirmed(text);
}

} // namespace ui
