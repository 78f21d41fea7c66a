#include "TableModel.h"
#include "DeviceTableView.h"
#include "FileInfoValue.h"
#include "WidgetDriver.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QHeaderView>
#include <gmock/gmock.h>

#include <memory>

namespace {

using ::testing::ElementsAre;

TEST(FileInfoValueTest, CarriesARecordThatItDoesNotOwn) {
    const cClientProtocol::cDeviceFileInfo first{"a.wav", "today", false, 12, kRightDelete};
    const cClientProtocol::cDeviceFileInfo second;
    FileInfoValue value(&first);
    EXPECT_EQ(value.mpFileInfo, &first);
    const FileInfoValue copy = value;
    value.init(&second);
    EXPECT_EQ(value.mpFileInfo, &second);
    EXPECT_EQ(copy.mpFileInfo, &first);
    value.init(nullptr);
    EXPECT_EQ(value.mpFileInfo, nullptr);
}

/// Rows of a name and a kind; rows called "fixed" cannot be selected.
struct sRows : TableDataSource {
    std::vector<std::pair<std::string, std::string>> rows;
    std::vector<std::string> sorted; ///< what was asked for, "key+" or "key-"
    bool expands = false;
    mutable int iconQuestions = 0;

    int numberOfRowsInTableView() const override { return static_cast<int>(rows.size()); }

    std::string tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const override {
        const auto& row = rows.at(static_cast<std::size_t>(zRow));
        return zColumn == "name" ? row.first : zColumn == "kind" ? row.second : "";
    }

    bool tableViewShouldSelectRow(int zRow) const override {
        return rows.at(static_cast<std::size_t>(zRow)).first != "fixed";
    }

    bool tableViewShouldShowCellExpansionForTableColumn(const std::string& zColumn,
                                                        int /*zRow*/) const override {
        return expands && zColumn == "name";
    }

    std::string tableViewIconNameForRow(int /*zRow*/) const override {
        ++iconQuestions;
        return "folder";
    }

    void tableViewSortDescriptorsDidChange(const sSortDescriptor& zDescriptor) override {
        sorted.push_back(zDescriptor.key + (zDescriptor.ascending ? "+" : "-"));
    }

    eDragOperation tableViewValidateDrop(int /*zRow*/) override { return eDragOperation::kCopy; }

    bool tableViewAcceptDrop(const std::vector<std::string>& /*zPaths*/, int /*zRow*/) override {
        return true;
    }

    bool tableViewWriteRowsWithIndexes(const std::vector<int>& zRows) override {
        dragged.push_back(zRows);
        return false;
    }

    std::vector<std::vector<int>> dragged;
};

class TableModelTest : public ::testing::Test {
protected:
    TableModelTest() {
        mSource.rows = {{"one", "a"}, {"fixed", "b"}, {"Küche", "c"}};
        mModel.SetDataSource(&mSource);
    }

    QVariant At(int zRow, int zColumn, int zRole = Qt::DisplayRole) const {
        return mModel.index(zRow, zColumn).data(zRole);
    }

