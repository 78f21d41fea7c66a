#pragma once

#include <QtWidgets/QLabel>

/// A label of plain text in one line, shortened in its middle where the room is too small for it.
class ElidedLabel : public QLabel {
public:
    explicit ElidedLabel(QWidget* zpParent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* zpEvent) override;
};
