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

void DbList::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex before = currentIndex();
    QListView::keyPressEvent(event);
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (currentIndex().isValid() && (currentIndex() != before || enter))
        Q_EMIT reached(m_model->data(currentIndex(), Qt::DisplayRole).toString());
}

} // namespace ui