    sRows mSource;
    TableModel mModel{{{"name", "Name"}, {"kind", "Kind"}, {"", "Nothing"}}};
    QAbstractItemModelTester mTester{&mModel, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(TableModelTest, ShowsTheValuesOfItsSource) {
    EXPECT_EQ(mModel.rowCount(), 3);
    EXPECT_EQ(mModel.columnCount(), 3);
    EXPECT_EQ(At(0, 0), QStringLiteral("one"));
    EXPECT_EQ(At(0, 1), QStringLiteral("a"));
    EXPECT_EQ(At(0, 2), QString());
    for (const int role : {Qt::DisplayRole, Qt::AccessibleTextRole, Qt::AccessibleDescriptionRole}) {
        EXPECT_EQ(At(2, 0, role), QString::fromUtf8("Küche")) << role;
    }
    EXPECT_FALSE(At(0, 0, Qt::EditRole).isValid());
}

TEST_F(TableModelTest, RowsHaveNoChildren) {
    EXPECT_EQ(mModel.rowCount(mModel.index(0, 0)), 0);
    EXPECT_EQ(mModel.columnCount(mModel.index(0, 0)), 0);
}

TEST_F(TableModelTest, HeadingsAreThoseOfTheColumns) {
    EXPECT_EQ(mModel.headerData(0, Qt::Horizontal, Qt::DisplayRole), QStringLiteral("Name"));
    EXPECT_EQ(mModel.headerData(2, Qt::Horizontal, Qt::DisplayRole), QStringLiteral("Nothing"));
    EXPECT_FALSE(mModel.headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());
    EXPECT_EQ(mModel.headerData(1, Qt::Vertical, Qt::DisplayRole), 2);
    for (const int outside : {-1, 3}) {
        EXPECT_NE(mModel.headerData(outside, Qt::Horizontal, Qt::DisplayRole), QStringLiteral("Name"));
    }
}

TEST_F(TableModelTest, TheFirstColumnHasIconsThatAreMadeOnce) {
    mSource.iconQuestions = 0;
    const auto first = At(0, 0, Qt::DecorationRole).value<QIcon>();
    EXPECT_FALSE(first.isNull());
    EXPECT_EQ(At(2, 0, Qt::DecorationRole).value<QIcon>().cacheKey(), first.cacheKey());
    EXPECT_EQ(mSource.iconQuestions, 2);
    EXPECT_FALSE(At(0, 1, Qt::DecorationRole).isValid());
}

TEST_F(TableModelTest, ToolTipsAreTheSourcesChoice) {
    EXPECT_FALSE(At(0, 0, Qt::ToolTipRole).isValid());
    mSource.expands = true;
    EXPECT_EQ(At(0, 0, Qt::ToolTipRole), QStringLiteral("one"));
    EXPECT_FALSE(At(0, 1, Qt::ToolTipRole).isValid());
}

TEST_F(TableModelTest, SelectableIsWhatTheSourceAllows) {
    EXPECT_TRUE(mModel.flags(mModel.index(0, 0)).testFlag(Qt::ItemIsSelectable));
    const Qt::ItemFlags fixed = mModel.flags(mModel.index(1, 0));
    EXPECT_FALSE(fixed.testFlag(Qt::ItemIsSelectable));
    EXPECT_TRUE(fixed.testFlag(Qt::ItemIsEnabled));
    EXPECT_EQ(mModel.flags(QModelIndex()), Qt::NoItemFlags);
}

TEST_F(TableModelTest, SortingIsLeftToTheSource) {
    mModel.sort(0, Qt::AscendingOrder);
    mModel.sort(1, Qt::DescendingOrder);
    mModel.sort(-1, Qt::AscendingOrder);
    mModel.sort(3, Qt::AscendingOrder);
    EXPECT_THAT(mSource.sorted, ElementsAre("name+", "kind-"));
}

TEST_F(TableModelTest, ReloadReadsAllRowsAnew) {
    const QSignalSpy resets(&mModel, &QAbstractItemModel::modelReset);
    mSource.rows = {{"other", ""}};
    mModel.Reload();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(mModel.rowCount(), 1);
    EXPECT_EQ(At(0, 0), QStringLiteral("other"));
}

TEST_F(TableModelTest, WithoutASourceItIsEmpty) {
    const QPersistentModelIndex row(mModel.index(0, 0));
    mModel.SetDataSource(nullptr);
    EXPECT_EQ(mModel.rowCount(), 0);
    EXPECT_FALSE(row.isValid());
    mModel.sort(0, Qt::AscendingOrder);
    EXPECT_THAT(mSource.sorted, ElementsAre());
}

// --- The view ---

class DeviceTableViewTest : public TableModelTest {
protected:
    void SetUp() override {
        mView.setModel(&mModel);
        mView.resize(600, 300);
        ShowActive(mView);
        mView.setFocus();
    }

    void ClickRow(int zRow) {
        QTest::mouseClick(mView.viewport(), Qt::LeftButton, Qt::NoModifier,
                          mView.visualRect(mModel.index(zRow, 0)).center());
    }

    DeviceTableView mView;
};

TEST_F(DeviceTableViewTest, ReturnOpensTheCurrentRow) {
    QSignalSpy opened(&mView, &DeviceTableView::rowOpened);
    ClickRow(2);
    QTest::keyClick(&mView, Qt::Key_Return);
    QTest::keyClick(&mView, Qt::Key_Enter);
    ASSERT_EQ(opened.count(), 2);
    EXPECT_EQ(opened.first().first().toModelIndex().row(), 2);
    QTest::keyClick(&mView, Qt::Key_Up);
    mSource.rows.clear();
    mModel.Reload();
    QTest::keyClick(&mView, Qt::Key_Return);
    EXPECT_EQ(opened.count(), 2);
}

TEST_F(DeviceTableViewTest, TabLeavesTheTable) {
    EXPECT_FALSE(mView.tabKeyNavigation());
}

TEST_F(DeviceTableViewTest, SelectsWholeRowsThatMayBeSelected) {
    ClickRow(0);
    EXPECT_EQ(mView.selectionModel()->selectedRows().size(), 1);
    ClickRow(1);
    EXPECT_EQ(mView.selectionModel()->selectedRows().size(), 0);
    mView.selectAll();
    EXPECT_EQ(mView.selectionModel()->selectedRows().size(), 2);
}

TEST_F(DeviceTableViewTest, AnEmptyTableShowsItsPlaceholder) {
    mView.SetPlaceholder(QStringLiteral("Nothing here"));
    EXPECT_EQ(mView.accessibleDescription(), QStringLiteral("Nothing here"));
    const QImage withRows = mView.viewport()->grab().toImage();
    mSource.rows.clear();
    mModel.Reload();
    const QImage withPlaceholder = mView.viewport()->grab().toImage();
    mView.SetPlaceholder(QString());
    const QImage bare = mView.viewport()->grab().toImage();
    EXPECT_NE(withPlaceholder, bare);
    EXPECT_NE(withPlaceholder, withRows);
}

// --- Columns ---

TEST_F(DeviceTableViewTest, TheFirstColumnGetsWhatTheTableGains) {
    const QHeaderView& header = *mView.horizontalHeader();
    const int first = header.sectionSize(0);
    const int second = header.sectionSize(1);
    const int last = header.sectionSize(2);
    mView.resize(800, 300);
    EXPECT_EQ(header.sectionSize(0), first + 200);
    mView.resize(500, 300);
    EXPECT_EQ(header.sectionSize(0), first - 100);
    EXPECT_EQ(header.sectionSize(1), second);
    EXPECT_EQ(header.sectionSize(2), last);
    mView.resize(100, 300);
    EXPECT_EQ(header.sectionSize(0), header.minimumSectionSize());
    EXPECT_EQ(header.sectionSize(1), second);
}

TEST_F(DeviceTableViewTest, TheColumnsFillTheTableFromTheStart) {
    DeviceTableView view;
    view.setModel(&mModel);
    QHeaderView& header = *view.horizontalHeader();
    header.resizeSection(1, 130);
    view.resize(700, 300);
    ShowActive(view);
    EXPECT_EQ(header.length(), view.viewport()->width());
    EXPECT_EQ(header.sectionSize(1), 130);
    EXPECT_EQ(header.sectionSize(2), header.sectionSizeHint(2));
    EXPECT_GT(header.sectionSize(0), 400);
}

TEST_F(DeviceTableViewTest, AColumnKeepsTheWidthThatPeopleGaveIt) {
    QHeaderView& header = *mView.horizontalHeader();
    header.resizeSection(0, 222);
    header.resizeSection(1, 77);
    mView.resize(mView.width() + 50, 300);
    EXPECT_EQ(header.sectionSize(0), 272);
    EXPECT_EQ(header.sectionSize(1), 77);
    EXPECT_EQ(header.length(), mView.viewport()->width());
}

// --- Drags that begin here ---

class RowDragTest : public TableModelTest {
protected:
    RowDragTest() {
        mSource.rows = {{"one", "a"}, {"two", "b"}, {"three", "c"}, {"fixed", "d"}};
        mModel.Reload();
        mView.setModel(&mModel);
        mView.SetDataSource(&mSource);
        mView.resize(400, 300);
        ShowActive(mView);
    }

    QPoint Centre(int zRow) { return mView.visualRect(mModel.index(zRow, 0)).center(); }

    void Click(int zRow, Qt::KeyboardModifiers zModifiers = Qt::NoModifier) {
        QTest::mouseClick(mView.viewport(), Qt::LeftButton, zModifiers, Centre(zRow));
    }

    /// Presses the mouse on a row, moves it away and lets it go.
    void Pull(int zRow) {
        QTest::mousePress(mView.viewport(), Qt::LeftButton, {}, Centre(zRow));
        for (int step = 1; step <= 4; ++step) {
            MoveWithButton(Centre(zRow) + QPoint(10 * step, 8 * step));
        }
        QTest::mouseRelease(mView.viewport(), Qt::LeftButton, {}, Centre(zRow) + QPoint(40, 32));
    }

    DeviceTableView mView;

private:
    void MoveWithButton(const QPoint& zPlace) {
        QMouseEvent move(QEvent::MouseMove, zPlace, mView.viewport()->mapToGlobal(zPlace), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(mView.viewport(), &move);
    }
};

TEST_F(RowDragTest, TakesTheSelectedRowsFromTopToBottom) {
    Click(2);
    Click(0, Qt::ControlModifier);
    Pull(2);
    EXPECT_THAT(mSource.dragged, ElementsAre(ElementsAre(0, 2)));
    EXPECT_EQ(mView.selectionModel()->selectedRows().size(), 2);
}

TEST_F(RowDragTest, SelectsARowThatIsNotSelectedFirst) {
    Click(2);
    Pull(1);
    EXPECT_THAT(mSource.dragged, ElementsAre(ElementsAre(1)));
    EXPECT_EQ(mView.selectionModel()->selectedRows().front().row(), 1);
}

TEST_F(RowDragTest, TakesNothingWhereNothingCanBeSelected) {
    Pull(3);
    EXPECT_TRUE(mSource.dragged.empty());
}

} // namespace
