#include "Support.h"
#include "layout/PageFlow.h"

#include <zel/platform/PrintInfo.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using testing::HasSubstr;
using zel::test::Letters;
using zel::test::MessageOf;

Zel2Rect* Box(int height, int width = 100) {
    auto* box = new Zel2Rect;
    box->SetSize(CSize(width, height));
    return box;
}

Zel2TextTable* Table(int rows, int headers, int rowHeight = 10) {
    auto* table = new Zel2TextTable(1, rows);
    table->SetStyle(0, 0, 0, rows - 1,
                    Zel2Text("", CRect(0, 0, 99, rowHeight - 1), 0, 0, 0, -1, -1, {-1, 0.0F}));
    for (int r = 0; r < rows; ++r) table->SetText(0, r, "%s%d", r < headers ? "h" : "r", r);
    table->SetNHeaderRows(headers);
    return table;
}

class Reports : public testing::Test {
  protected:
    explicit Reports(ZelRules rules = ZelRules::EXACT) {
        root_.SetRules(rules);
        root_.Add(report_);
    }
    std::string Drawn() {
        zel::RecordingDevice device(1000, CSize(9000, 12000));
        CDC dc(device);
        root_.PrepareMappingFor(&dc, nullptr, 0, 0);
        root_.Draw(&dc);
        dc.Flush();
        return device.Text();
    }
    // The height of each page's content.
    std::vector<int> Heights(int pageHeight) {
        std::vector<int> heights;
        for (int k = 0; k < report_->MakePages(pageHeight); ++k) {
            report_->SelectPage(k);
            heights.push_back(report_->Size().cy);
        }
        return heights;
    }
    Zel2Main root_;
    Zel2Report* report_ = new Zel2Report;
};

class ClassicReports : public Reports {
  protected:
    ClassicReports() : Reports(ZelRules::CLASSIC) {}
};

TEST_F(ClassicReports, StayOnOnePageForAnyHeight) {
    for (int i = 0; i < 3; ++i) report_->Append(Box(100));
    EXPECT_EQ(report_->Size(), CSize(100, 300));
    EXPECT_EQ(report_->MakePages(100), 1);
    EXPECT_EQ(report_->MakePages(-5), 1);
    EXPECT_EQ(report_->Size(), CSize(100, 300));
    report_->SelectPage(5);
    EXPECT_EQ(report_->Size(), CSize(0, 0));
    EXPECT_EQ(Drawn(), "");
    const std::unique_ptr<Zel2Rect> late(Box(1));
    EXPECT_THAT(MessageOf<CNotSupportedException>([&] { report_->Append(late.get()); }), HasSubstr("pages"));
}

TEST_F(ClassicReports, BreakAtNegativeHeightsAndEnd) {
    auto* column = new Zel2Column(1);
    column->Add(Table(3, 0));
    report_->Append(column);
    report_->Append(Box(10));
    report_->Append(Table(3, 1));
    EXPECT_EQ(report_->MakePages(-1), 2) << "what follows the column that comes first";
    auto* table = Table(3, 0);
    Zel2Column alone(1);
    alone.Add(table);
    EXPECT_EQ(alone.SplitVert(0), nullptr);
    const std::unique_ptr<Zel2Column> rest(alone.SplitVert(-1));
    EXPECT_EQ(table->Rows(), 0);
    EXPECT_EQ(rest->Size().cy, 30);
}

TEST_F(Reports, BreakAtTheHeightGiven) {
    for (const int height : {60, 40, 30, 500, 20}) report_->Append(Box(height));
    EXPECT_THAT(Heights(100), testing::ElementsAre(100, 30, 500, 20)) << "what is too high stands alone";
}

