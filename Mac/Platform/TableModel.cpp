#include "TableModel.h"

#include "ThemeIcon.h"
#include "WidgetText.h"

#include <utility>

namespace {

std::size_t ToIndex(int zColumn) {
    return static_cast<std::size_t>(zColumn);
}

} // namespace

TableModel::TableModel(std::vector<sTableColumn> zColumns, QObject* zpParent)
    : QAbstractTableModel(zpParent), mColumns(std::move(zColumns)) {}

void TableModel::SetDataSource(TableDataSource* zpSource) {
    mpSource = zpSource;
    Reload();
}

void TableModel::Reload() {
    beginResetModel();
    endResetModel();
}

int TableModel::rowCount(const QModelIndex& zParent) const {
    return mpSource == nullptr || zParent.isValid() ? 0 : mpSource->numberOfRowsInTableView();
}

int TableModel::columnCount(const QModelIndex& zParent) const {
    return zParent.isValid() ? 0 : static_cast<int>(mColumns.size());
}

QVariant TableModel::data(const QModelIndex& zIndex, int zRole) const {
    if (mpSource == nullptr || !zIndex.isValid()) {
        return {};
    }
    switch (zRole) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
    case Qt::AccessibleDescriptionRole:
        return TextAt(zIndex);
    case Qt::DecorationRole:
        return zIndex.column() == 0 ? IconAt(zIndex.row()) : QVariant();
    case Qt::ToolTipRole: {
        const std::string& column = mColumns[ToIndex(zIndex.column())].identifier;
        return mpSource->tableViewShouldShowCellExpansionForTableColumn(column, zIndex.row()) ? TextAt(zIndex)
                                                                                              : QVariant();
    }
    default:
        return {};
    }
}

QVariant TableModel::headerData(int zSection, Qt::Orientation zOrientation, int zRole) const {
    const bool isHeading = zOrientation == Qt::Horizontal && zSection >= 0 && zSection < columnCount();
    if (!isHeading || zRole != Qt::DisplayRole) {
        return QAbstractTableModel::headerData(zSection, zOrientation, zRole);
    }
    return ToWidgetText(mColumns[ToIndex(zSection)].title);
}

Qt::ItemFlags TableModel::flags(const QModelIndex& zIndex) const {
    if (mpSource == nullptr || !zIndex.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return mpSource->tableViewShouldSelectRow(zIndex.row())
               ? shown | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled
               : shown;
}

void TableModel::sort(int zColumn, Qt::SortOrder zOrder) {
    if (mpSource == nullptr || zColumn < 0 || zColumn >= columnCount()) {
        return;
    }
    mpSource->tableViewSortDescriptorsDidChange(
        {mColumns[ToIndex(zColumn)].identifier, zOrder == Qt::AscendingOrder});
}

QString TableModel::TextAt(const QModelIndex& zIndex) const {
    return ToWidgetText(mpSource->tableViewObjectValueForTableColumn(
        mColumns[ToIndex(zIndex.column())].identifier, zIndex.row()));
}

QIcon TableModel::IconAt(int zRow) const {
    const std::string name = mpSource->tableViewIconNameForRow(zRow);
    const auto known = mIcons.find(name);
    return known != mIcons.end() ? known->second : mIcons.emplace(name, ThemeIcon(name)).first->second;
}
