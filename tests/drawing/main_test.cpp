#include "Support.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/platform/Metafile.h>
#include <zel/platform/PrintInfo.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using zel::test::TemporaryFolder;

// Runs what it is given whenever it is drawn.
class Probe : public Zel2 {
  public:
    explicit Probe(std::function<void(Probe&)> draw, CSize size = {2000, 1000})
        : draw_(std::move(draw)), size_(size) {}
    void OnDraw() override { draw_(*this); }
    CSize Size() override { return size_; }

  private:
    std::function<void(Probe&)> draw_;
    CSize size_;
};

TEST(Zel2Main, PreparesAMappingOfThousandthsOfAnInch) {
    Zel2Main root;
    root.Add(new Probe([](Probe&) {}));
    zel::RecordingDevice device(96);
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    EXPECT_EQ(root.Map()->ToDevice(CPoint(0, 0)), CPoint(0, 96));
    EXPECT_EQ(root.Map()->ToDevice(CPoint(0, 1000)), CPoint(0, 0));
    EXPECT_EQ(root.Map()->ToDevice(CPoint(2000, 0)), CPoint(192, 96));
    CPrintInfo info;
    dc.m_bPrinting = TRUE;
    root.PrepareMappingFor(&dc, &info, 2, 3);
    CPoint origin;
    CSize extent;
    root.Map()->GetWorld(origin, extent);
    EXPECT_EQ(extent, CSize(2000, 1800));
    root.Map()->GetLogical(origin, extent);
    EXPECT_EQ(origin.x, 300);
    EXPECT_EQ(extent.cx, 192);
}

TEST(Zel2Main, LeavesAContextAsItWas) {
    Zel2Main root;
    zel::RecordingDevice device;
    CDC dc(device);
    bool fail = true;
    CDC* seen = nullptr;
    root.Add(new Probe([&](Probe& probe) {
        seen = probe.DC();
        probe.Font(probe.RegisterFont("f", "Arial", 120, 0, 0, 0, 0, 0, 0))->Print("x", CPoint(1, 1), 0, 0);
        if (fail) AfxThrowInvalidArgException("in the middle");
    }));
    const CPen* pen = dc.SelectObject(CPen::FromHandle(reinterpret_cast<HPEN>(GetStockObject(BLACK_PEN))));
    EXPECT_EQ(zel::test::MessageOf<CInvalidArgException>([&] { root.Draw(&dc); }), "in the middle");
    EXPECT_EQ(seen, &dc);
    EXPECT_EQ(root.DC(), nullptr);
    EXPECT_EQ(dc.SelectObject(CPen::FromHandle(reinterpret_cast<HPEN>(GetStockObject(BLACK_PEN)))), pen);
    fail = false;
    device.Clear();
    root.Draw(&dc);
    EXPECT_THAT(device.Text(), testing::HasSubstr("text 1,1 \"x\"")) << "a second pass works";
}

TEST(Zel2Main, ClipsOnlyWithExactRules) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Zel2Main root;
        root.SetRules(rules);
        std::vector<CRect> boxes;
        root.Add(new Probe([&](Probe& probe) {
            CRgn outer, inner;
            outer.CreateRectRgn(0, 0, 50, 50);
            inner.CreateRectRgn(20, 20, 90, 90);
            const auto note = [&] {
                CRect box;
                probe.DC()->GetClipBox(&box);
                boxes.push_back(box);
            };
            probe.SetClipLog(&outer), probe.SetClipLog(&inner), note();
            probe.ResetClip(), note();
            probe.ResetClip(), note();
        }));
        zel::RecordingDevice device;
        CDC dc(device);
        root.Draw(&dc);
        const CRect all(0, 0, 1024, 768);
        EXPECT_EQ(boxes, rules == ZelRules::CLASSIC
                             ? (std::vector<CRect>{all, all, all})
                             : (std::vector<CRect>{CRect(20, 20, 50, 50), CRect(0, 0, 50, 50), all}));
        root.SetClipLog(nullptr);  // outside of a pass: nothing
    }
}

TEST(Zel2Main, PassesLookUpsToTheDrawingItStandsIn) {
    Zel2Main outer;
    auto* inner = new Zel2Main;
    outer.Add(inner);
    outer.RegisterColor("Outer", 1, 1);
    EXPECT_EQ(inner->Map(), outer.Map());
    EXPECT_EQ(inner->GetColorIndex("Outer"), -1) << "its tables are its own";
}

