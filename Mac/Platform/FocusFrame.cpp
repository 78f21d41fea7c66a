#include "FocusFrame.h"

#include <QtGui/QPainter>
#include <QtWidgets/qdrawutil.h>

namespace {

/// The colour of selections, which on some light desktops is too pale for a thin line, made firmer by some of
/// the colour of texts.
QColor FirmHighlight(const QPalette& zPalette) {
    constexpr float kPart = 0.25F;
    const QColor highlight = zPalette.color(QPalette::Highlight);
    const QColor text = zPalette.color(QPalette::Text);
    const auto mixed = [](float zOne, float zOther) { return zOne + (zOther - zOne) * kPart; };
    return QColor::fromRgbF(mixed(highlight.redF(), text.redF()), mixed(highlight.greenF(), text.greenF()),
                            mixed(highlight.blueF(), text.blueF()));
}

} // namespace

void DrawFocusFrame(QAbstractItemView& zrView) {
    if (!zrView.hasFocus()) {
        return;
    }
    const QModelIndex current = zrView.currentIndex();
    const QPalette& palette = zrView.palette();
    QRect place = zrView.viewport()->rect();
    QColor colour = FirmHighlight(palette);
    if (current.isValid()) {
        const QRect cell = zrView.visualRect(current);
        place.setTop(cell.top());
        place.setBottom(cell.bottom());
        if (zrView.selectionModel()->isSelected(current)) {
            place.adjust(1, 1, -1, -1); // inside, as the colour may be that of the rows around
            colour = palette.color(QPalette::HighlightedText);
        }
    }
    QPainter painter(zrView.viewport());
    qDrawPlainRect(&painter, place, colour); // of whole pixels at any scale
}
