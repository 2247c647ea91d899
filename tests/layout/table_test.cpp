#include "Support.h"

#include <zel/platform/File.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using zel::test::MessageOf;

Zel2Rect* Box(int width, int height) {
    auto* box = new Zel2Rect;
    box->SetSize(CSize(width, height));
    return box;
}

// A copy through an archive of either dialect.
template <class T>
std::unique_ptr<T> Reloaded(T& object, CArchive::Dialect dialect) {
    CMemFile file;
    {
        CArchive store(&file, CArchive::store);
        store.SetDialect(dialect);
        store.WriteObject(&object);
        store.Close();
    }
    file.SeekToBegin();
    CArchive load(&file, CArchive::load);
    load.SetDialect(dialect);
    try {
        return std::unique_ptr<T>(dynamic_cast<T*>(load.ReadObject(nullptr)));
    } catch (CException* e) {
        ADD_FAILURE() << zel::TakeMessage(e);
        return std::make_unique<T>();
    }
}

// Each container under a root with either rule set.
class Grid : public testing::TestWithParam<ZelRules> {
  protected:
    Grid() { root_.SetRules(GetParam()); }
    template <class T>
    T* Added(T* object) {
        root_.Add(object);
        return object;
    }
    void Draw() {
        zel::RecordingDevice device(1000, CSize(9000, 9000));
        CDC dc(device);
        root_.PrepareMappingFor(&dc, nullptr, 0, 0);
        root_.Draw(&dc);
    }
    bool IsExact() const { return GetParam() == ZelRules::EXACT; }
    Zel2Main root_;
};
INSTANTIATE_TEST_SUITE_P(Rules, Grid, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(Grid, TablesFollowTheirCells) {
    auto* table = Added(new Zel2Table(2, 1));
    table->SetCell(0, 0, Box(30, 10), 1, 1);
    table->SetCell(1, 0, Box(50, 20), 1, 1);
    EXPECT_EQ(table->Size(), CSize(80, 20));
    table->SetSize(CSize(160, 0));
    EXPECT_EQ((*table)(0, 0)->Size(), CSize(60, 20));
    EXPECT_EQ((*table)(1, 0)->Size(), CSize(100, 20));
    EXPECT_EQ((*table)(1, 0)->Origin(), CPoint(60, 0));
    EXPECT_EQ((*table)(2, 0), nullptr);
    MessageOf<CInvalidArgException>([&] {
        table->tab(2, 0);
        ADD_FAILURE() << "outside the array";
    });
    // A change of one cell moves the others, and is passed on once.
    (*table)(0, 0)->SetSize(CSize(200, 50));
    EXPECT_EQ((*table)(1, 0)->Origin(), CPoint(200, 0));
    EXPECT_EQ((*table)(1, 0)->Size().cy, 50);
}

TEST_P(Grid, TablesSpanColumnsAndRows) {
    auto* table = Added(new Zel2Table(2, 3));
    table->SetCell(0, 0, Box(100, 10), 2, 1);
    table->SetCell(0, 1, Box(30, 20), 1, 1);
    table->SetCell(1, 1, Box(30, 60), 1, 2);
    table->SetCell(0, 2, Box(30, 20), 1, 1);
    std::vector<int> xs(3), ys(4);
    table->GetPosition(xs, ys);
    EXPECT_THAT(xs, ElementsAre(0, 30, 100));
    EXPECT_THAT(ys, ElementsAre(0, 10, 30, 70));
    Draw();
    EXPECT_EQ((*table)(0, 2)->Origin().y, 0) << "row 0 is at the top";
    EXPECT_EQ((*table)(1, 1)->Size(), CSize(70, 60));
    EXPECT_EQ((*table)(1, 1)->Origin().y, IsExact() ? 0 : 40) << "classic: the bottom of its first row";
    // Spans past the grid, cells that are gone, negative spans.
    table->SetCell(1, 2, Box(5, 5), 9, 9);
    int spanX = 0, spanY = 0;
    table->GetCellDim(1, 2, spanX, spanY);
    EXPECT_EQ(spanX, 2) << "one more than fits";
    table->SetCellDim(0, 1, -3, INT_MIN);
    table->SetCell(0, 2, nullptr, 1, 1);
    Draw();
    Zel2Rect mine;
    table->SetCell(5, 5, &mine, 1, 1);
    table->SetCell(0, 0, &mine, -1, 1);
    EXPECT_EQ(mine.GetParent(), nullptr);
    for (int i = 1; i < 6; ++i) delete table->Del(i);
    table->ReDim(1, 1);
    EXPECT_EQ(table->Size().cx, (*table)(0, 0)->Size().cx);
    table->Clear();
    EXPECT_EQ(table->Size(), CSize(0, 0));
    EXPECT_THAT(MessageOf<CInvalidArgException>([&] { table->Create(1U << 20, 1U << 20); }),
                testing::HasSubstr("too many cells"));
}

TEST_P(Grid, RowsShareTheirWidth) {
    for (const int flags : {0, 1, 2, 3}) {
        auto* row = Added(new Zel2Row(flags));
        row->Add(Box(10, 5));
        row->Add(Box(30, 8));
        EXPECT_EQ(row->Size(), CSize(40, 8));
        row->SetSize(CSize(20, 6));
        EXPECT_EQ((*row)[0]->Size(), flags & Zel2Row::SHRINK ? CSize(5, 6) : CSize(10, 6));
        row->SetSize(CSize(80, 6));
        EXPECT_EQ((*row)[1]->Size().cx, flags & Zel2Row::STRETCH ? 60 : flags & Zel2Row::SHRINK ? 15 : 30);
        Draw();
        EXPECT_EQ((*row)[1]->Origin().x, (*row)[0]->Size().cx);
    }
    auto* empty = Added(new Zel2Row(3));
    EXPECT_EQ(empty->Size(), CSize(0, 0));
    empty->SetSize(CSize(50, 50));
    Draw();
}

TEST_P(Grid, ColumnsStackFromTheTop) {
    auto* column = Added(new Zel2Column(1));
    column->Add(Box(10, 5));
    column->Add(nullptr);
    column->Add(Box(30, 20));
    EXPECT_EQ(column->Size(), CSize(30, 25));
    Draw();
    EXPECT_EQ((*column)[0]->Origin(), CPoint(0, 20));
    EXPECT_EQ((*column)[2]->Origin(), CPoint(0, 0));
    column->Justify(Zel2Column::RIGHT);
    EXPECT_EQ((*column)[0]->Origin(), CPoint(20, 20));
    column->Justify(Zel2Column::CENTER);
    EXPECT_EQ((*column)[0]->Origin(), CPoint(10, 20));
    column->Justify(Zel2Column::FILL);
    EXPECT_EQ((*column)[0]->Size(), CSize(30, 5));
    column->SetSize(CSize(100, 100));
    EXPECT_EQ(column->Size(), CSize(100, 100));
    column->SetSize(CSize(0, 0));
    EXPECT_EQ(column->Size(), CSize(30, 25));
    EXPECT_EQ(column->SplitVert(25), nullptr);
}

std::vector<std::string> RowsOf(const Zel2TextTable& table) {
    std::vector<std::string> rows;
    for (int r = 0; r < table.Rows(); ++r) {
        std::string row;
        for (int c = 0; c < table.Columns(); ++c) row += table.Text(c, r) ? table.Text(c, r)->GetText() : "-";
        rows.push_back(row);
    }
    return rows;
}

Zel2Text Proto(int width, int height) {
    return {"", CRect(0, 0, width - 1, height - 1), -1, 0, 0, -1, -1, {-1, 0.0F}};
}

TEST_P(Grid, TextTablesTakeTabbedText) {
    auto* table = Added(new Zel2TextTable(2, 2));
    table->SetText(0, 0, "nobody");
    table->SetStyle(-5, 99, 0, 99, Proto(100, 20));
    EXPECT_EQ(table->Size(), CSize(200, 40));
    table->SetText(0, 0, "a\tb\t%s", "c");
    EXPECT_THAT(RowsOf(*table), ElementsAre("ab", "c"));
    table->SetText(1, 0, "x\ty\tz\t\t\t");
    EXPECT_THAT(RowsOf(*table), ElementsAre("ax", "cy")) << "past the last row nothing is written";
    table->SetText(0, 1, "p\t");
    EXPECT_THAT(RowsOf(*table), ElementsAre("ax", "py")) << "a tab at the end writes no empty piece";
    table->SetText(0, 0, "%s", std::string(1'000'000, 'm').c_str());
    EXPECT_EQ(table->Text(0, 0)->GetText().GetLength(), 4999);
    table->SetText(2, 0, "outside");
    table->SetText(0, -1, "outside");
    table->SetSize(CSize(400, 80));
    EXPECT_EQ(table->Text(1, 0)->Origin(), CPoint(200, 40));
    EXPECT_EQ(table->Text(1, 1)->Size(), CSize(200, 40));
    Added(new Zel2TextTable(3, 0))->SetSize(CSize(10, 10));
    Draw();
}

TEST_P(Grid, TextTablesSplitWithTheirHeader) {
    auto* table = Added(new Zel2TextTable(1, 10));
    table->SetStyle(0, 0, 0, 9, Proto(100, 10));
    for (int r = 0; r < 10; ++r)
        table->SetPlainText(0, r, std::string(1, static_cast<char>('0' + r)).c_str());
    table->SetNHeaderRows(1);
    EXPECT_EQ(table->SplitVert(100), nullptr);
    const std::unique_ptr<Zel2TextTable> rest(table->SplitVert(39));
    EXPECT_THAT(RowsOf(*table), ElementsAre("0", "1", "2"));
    EXPECT_THAT(RowsOf(*rest), ElementsAre("0", "3", "4", "5", "6", "7", "8", "9"));
    EXPECT_EQ(rest->GetNHeaderRows(), IsExact() ? 1 : 0);
    const std::unique_ptr<Zel2TextTable> all(table->SplitVert(9));
    EXPECT_EQ(table->Rows(), 0) << "a break in the header takes all rows";
    EXPECT_THAT(RowsOf(*all), ElementsAre("0", "1", "2"));
}

TEST_P(Grid, TextColumnsMakeTheirLines) {
    auto* column = Added(new Zel2TextColumn(CSize(1000, 200), 3, DT_RIGHT, -1, -1));
    column->Add("line");
    column->AddTitle("T", -1, -1, 0, -2, -2);
    EXPECT_EQ((*column)[0]->Size(), CSize(1001, 201));
    EXPECT_EQ((*column)[1]->Size(), CSize(1001, 241));
    EXPECT_EQ(column->Size(), CSize(1001, 442));
    const auto again = Reloaded(*column, CArchive::Dialect::CLASSIC);
    EXPECT_EQ(again->Size(), CSize(1001, 442));
}

TEST_P(Grid, GraphTablesKeepTheirSize) {
    auto* table = Added(new Zel2GraphTable(2, 3, CSize(1000, 500)));
    EXPECT_EQ(table->Size(), CSize(2000, 1500));
    table->SetMargins(200, 300, -1, 0);
    EXPECT_EQ(table->LeftMargin()->Size().cx, 200);
    EXPECT_EQ(table->TopMargin()->Size().cy, 300);
    EXPECT_EQ(table->RightMargin()->Size().cx, 200);
    EXPECT_EQ(table->BottomMargin()->Size().cy, 0);
    EXPECT_EQ(table->GetGraph(0, 0)->Size().cx, 800);
    EXPECT_NEAR(table->GetGraph(0, 0)->Size().cy, 400, 1);
    table->SetSize(CSize(9, 9));
    EXPECT_EQ(table->Size(), CSize(2000, 1500));
    EXPECT_EQ(table->GetGraph(-1), nullptr);
    EXPECT_EQ(table->GetGraph(3), nullptr);
    EXPECT_EQ(table->GetGraph(2, 0), nullptr);
    table->SetXCoord(1, 5, 6);
    table->SetYCoord(2, -1, 1);
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    table->GetGraph(1, 2)->GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(CPoint(static_cast<int>(x0), static_cast<int>(y1)), CPoint(5, 1));
    auto* other = new Zel2Graph;
    table->SetGraph(other, 1, 1);
    EXPECT_EQ(table->GetGraph(1, 1), other);
    table->SetGraph(nullptr, 0, 0);
    table->SetXCoord(0, 1, 2);
    Draw();
    EXPECT_EQ(table->GetGraph(0, 2)->AbsOrigin(), CPoint(200, 0));
    Zel2GraphTable empty;
    EXPECT_EQ(empty.Columns() * empty.Rows(), 9U) << "room for the margins";
    empty.SetMargins(200, -1, -1, 0);
    EXPECT_EQ(empty.Size(), CSize(0, 0));
    for (const long code : {1L, 2L, 7L, static_cast<long>(Zel2::EDITED)})
        EXPECT_EQ(Zel2Table(1, 1).OnNotify(nullptr, code), 1);
    const auto classic = Reloaded(*table, CArchive::Dialect::CLASSIC);
    EXPECT_EQ(classic->GetGraph(1, 1), nullptr);
    EXPECT_EQ(classic->NGy(), 3);
    const auto complete = Reloaded(*table, CArchive::Dialect::COMPLETE);
    EXPECT_NE(complete->GetGraph(1, 1), nullptr);
}

TEST(TableArchive, ComesBackWithItsSpans) {
    Zel2Table table(2, 2);
    table.SetCell(0, 0, Box(30, 10), 2, 1);
    table.SetCell(1, 1, Box(7, 8), 1, 1);
    const auto again = Reloaded(table, CArchive::Dialect::CLASSIC);
    EXPECT_EQ(again->Size(), table.Size());
    EXPECT_EQ((*again)(0, 1), nullptr);
    Zel2TextTable texts(1, 2);
    texts.SetStyle(0, 0, 0, 0, Proto(5, 5));
    texts.SetPlainText(0, 0, "kept");
    texts.SetNHeaderRows(1);
    EXPECT_EQ(Reloaded(texts, CArchive::Dialect::CLASSIC)->Rows(), 0);
    const auto kept = Reloaded(texts, CArchive::Dialect::COMPLETE);
    EXPECT_THAT(RowsOf(*kept), ElementsAre("kept", "-"));
    EXPECT_EQ(kept->GetNHeaderRows(), 1);
}

class Fields : public Grid {};
INSTANTIATE_TEST_SUITE_P(Rules, Fields, testing::Values(ZelRules::CLASSIC, ZelRules::EXACT));

TEST_P(Fields, PlaceCaptionAndValue) {
    auto* field = Added(new Zel2DataField(CRect(0, 0, 1000, 400), "7", "count", -1, -1, -1));
    EXPECT_EQ(field->Value()->Origin(), CPoint(40, 40));
    EXPECT_EQ(field->Value()->Size(), CSize(921, 161));
    EXPECT_EQ(field->Label()->Origin(), CPoint(40, 240));
    EXPECT_EQ(field->Label()->Size(), CSize(921, 121));
    Draw();
    EXPECT_EQ(field->GetLabelFont(), root_.GetFontIndex("Standard Field Label"));
    EXPECT_EQ(field->GetFont(), root_.GetFontIndex("Standard Field Value"));
    field->SetText("%1 of %2!d! is 50 %%%%", "one", 2);
    EXPECT_STREQ(field->GetText(), "one of 2 is 50 %");
    field->SetText("%1", "%1 stays");
    EXPECT_STREQ(field->GetText(), "%1 stays") << "no second argument is read";
    field->SetPlainLabel("50 % of");
    EXPECT_STREQ(field->GetLabel(), "50 % of");
    field->SetSize(CSize(501, 201));
    EXPECT_EQ(field->Value()->Size(), IsExact() ? CSize(421, 61) : CSize(921, 161));
    const auto again = Reloaded(*field, CArchive::Dialect::CLASSIC);
    EXPECT_STREQ(again->GetLabel(), "50 % of");
    int wrap = 9, format = 9;
    again->GetStyle(wrap, format);
    EXPECT_EQ(wrap, 0);
    EXPECT_EQ(format, DT_CENTER | DT_VCENTER);
    EXPECT_STREQ(Zel2DataField().GetLabel(), "Caption");
}

TEST_P(Fields, LayTextsIntoTheirMargin) {
    auto* box = Added(new Zel2TRect(CRect(0, 0, 999, 499), "wide text", -1, -1));
    EXPECT_EQ(box->GetFont(), -1);
    Draw();
    EXPECT_GE(box->RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0), 0);
    box->SetBorder(CSize(72, 36));
    CRect r(0, 0, 3000, 3000);
    zel::RecordingDevice device(1000, CSize(9000, 9000));
    CDC dc(device);
    root_.PrepareMappingFor(&dc, nullptr, 0, 0);
    box->InflateRect(r);
    EXPECT_EQ(r, CRect(1000, 500, 2000, 2500));
    box->SetText("%1!d! rows", 3);
    EXPECT_STREQ(box->GetText(), "3 rows");
    EXPECT_EQ(box->Select(1), 1);
    EXPECT_EQ(box->Selected(), root_.IsExact() ? 1 : 0);
    box->SetStatus(Zel2::PROPAGATE, 1);
    box->Select(1);
    EXPECT_EQ(box->Selected(), 1);
    Zel2TRect alone;
    EXPECT_EQ(alone.RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0), -1);
}

}  // namespace
