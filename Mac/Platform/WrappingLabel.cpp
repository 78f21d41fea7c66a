#include "WrappingLabel.h"

#include <QtGui/QPainter>
#include <QtGui/QTextLayout>

#include <cmath>

namespace {

constexpr int kSampleCharacters = 48; ///< the width that a label asks for

QTextOption BreakAnywhere() {
    QTextOption option(Qt::AlignLeading | Qt::AlignTop);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

} // namespace

WrappingLabel::WrappingLabel(QWidget* zpParent) : QLabel(zpParent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int WrappingLabel::heightForWidth(int zWidth) const {
    const QMargins margins = contentsMargins();
    QTextLayout layout(text(), font(), this);
    layout.setTextOption(BreakAnywhere());
    layout.beginLayout();
    qreal height = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(1, zWidth - margins.left() - margins.right()));
        height += line.height();
    }
    layout.endLayout();
    return std::max(static_cast<int>(std::ceil(height)), fontMetrics().height()) + margins.top() +
           margins.bottom();
}

QSize WrappingLabel::sizeHint() const {
    const int width = fontMetrics().averageCharWidth() * kSampleCharacters;
    return {width, heightForWidth(width)};
}

QSize WrappingLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * kSampleCharacters / 2, fontMetrics().height()};
}

void WrappingLabel::paintEvent(QPaintEvent* /*zpEvent*/) {
    QPainter painter(this);
    painter.drawText(QRectF(contentsRect()), text(), BreakAnywhere());
}