TEST(Zel2Tools, KeepsTheFirstToolOfAName) {
    Zel2Main root;
    const int red = root.RegisterColor("Red", RGB(255, 0, 0), 0);
    EXPECT_EQ(root.RegisterColor("Red", 0, 0), red);
    EXPECT_EQ(root.Color("Red")->ScrColor(), RGB(255, 0, 0));
    EXPECT_EQ(root.Colors()->Size(), 1);
    EXPECT_EQ(root.GetColorIndex("red"), -1);
    EXPECT_EQ(root.Color(-1), nullptr);
    EXPECT_EQ(root.Color(1), nullptr);
    root.Color("Red")->Name("Rot");
    EXPECT_EQ(root.GetColorIndex("Red"), -1) << "a tool may be renamed";
    EXPECT_EQ(root.GetColorIndex("Rot"), red);
}

TEST(Zel2Main, WritesPlaceableMetafilesByBothRules) {
    const TemporaryFolder folder;
    setenv("TMPDIR", (folder / ".").c_str(), 1);
    Zel2Main root;
    root.Add(new Probe([](Probe& probe) {
        probe.Font(probe.RegisterFont("f", "Arial", 120, 0, 0, 0, 0, 0, 0))
            ->Print("Label", CPoint(10, 10), 0, 0);
    }));
    const std::string path = folder / "classic.wmf";
    EXPECT_EQ(root.CreatePlaceableMF(path.c_str()), 1);
    const std::string classic = zel::test::Content(path);
    ASSERT_GT(classic.size(), 36U);
    WORD words[18];
    std::memcpy(words, classic.data(), sizeof words);
    WORD checksum = 0;
    for (int i = 0; i < 10; ++i) checksum = static_cast<WORD>(checksum ^ words[i]);
    EXPECT_EQ(words[0], 0xCDD7);
    EXPECT_EQ(words[12], 1000);
    EXPECT_EQ(words[16], checksum);
    EXPECT_EQ(words[18 - 1], 0);
    WORD type = 0;
    std::memcpy(&type, classic.data() + 36, sizeof type);
    EXPECT_EQ(type, 1) << "the metafile follows at once";

    root.SetRules(ZelRules::EXACT);
    EXPECT_EQ(root.CreatePlaceableMF((folder / "exact.wmf").c_str()), 1);
    const std::string exact = zel::test::Content(folder / "exact.wmf");
    std::memcpy(&type, exact.data() + 22, sizeof type);
    EXPECT_EQ(type, 1) << "behind the published header of 22 bytes";
    EXPECT_EQ(root.CreatePlaceableMF("/no/such/folder/x.wmf"), 0);
    unsetenv("TMPDIR");
}

TEST(Export, DetachesTheDrawingAndPutsItBack) {
    const TemporaryFolder folder;
    Zel2Main root;
    CWnd window;
    root.SetWindow(&window);
    root.Map()->SetZoom(3, 2);
    CWnd* during = &window;
    root.Add(new Probe([&](Probe& probe) { during = probe.Window(); }));
    zel::Export(root, (folder / "x.wmf").c_str());
    EXPECT_EQ(during, nullptr);
    EXPECT_EQ(root.Window(), &window);
    EXPECT_EQ(root.Map()->Scale(), 1500);
    EXPECT_EQ(root.Rules(), ZelRules::CLASSIC);
    EXPECT_NE(zel::test::MessageOf<zel::Error>([&] { zel::Export(root, (folder / "x.pdf").c_str()); }), "");
    EXPECT_EQ(root.Window(), &window) << "also when it fails";
    Zel2Main empty;
    EXPECT_THAT(zel::test::MessageOf<zel::Error>([&] { zel::Export(empty, "x.wmf"); }),
                testing::HasSubstr("no size"));
}

