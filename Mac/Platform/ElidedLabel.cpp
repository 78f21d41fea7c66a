#include "ElidedLabel.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyle>

ElidedLabel::ElidedLabel(QWidget* zpParent) : QLabel(zpParent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*zpEvent*/) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter),
                          palette(), isEnabled(), shown, foregroundRole());
}
