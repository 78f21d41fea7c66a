#pragma once

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QListWidget>

/// Draws on the viewport of a list or table that has the keyboard where that is: around the whole current row
/// or, while there is none, around everything.
void DrawFocusFrame(QAbstractItemView& zrView);

/// A list or table in which people always see that it has the keyboard: the toolkit shows nothing while there
/// are no rows, and on dark desktops next to nothing.
template <typename View>
class FocusFramed : public View {
public:
    using View::View;

protected:
    void paintEvent(QPaintEvent* zpEvent) override {
        View::paintEvent(zpEvent);
        DrawFocusFrame(*this);
    }

    // What the toolkit then paints anew, or moves, is less than the frame.

    void currentChanged(const QModelIndex& zCurrent, const QModelIndex& zPrevious) override {
        View::currentChanged(zCurrent, zPrevious);
        View::viewport()->update();
    }

    void scrollContentsBy(int zX, int zY) override {
        View::scrollContentsBy(zX, zY);
        View::viewport()->update();
    }
};

/// For layout files, which know no templates.
using FocusFramedList = FocusFramed<QListWidget>;