// A symbol registers its tools when it is first drawn, in the middle of a pass.
TEST(Zel2Main, DrawsTheFirstPassLikeTheSecondWithExactRules) {
    for (const ZelRules rules : {ZelRules::CLASSIC, ZelRules::EXACT}) {
        Zel2Main root;
        root.SetRules(rules);
        const int symbol =
            root.RegisterSymbol("s", CSize(500, 500), zel::SYMBOL_SQUARE, "A", 1, RGB(1, 1, 1), RGB(9, 9, 9),
                                RGB(2, 2, 2), RGB(8, 8, 8), 1, "Arial", 80, 0, 0, nullptr, nullptr, 0);
        root.RegisterFont("first", "Arial", 80, 0, 0, 0, 0, 0, 0);
        root.Add(new Zel2Rect(CRect(0, 0, 999, 999), -1, -1, Zel2Rect::RECTANGLE, symbol));
        const auto draw = [&](BOOL printing) {
            zel::RecordingDevice device(1000);
            CDC dc(device);
            dc.m_bPrinting = printing;
            root.PrepareMappingFor(&dc, nullptr, 0, 0);
            root.Draw(&dc);
            dc.Flush();
            return device.Text();
        };
        const std::string first = draw(FALSE);
        EXPECT_EQ(first == draw(FALSE), rules == ZelRules::EXACT);
        EXPECT_THAT(draw(TRUE), testing::HasSubstr("#090909")) << "printer colours on paper";
    }
}

TEST(Zel2Tools, HidesTheTablesFurtherUp) {
    Zel2Main root;
    root.RegisterColor("Outer", 1, 1);
    auto* inner = new Zel2Tools;
    root.Add(inner);
    auto* object = new Zel2Rect;
    inner->Add(object);
    EXPECT_EQ(object->GetColorIndex("Outer"), -1);
    EXPECT_EQ(object->RegisterColor("Inner", 2, 2), 0);
    EXPECT_EQ(object->GetColor(), 0) << "a rectangle takes the colour that it registers";
    EXPECT_EQ(root.GetColorIndex("Inner"), -1);
    EXPECT_EQ(object->Map(), root.Map()) << "everything else is asked of the root";
    Zel2Tools copy(root);
    EXPECT_EQ(copy.Colors(), nullptr) << "a copy has no tables before it is assigned some";
    copy = root;
    EXPECT_EQ(copy.Colors(), root.Colors());
    copy.DetachChildren();
    inner->SetParent(&root);
}

TEST(DrawToolTable, LoadsOneToolOfEachName) {
    Zel2Main root;
    for (const char* name : {"a", "b", "c"}) root.RegisterPen(name, DrawPen::SOLID, 1, 0, 0, nullptr);
    root.Pen("b")->Name("a");
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    root.Pens()->Serialize(storing);
    storing.Close();
    file.SeekToBegin();
    CArchive loading(&file, CArchive::load);
    DrawPenTable loaded;
    loaded.RegisterPen("old", DrawPen::SOLID, 1, 0, 0, nullptr);
    loaded.Serialize(loading);
    EXPECT_EQ(loaded.Size(), 2) << "and nothing of what was there before";
    EXPECT_EQ(loaded.GetIndex("c"), 1);
    zel::RecordingDevice device;
    CDC dc(device);
    loaded.OpenOn(&dc, 1000);
    DrawPenTable closed(loaded);
    EXPECT_EQ(closed.Pen(0)->GetDC(), nullptr) << "copies are closed";
    const int added = loaded.RegisterPen("new", DrawPen::SOLID, 1, 0, 0, nullptr);
    EXPECT_EQ(loaded.Pen(added)->GetDC(), &dc) << "opened at once in an open table";
    loaded.Close();
}

TEST(Export, LetsGraphsChooseTheirSizeFirst) {
    const TemporaryFolder folder;
    Zel2Main root;
    auto* graph = new Zel2Graph;
    root.Add(graph);
    graph->SetCoord(0, 0, 1, 1);
    zel::Export(root, (folder / "a.wmf").c_str());
    EXPECT_EQ(graph->Size(), CSize(5000, 4000));
    WORD right = 0, perInch = 0;
    const std::string content = zel::test::Content(folder / "a.wmf");
    std::memcpy(&right, content.data() + 10, sizeof right);
    std::memcpy(&perInch, content.data() + 14, sizeof perInch);
    EXPECT_EQ(right, 5 * perInch) << "five inches wide";
}

TEST(Zel2Main, PassesOnWhatGoesWrongInTheDrawing) {
    Zel2Main root;
    root.Add(new Probe([](Probe&) { AfxThrowInvalidArgException("in the drawing"); }));
    EXPECT_EQ(zel::test::MessageOf<CInvalidArgException>([&] { root.CreateMF(nullptr); }), "in the drawing");
    Zel2Main sound;
    sound.Add(new Probe([](Probe&) {}));
    EXPECT_EQ(sound.CreateMF("/no/such/folder/x.wmf"), nullptr)
        << "a file that cannot be written is no exception";
}

}  // namespace
