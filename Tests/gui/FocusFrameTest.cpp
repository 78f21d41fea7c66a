#include "FocusFrame.h"
#include "Contrast.h"
#include "DeviceTableView.h"
#include "WidgetDriver.h"

#include <QtGui/QStandardItemModel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <vector>

namespace {

constexpr double kLeastContrast = 3.0;

/// The colours of a desktop.
struct sColours {
    const char* name;
    const char* base;
    const char* alternate;
    const char* text;
    const char* highlight;
};

void PrintTo(const sColours& zColours, std::ostream* zpStream) {
    *zpStream << zColours.name;
}

QPalette PaletteOf(const sColours& zColours) {
    QPalette palette;
    palette.setColor(QPalette::Base, zColours.base);
    palette.setColor(QPalette::AlternateBase, zColours.alternate);
    palette.setColor(QPalette::Text, zColours.text);
    palette.setColor(QPalette::Highlight, zColours.highlight);
    palette.setColor(QPalette::HighlightedText, "#ffffff");
    return palette;
}

/// The pixels of a line around a rectangle, just within it.
std::vector<QColor> Border(const QImage& picture, const QRect& place) {
    std::vector<QColor> colours;
    for (int x = place.left(); x <= place.right(); ++x) {
        colours.push_back(picture.pixelColor(x, place.top()));
        colours.push_back(picture.pixelColor(x, place.bottom()));
    }
    for (int y = place.top(); y <= place.bottom(); ++y) {
        colours.push_back(picture.pixelColor(place.left(), y));
        colours.push_back(picture.pixelColor(place.right(), y));
    }
    return colours;
}

/// What a widget was told to paint.
class PaintedRegion : public QObject {
public:
    explicit PaintedRegion(QWidget& widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject* /*object*/, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            mRegion += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }

    /// Whether this is painted, all of it, soon.
    bool Covers(const QRect& place) {
        return WaitFor([&] { return (QRegion(place) - mRegion).isEmpty(); });
    }

private:
    QRegion mRegion;
};

/// A table and a list, each of three rows, and a field that can have the keyboard instead.
class FocusFrameTest : public ::testing::Test {
protected:
    void SetUp() override {
        mTable.setModel(&mRows);
        mList.addItems({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
        auto* layout = new QVBoxLayout(&mWindow);
        for (QWidget* control : std::vector<QWidget*>{&mTable, &mList, &mField}) {
            layout->addWidget(control);
        }
        mWindow.resize(500, 500);
        ShowActive(mWindow);
        mTable.setFocus();
    }

    static QImage Picture(const QAbstractItemView& view) { return view.viewport()->grab().toImage(); }

    static QRect RowPlace(const QAbstractItemView& view) {
        const QRect cell = view.visualRect(view.currentIndex());
        return {0, cell.top(), view.viewport()->width(), cell.height()};
    }

    void GoTo(int row) {
        mTable.selectionModel()->setCurrentIndex(mRows.index(row, 0), QItemSelectionModel::NoUpdate);
    }

    QWidget mWindow;
    QStandardItemModel mRows{3, 3};
    DeviceTableView mTable{&mWindow};
    FocusFramedList mList{&mWindow};
    QLineEdit mField{&mWindow};
};

// --- What is painted anew ---

TEST_F(FocusFrameTest, LeavesNothingInTheRowBefore) {
    GoTo(0);
    const QRect before = RowPlace(mTable);
    RunLoopPasses(50); // what is still to be painted
    PaintedRegion painted(*mTable.viewport());
    GoTo(1);
    ASSERT_TRUE(painted.Covers(before));
    EXPECT_TRUE(painted.Covers(RowPlace(mTable)));
}

TEST_F(FocusFrameTest, StaysAtTheEdgesWhileColumnsScroll) {
    mTable.setColumnWidth(0, 60);
    mTable.setColumnWidth(1, 600);
    RunLoopPasses(50);
    ASSERT_GT(mTable.horizontalScrollBar()->maximum(), 0);
    PaintedRegion painted(*mTable.viewport());
    mTable.horizontalScrollBar()->setValue(1); // by a column, so that most of the picture is only moved
    EXPECT_TRUE(painted.Covers(mTable.viewport()->rect()));
}

// --- What it looks like ---

class FocusFrameColours : public FocusFrameTest, public ::testing::WithParamInterface<sColours> {
protected:
    void SetUp() override {
        FocusFrameTest::SetUp();
        mTable.setPalette(PaletteOf(GetParam()));
        mList.setPalette(PaletteOf(GetParam()));
    }

    /// The whole border stands out from both colours of rows; without the keyboard nothing of it is there.
    void ExpectFrame(QAbstractItemView& view, const QRect& place) {
        view.setFocus();
        const QImage with = Picture(view);
        for (const QColor& colour : Border(with, place)) {
            ASSERT_GE(Contrast(colour, QColor(GetParam().base)), kLeastContrast);
            ASSERT_GE(Contrast(colour, QColor(GetParam().alternate)), kLeastContrast);
        }
        mField.setFocus();
        for (const QColor& colour : Border(Picture(view), place)) {
            ASSERT_LT(Contrast(colour, QColor(GetParam().base)), kLeastContrast);
        }
    }
};

TEST_P(FocusFrameColours, IsAroundATableWithoutRows) {
    mRows.setRowCount(0);
    ExpectFrame(mTable, mTable.viewport()->rect());
}

TEST_P(FocusFrameColours, IsAroundAListWithoutRows) {
    mList.clear();
    ExpectFrame(mList, mList.viewport()->rect());
}

TEST_P(FocusFrameColours, IsAroundTheWholeCurrentRow) {
    for (int row = 0; row < 3; ++row) {
        GoTo(row);
        ExpectFrame(mTable, RowPlace(mTable));
        mList.setCurrentRow(row, QItemSelectionModel::NoUpdate);
        ExpectFrame(mList, RowPlace(mList));
    }
}

TEST_P(FocusFrameColours, IsAsTheTextsWithinASelectedRow) {
    mTable.selectRow(1);
    const QRect within = RowPlace(mTable).adjusted(1, 1, -1, -1);
    for (const QColor& colour : Border(Picture(mTable), within)) {
        ASSERT_EQ(colour, QColor("#ffffff"));
    }
    mField.setFocus();
    for (const QColor& colour : Border(Picture(mTable), within)) {
        ASSERT_EQ(colour, QColor(GetParam().highlight));
    }
}

INSTANTIATE_TEST_SUITE_P(Desktops, FocusFrameColours,
                         ::testing::Values(sColours{"Light", "#ffffff", "#f3f5f7", "#232629", "#3874b8"},
                                           sColours{"Pale", "#ffffff", "#f7f7f7", "#232629", "#3daee9"},
                                           sColours{"Dark", "#1d2023", "#24282b", "#eceff1", "#3874b8"}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
