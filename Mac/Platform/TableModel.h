#pragma once

#include <QtCore/QAbstractTableModel>
#include <QtGui/QIcon>

#include <map>
#include <string>
#include <vector>

/// How the rows of a table are to be ordered.
struct sSortDescriptor {
    std::string key; ///< a column's identifier
    bool ascending = true;
};

/// One column: the identifier that the data source knows it by, and its heading.
struct sTableColumn {
    std::string identifier;
    std::string title;
};

/// What becomes of a drag that is dropped here.
enum class eDragOperation { kNone, kCopy };

/// Where a table gets its rows from, and where drags to and from it go. Rows outside the source's list give
/// empty values.
class TableDataSource {
public:
    virtual ~TableDataSource() = default;

    virtual int numberOfRowsInTableView() const = 0;
    virtual std::string tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const = 0;
    virtual bool tableViewShouldSelectRow(int zRow) const = 0;

    /// Whether a value that is cut for space may unfold in a tool tip.
    virtual bool tableViewShouldShowCellExpansionForTableColumn(const std::string& zColumn,
                                                                int zRow) const = 0;

    /// The desktop icon theme's name for what the row stands for.
    virtual std::string tableViewIconNameForRow(int zRow) const = 0;

    /// The order was changed; the source sorts its rows and has the table reloaded.
    virtual void tableViewSortDescriptorsDidChange(const sSortDescriptor& zDescriptor) = 0;

    /// Local files are held over a row (-1: over none).
    virtual eDragOperation tableViewValidateDrop(int zRow) = 0;

    /// They were dropped there. False when they are refused.
    virtual bool tableViewAcceptDrop(const std::vector<std::string>& zPaths, int zRow) = 0;

    /// These rows, in ascending order, are being dragged. Whether the table is to go on with that; a source
    /// that has run a drag of its own says no.
    virtual bool tableViewWriteRowsWithIndexes(const std::vector<int>& zRows) = 0;
};

/// Shows a data source to the toolkit's table view. It keeps no rows of its own: whoever changes the
/// source's rows calls Reload before control returns to the event loop.
class TableModel : public QAbstractTableModel {
public:
    /// The source must outlive the model or be taken away by SetDataSource(nullptr).
    explicit TableModel(std::vector<sTableColumn> zColumns, QObject* zpParent = nullptr);

    void SetDataSource(TableDataSource* zpSource);

    /// Reads all rows anew; the view's selection ends.
    void Reload();

    int rowCount(const QModelIndex& zParent = {}) const override;
    int columnCount(const QModelIndex& zParent = {}) const override;
    QVariant data(const QModelIndex& zIndex, int zRole) const override;
    QVariant headerData(int zSection, Qt::Orientation zOrientation, int zRole) const override;
    Qt::ItemFlags flags(const QModelIndex& zIndex) const override;
    void sort(int zColumn, Qt::SortOrder zOrder) override;

private:
    QString TextAt(const QModelIndex& zIndex) const;
    QIcon IconAt(int zRow) const;

    std::vector<sTableColumn> mColumns;
    TableDataSource* mpSource = nullptr;
    mutable std::map<std::string, QIcon> mIcons;
};
