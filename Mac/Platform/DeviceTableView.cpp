#include "DeviceTableView.h"

#include "LocalUrl.h"
#include "ModalSession.h"
#include "TableModel.h"

#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QResizeEvent>
#include <QtWidgets/QHeaderView>

#include <algorithm>

DeviceTableView::DeviceTableView(QWidget* zpParent) : FocusFramed(zpParent) {
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
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int zColumn) {
        if (zColumn < horizontalHeader()->count() - 1) {
            FitLastColumn();
        }
    });
}

void DeviceTableView::SetPlaceholder(const QString& zText) {
    mPlaceholder = zText;
    setAccessibleDescription(zText);
    viewport()->update();
}

std::vector<int> DeviceTableView::SelectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

void DeviceTableView::setModel(QAbstractItemModel* zpModel) {
    QTableView::setModel(zpModel);
    // After the selection model, which forgets the current row as the rows are read anew.
    connect(zpModel, &QAbstractItemModel::modelReset, this, [this] { ShowCurrentRow(); });
}

/// With the keyboard here, people see where it goes on.
void DeviceTableView::ShowCurrentRow() {
    if (hasFocus() && model()->rowCount() > 0) {
        MakeCurrent(0);
    }
}

void DeviceTableView::MakeCurrent(int zRow) {
    const QModelIndex index = model()->index(zRow, 0);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    scrollTo(index);
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
    FocusFramed::paintEvent(zpEvent);
    if (mPlaceholder.isEmpty() || (model() != nullptr && model()->rowCount() > 0)) {
        return;
    }
    // The table may be disabled, whose colours are too faint to be read, and on some dark desktops the colour
    // of placeholders is dark.
    QColor grey = palette().color(QPalette::Active, QPalette::Text);
    grey.setAlphaF(0.6F);
    QPainter painter(viewport());
    painter.setPen(grey);
    painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap,
                     mPlaceholder);
}

// --- Columns ---

/// The first column gets what the table gains and gives what it loses: names are what needs the room.
void DeviceTableView::resizeEvent(QResizeEvent* zpEvent) {
    QTableView::resizeEvent(zpEvent);
    QHeaderView& header = *horizontalHeader();
    if (header.count() > 0) {
        const int before = viewport()->isVisible() ? zpEvent->oldSize().width() : WantedWidth();
        const int gain = zpEvent->size().width() - before;
        header.resizeSection(0, std::max(header.minimumSectionSize(), header.sectionSize(0) + gain));
        FitLastColumn();
    }
}

/// The width of all columns, the last one being as wide as its heading.
int DeviceTableView::WantedWidth() const {
    const QHeaderView& header = *horizontalHeader();
    const int last = header.count() - 1;
    return header.length() - header.sectionSize(last) + header.sectionSizeHint(last);
}

/// The header's own way of stretching the last column lags behind the other columns.
void DeviceTableView::FitLastColumn() {
    const int last = horizontalHeader()->count() - 1;
    const int room = viewport()->width() - horizontalHeader()->length() + columnWidth(last);
    setColumnWidth(last, std::max(horizontalHeader()->sectionSizeHint(last), room));
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
    const std::vector<int> rows = SelectedRows();
    if (mpSource != nullptr && !rows.empty() && mpSource->tableViewWriteRowsWithIndexes(rows)) {
        QTableView::startDrag(zActions);
    }
}