TEST_F(Reports, EndForEveryHeight) {
    for (const int height : {INT_MIN, -1, 0, 1, 5, INT_MAX}) {
        Zel2Main root;
        root.SetRules(ZelRules::EXACT);
        auto* report = new Zel2Report;
        root.Add(report);
        auto* nested = new Zel2Column(1);
        nested->Add(Table(5, 2));
        nested->Add(new Zel2Row(0));
        nested->Add(Box(0));
        report->Append(nullptr);
        report->Append(nested);
        report->Append(new Zel2TextTable(4, 0));
        report->Append(new Zel2Table);
        EXPECT_GE(report->MakePages(height), 1) << height;
    }
    EXPECT_EQ(report_->MakePages(10), 1) << "nothing is a page";
}

TEST_F(Reports, RepeatHeadersAndShowEachRowOnce) {
    report_->RegisterFont("f", "Arial", 72, 0, 0, 0, 0, 0, 0);
    report_->Append(Box(35));
    report_->Append(Table(20, 1));
    EXPECT_EQ(report_->MakePages(60), 5) << "one row after the box, then five a page";
    std::string rows;
    for (int k = 0; k < report_->PageCount(); ++k) {
        report_->SelectPage(k);
        EXPECT_LE(report_->Size().cy, 60);
        rows += Letters(Drawn()) + "|";
    }
    EXPECT_EQ(rows, "h0r1|h0r2r3r4r5r6|h0r7r8r9r10r11|h0r12r13r14r15r16|h0r17r18r19|");
}

TEST_F(Reports, KeepTogetherAndBreakOnDemand) {
    report_->Append(Box(70));
    report_->AppendKept(Box(20));
    report_->Append(Table(10, 1));  // a title with a header and a row of its table: 40
    report_->BreakPage();
    report_->Append(Box(10));
    EXPECT_THAT(Heights(100), testing::ElementsAre(70, 100, 30, 10));
}

TEST_F(Reports, SplitColumnsRowsAndTables) {
    auto* row = new Zel2Row(0);
    row->Add(Table(10, 1));
    auto* column = new Zel2Column(1);
    for (int i = 0; i < 4; ++i) column->Add(Box(20));
    row->Add(column);
    report_->Append(row);
    auto* table = new Zel2Table(2, 4);
    for (unsigned j = 0; j < 4; ++j) table->SetCell(0, j, Box(30), 1, 1);
    table->SetCell(1, 1, Box(60), 1, 2);
    report_->Append(table);
    EXPECT_THAT(Heights(60), testing::ElementsAre(60, 50, 30, 60, 30))
        << "rows that a cell spans stay together";
}

// Every object is there, in order, and no page is over its height unless one object alone is.
TEST(PageFlow, LosesNothing) {
    std::mt19937 random(7);
    const auto upTo = [&](int n) { return std::uniform_int_distribution<int>(0, n)(random); };
    for (int round = 0; round < 300; ++round) {
        zel::PageContent objects;
        std::vector<Zel2*> order;
        const int count = upTo(30), page = 1 + upTo(120);
        for (int i = 0; i < count; ++i) {
            objects.emplace_back(Box(upTo(60)));
            objects.back()->SetStatus(Zel2::KEEP_WITH_NEXT, upTo(3) == 0);
            objects.back()->SetStatus(Zel2::BREAK_BEFORE, upTo(9) == 0);
            order.push_back(objects.back().get());
        }
        const int first = upTo(page);
        const auto pages = zel::FlowOntoPages(std::move(objects), {first, page, first == page});
        std::vector<Zel2*> seen;
        for (std::size_t k = 0; k < pages.size(); ++k) {
            int height = 0;
            for (const auto& object : pages[k]) {
                height += object->Size().cy;
                seen.push_back(object.get());
            }
            EXPECT_TRUE(height <= (k == 0 ? first : page) || pages[k].front()->Size().cy > page) << round;
            EXPECT_TRUE(k == 0 || !pages[k].empty());
        }
        EXPECT_EQ(seen, order);
    }
}

