#include "DeviceTableView.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QHeaderView>

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
