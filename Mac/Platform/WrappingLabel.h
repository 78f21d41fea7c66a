#pragma once

#include <QtWidgets/QLabel>

/// A label of plain text that breaks lines anywhere where a word is too long, so that a path without
/// spaces neither widens its window nor is cut off.
class WrappingLabel : public QLabel {
public:
    explicit WrappingLabel(QWidget* zpParent = nullptr);

    bool hasHeightForWidth() const override { return true; }

    int heightForWidth(int zWidth) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* zpEvent) override;
};
