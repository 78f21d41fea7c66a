#include "DeviceTableView.h"

#include "LocalUrl.h"
#include "ModalSession.h"
#include "TableModel.h"

#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QHeaderView>

#include <algorithm>

DeviceTableView::DeviceTableView(QWidget* zpParent) : QTableView(zpParent) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle);
    setTabKeyNavigation(false);
    setSortingEnabled(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    verticalHeader()->hide();
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void DeviceTableView::SetPlaceholder(const QString& zText) {
    mPlaceholder = zText;
    setAccessibleDescription(zText);
    viewport()->update();
}

void DeviceTableView::keyPressEvent(QKeyEvent* zpEvent) {
    const bool opens = zpEvent->key() == Qt::Key_Return || zpEvent->key() == Qt::Key_Enter;
    if (opens && currentIndex().isValid()) {
        emit rowOpened(currentIndex());
        return;
    }
    QTableView::keyPressEvent(zpEvent);
}

void DeviceTableView::paintEvent(QPaintEvent* zpEvent) {
    QTableView::paintEvent(zpEvent);
    if (mPlaceholder.isEmpty() || (model() != nullptr && model()->rowCount() > 0)) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                     mPlaceholder);
}

// --- Drags ---

/// What a drag carries is asked for once: the other program is waited for meanwhile.
void DeviceTableView::dragEnterEvent(QDragEnterEvent* zpEvent) {
    mHoldsFiles = !LocalPaths(*zpEvent->mimeData()).empty();
    Consider(*zpEvent);
}

void DeviceTableView::dragMoveEvent(QDragMoveEvent* zpEvent) {
    Consider(*zpEvent);
}

void DeviceTableView::dropEvent(QDropEvent* zpEvent) {
    Consider(*zpEvent);
    if (zpEvent->isAccepted()) {
        emit pathsDropped(LocalPaths(*zpEvent->mimeData()), RowAt(*zpEvent));
    }
}

/// Drags of this program come from this table: what they promise is here already.
void DeviceTableView::Consider(QDropEvent& zrEvent) {
    const bool fits = mpSource != nullptr && !ModalSession::IsRunning() && zrEvent.source() == nullptr &&
                      mHoldsFiles && mpSource->tableViewValidateDrop(RowAt(zrEvent)) == eDragOperation::kCopy;
    zrEvent.setDropAction(fits ? Qt::CopyAction : Qt::IgnoreAction);
    zrEvent.setAccepted(fits);
}

int DeviceTableView::RowAt(const QDropEvent& zEvent) const {
    return rowAt(zEvent.position().toPoint().y());
}

void DeviceTableView::startDrag(Qt::DropActions zActions) {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    if (mpSource != nullptr && !rows.empty() && mpSource->tableViewWriteRowsWithIndexes(rows)) {
        QTableView::startDrag(zActions);
    }
}