TEST_F(Reports, DrawWholePagesOnPaper) {
    zel::ReportPaper paper;
    paper.size = CSize(1000, 1000);
    paper.left = paper.right = paper.top = paper.bottom = 100;
    paper.footer.right = "page {page} of {pages}";
    paper.footer.rule = report_->RegisterPen("rule", DrawPen::SOLID, 0, 0, 0, nullptr);
    report_->SetPaper(paper);
    const int color = report_->RegisterColor("c", RGB(3, 3, 3), 0);
    for (int i = 0; i < 3; ++i) {
        Zel2Rect* box = Box(300);
        box->SetColor(color);
        report_->Append(box);
    }
    EXPECT_EQ(report_->MakePages(), 3) << "room for 500";
    EXPECT_EQ(report_->Size(), CSize(1000, 1000));
    report_->SelectPage(1);
    const std::string text = Drawn();
    EXPECT_THAT(text, HasSubstr("fill 100,400 201,101 #030303\n")) << "from the top margin down";
    EXPECT_EQ(Letters(text), "page 2 of 3");
    EXPECT_THAT(text, HasSubstr("polyline 100,675 900,675\n"));
    // A printed page is the page of its number, whatever is selected.
    zel::RecordingDevice device(1000, CSize(9000, 12000));
    CDC dc(device);
    root_.PrepareMappingFor(&dc, nullptr, 0, 0);
    CPrintInfo info;
    info.m_nCurPage = 3;
    root_.OnPrint(&dc, &info);
    dc.Flush();
    EXPECT_EQ(Letters(device.Text()), "page 3 of 3");
    EXPECT_EQ(report_->SelectedPage(), 1);
}

TEST_F(Reports, CutOffWhatIsHigherThanAPage) {
    zel::ReportPaper paper;
    paper.size = CSize(1000, 1000);
    paper.left = paper.right = paper.top = paper.bottom = 100;
    paper.footer.middle = "footer";
    paper.footer.height = 300;
    report_->SetPaper(paper);
    report_->Append(Box(400));
    Zel2Rect* const high = Box(700);
    high->SetColor(report_->RegisterColor("c", RGB(3, 3, 3), 0));
    report_->Append(high);
    ASSERT_EQ(report_->MakePages(), 2) << "room for 500";
    EXPECT_THAT(Drawn(), testing::Not(HasSubstr("clip")));
    report_->SelectPage(1);
    EXPECT_THAT(Drawn(), HasSubstr("clip 0,100 1000,600"));
}

// Its own tools hide those of the drawing around it, so it must open them itself.
TEST_F(ClassicReports, OpenTheirOwnTools) {
    const int color = report_->RegisterColor("c", RGB(3, 3, 3), 0);
    Zel2Rect* box = Box(10);
    box->SetColor(color);
    report_->Append(box);
    EXPECT_THAT(Drawn(), HasSubstr("#030303"));
    report_->MakePages(5);
    EXPECT_THAT(Drawn(), HasSubstr("#030303"));
}

// Rows, columns and text tables place their parts when they are drawn.
TEST(Printing, ShowsWhatTheScreenShowsByExactRules) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Zel2Main root;
        root.SetRules(rules);
        const int color = root.RegisterColor("c", RGB(3, 3, 3), RGB(3, 3, 3));
        auto* row = new Zel2Row(0);
        root.Add(row);
        for (int i = 0; i < 2; ++i) {
            Zel2Rect* box = Box(10);
            box->SetColor(color);
            row->Add(box);
        }
        zel::RecordingDevice device(1000, CSize(9000, 12000));
        CDC dc(device);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.OnPrint(&dc, nullptr);
        dc.Flush();
        EXPECT_EQ(device.Text().find("fill 100,") != std::string::npos, rules == ZelRules::EXACT);
    }
}

TEST_F(Reports, PaginateManyRowsInLinearTime) {
    report_->Append(Table(100'000, 1));
    EXPECT_EQ(report_->MakePages(1000), 1011);
    report_->SelectPage(1010);
    EXPECT_GT(report_->Size().cy, 0);
}

}  // namespace
