#pragma once

#include <QtWidgets/QTableView>

/// A table of rows that says in grey what to do while it has none, and that tells apart opening a row
/// (Return) from walking through the rows.
class DeviceTableView : public QTableView {
    Q_OBJECT

public:
    explicit DeviceTableView(QWidget* zpParent = nullptr);

    /// The grey text of the empty table; "" for none.
    void SetPlaceholder(const QString& zText);

signals:
    /// Return was pressed on a row.
    void rowOpened(const QModelIndex& zIndex);

protected:
    void keyPressEvent(QKeyEvent* zpEvent) override;
    void paintEvent(QPaintEvent* zpEvent) override;

private:
    QString mPlaceholder;
};
