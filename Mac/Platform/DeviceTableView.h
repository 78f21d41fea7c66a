#pragma once

#include "FocusFrame.h"

#include <QtWidgets/QTableView>

#include <string>
#include <vector>

class TableDataSource;

/// A table of rows that says in grey what to do while it has none, and that tells apart opening a row
/// (Return) from walking through the rows. It takes local files from other programs, anywhere, and hands
/// drags of its rows to its data source.
class DeviceTableView : public FocusFramed<QTableView> {
    Q_OBJECT

public:
    explicit DeviceTableView(QWidget* zpParent = nullptr);

    void setModel(QAbstractItemModel* zpModel) override;

    /// The grey text of the empty table; "" for none.
    void SetPlaceholder(const QString& zText);

    /// The rows that are selected, from the top down.
    std::vector<int> SelectedRows() const;

    /// Brings a row into view as the one that the keyboard goes on from, without selecting it.
    void MakeCurrent(int zRow);

    /// Who is asked about drags; null for nobody, and no drags.
    void SetDataSource(TableDataSource* zpSource) { mpSource = zpSource; }

signals:
    /// Return was pressed on a row.
    void rowOpened(const QModelIndex& zIndex);

    /// Local files and folders were dropped on a row, -1 for none. Who takes them must not do so before it
    /// has returned to the event loop: the other program waits until then.
    void pathsDropped(const std::vector<std::string>& zPaths, int zRow);

    /// The rows that were dragged out are wanted in this local folder.
    void promiseDropped(const std::string& zFolder);

protected:
    void keyPressEvent(QKeyEvent* zpEvent) override;
    void paintEvent(QPaintEvent* zpEvent) override;
    void resizeEvent(QResizeEvent* zpEvent) override;
    void dragEnterEvent(QDragEnterEvent* zpEvent) override;
    void dragMoveEvent(QDragMoveEvent* zpEvent) override;
    void dropEvent(QDropEvent* zpEvent) override;
    void startDrag(Qt::DropActions zActions) override;

private:
    void ShowCurrentRow();
    int WantedWidth() const;
    void FitLastColumn();
    void Consider(QDropEvent& zrEvent);
    int RowAt(const QDropEvent& zEvent) const;

    TableDataSource* mpSource = nullptr;
    bool mHoldsFiles = false; ///< what is dragged over the table now
    QString mPlaceholder;
};
