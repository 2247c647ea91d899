#include "Support.h"

#include <zel/platform/PrintInfo.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/platform/Wnd.h>
#include <zel/zel.h>

#include <climits>
#include <gtest/gtest.h>

namespace {

using zel::test::MessageOf;

// An object of a size, with a row of handles, that counts its destruction.
class Block : public Zel2 {
  public:
    explicit Block(CSize size = {}, int handles = 0, int* deleted = nullptr)
        : size_(size), handles_(handles), deleted_(deleted) {}
    ~Block() override {
        if (deleted_) ++*deleted_;
    }
    CSize Size() override { return size_; }
    void SetSize(const CSize& size) override { size_ = size; }
    unsigned int nCpt() override { return static_cast<unsigned>(handles_); }
    CPoint Cpt(int i) override { return AbsOrigin() + CSize(10 * i, 0); }

  private:
    CSize size_;
    int handles_;
    int* deleted_;
};

class FakeWindow : public zel::WindowPeer {
  public:
    void Invalidate(const CRect& area, bool) override { invalidated.push_back(area); }
    zel::GraphicsDevice& ClientDevice() override { return device; }
    std::vector<CRect> invalidated;
    zel::RecordingDevice device;
};

Block* AddBlock(Zel2Set& set, CPoint at, CSize size, int handles = 0, int* deleted = nullptr) {
    auto* block = new Block(size, handles, deleted);
    block->Origin(at);
    set.Add(block);
    return block;
}

TEST(Zel2, AnswersHarmlesslyWithoutAParent) {
    Zel2 object(nullptr, CPoint(3, 4), 0, CSize());
    EXPECT_EQ(object.AbsOrigin(), CPoint(3, 4));
    EXPECT_EQ(object.Scale(), 1000);
    EXPECT_EQ(object.Colors(), nullptr);
    EXPECT_EQ(object.Ready(), 0);
    EXPECT_EQ(object.OnNotify(&object, 1), 0);
    EXPECT_EQ(object.RegisterColor("x", 0, 0), -1);
    EXPECT_EQ(object.R2L(CPoint(7, 7)), CPoint(7, 7));
    EXPECT_EQ(object.F2L(1, 2), CPoint(0, 0));
    object.MoveToAbs(CRect(1, 2, 3, 4));
    EXPECT_EQ(object.Origin(), CPoint(3, 4)) << "without a mapping nothing moves to an absolute place";
}

TEST(Zel2, KnowsItsClassCodes) {
    Zel2Graph graph;
    Zel2Main root;
    EXPECT_EQ(graph.IsClass(4), 1);
    EXPECT_EQ(graph.IsClass(1), 0) << "a graph is no container to those who ask";
    EXPECT_NE(root.IsClass(3), 0);
    EXPECT_EQ(root.IsClass(2), 0);
    auto* points = new Zel2PointArray;
    graph.AddIn(points);
    EXPECT_EQ(points->GetParentClass(4), &graph);
}

TEST(Zel2, SelectsMovesAndInvalidates) {
    FakeWindow peer;
    CWnd window(&peer);
    Zel2Main root;
    root.SetWindow(&window);
    Block* block = AddBlock(root, CPoint(100, 100), CSize(20, 10));
    block->Select(1);
    EXPECT_EQ(peer.invalidated, (std::vector<CRect>{CRect(97, 97, 123, 113)}));
    block->Select(1);
    EXPECT_EQ(peer.invalidated.size(), 1U) << "nothing changed";
    block->MoveTo(CPoint(200, 50));
    EXPECT_EQ(block->AbsRect(), CRect(200, 50, 220, 60)) << "moving keeps the size";
    EXPECT_EQ(peer.invalidated.size(), 3U);
    block->StartDrag(CPoint(205, 55));
    block->DragTo(CPoint(305, 75));
    EXPECT_EQ(block->Origin(), CPoint(300, 70));
    root.SetStatus(Zel2::PROPAGATE | Zel2::FOCUS, 1);
    EXPECT_EQ(block->GetStatus(Zel2::FOCUS), 1) << "status runs down where it is to";
}

TEST(Zel2, IsHitOnlyWhenSelectedButFoundBySelecting) {
    Zel2Main root;
    Block* block = AddBlock(root, CPoint(100, 100), CSize(50, 50), 2);
    MouseStatus mouse;
    mouse.point = CPoint(120, 120);
    EXPECT_EQ(root.OnMouse(mouse).object, nullptr);
    Zel2Selection selection;
    block->SelectAt(CPoint(120, 120), &selection);
    ASSERT_EQ(selection.GetSize(), 1);
    selection.Select(1);
    EXPECT_EQ(root.OnMouse(mouse).action, MouseAction::BODY);
    EXPECT_EQ(root.OnMouse(mouse).cursor, ZEL_CURSOR_SIZEALL);
    mouse.point = CPoint(112, 98);
    EXPECT_EQ(root.OnMouse(mouse).action, MouseAction::CONTROL_POINT);
    EXPECT_EQ(root.OnMouse(mouse).index, 1);
    mouse.point = CPoint(113, 98);
    EXPECT_EQ(root.OnMouse(mouse).object, nullptr) << "three pixels away";
    mouse.point = CPoint(150, 120);
    EXPECT_EQ(root.OnMouse(mouse).object, nullptr) << "the right edge lies outside";
    selection.RemoveAll();
    EXPECT_FALSE(block->Selected());
    root.SelectAt(CRect(100, 100, 149, 150), &selection);
    EXPECT_EQ(selection.GetSize(), 0);
    root.SelectAt(CRect(100, 100, 150, 150), &selection);
    EXPECT_EQ(selection.GetSize(), 1) << "wholly inside";
}

TEST(Zel2, ListensToWhatHostsOverride) {
    class Edged : public Block {
      public:
        Edged() : Block(CSize(100, 100)) {}
        Mapping* Map() override { return nullptr; }
        int EdgeAt(const CPoint& pt) override { return pt.x; }
    } object;
    MouseStatus mouse;
    mouse.point = CPoint(7, 0);
    EXPECT_EQ(object.OnMouse(mouse).action, MouseAction::EDGE);
    EXPECT_EQ(object.OnMouse(mouse).index, 7);
    FakeWindow peer;
    CWnd window(&peer);
    Zel2Main root;
    root.SetWindow(&window);
    object.SetParent(&root);
    object.MoveTo(CRect(10, 20, 29, 39));
    EXPECT_EQ(peer.invalidated, (std::vector<CRect>{CRect(-3, -3, 103, 103), CRect(7, 17, 33, 43)}))
        << "without a mapping as it stands";
}

TEST(Zel2, DrawsItsHandlesOnTheWindow) {
    FakeWindow peer;
    CWnd window(&peer);
    Zel2Main root;
    root.SetWindow(&window);
    Block* block = AddBlock(root, CPoint(50, 60), CSize(5, 5), 1);
    block->DrawCPT();
    EXPECT_EQ(peer.device.Text(),
              "fill 48,58 53,63 whiteness\npen solid 1 #000000\npolyline 48,58 48,62 52,62 52,58 48,58\n");
    peer.device.Clear();
    block->SetStatus(Zel2::FOCUS, 1);
    block->DrawCPT();
    EXPECT_EQ(peer.device.Text(), "fill 48,58 53,63 blackness\n");
}

TEST(Zel2Set, OwnsItsChildrenAndKeepsTheirSlots) {
    int deleted = 0;
    {
        Zel2Set set;
        Block* a = AddBlock(set, CPoint(10, 10), CSize(20, 5), 2, &deleted);
        Block* b = AddBlock(set, CPoint(0, 30), CSize(5, 5), 3, &deleted);
        EXPECT_EQ(set.Size(), CSize(30, 35));
        EXPECT_EQ(set.Cpt(4), b->Cpt(2));
        EXPECT_EQ(set.Cpt(5), CPoint(INT_MIN, INT_MIN));
        EXPECT_EQ(set.Del(0), a);
        EXPECT_EQ(a->GetParent(), &set);
        EXPECT_EQ(set.GetCount(), 2);
        EXPECT_EQ(set[0], nullptr);
        EXPECT_EQ(set.Del(5), nullptr);
        EXPECT_NE(MessageOf<CInvalidArgException>([&] { set[2]; }), "");
        delete a;
        set.Del(b);
        EXPECT_EQ(deleted, 2);
        AddBlock(set, CPoint(), CSize(), 0, &deleted);
        set.Add(nullptr);
    }
    EXPECT_EQ(deleted, 3);
}

TEST(Zel2Set, PrintsAsManyChildrenAsFitAPage) {
    class Counted : public Block {
      public:
        using Block::Block;
        void OnPrint(CDC*, CPrintInfo*) override { ++printed; }
        int printed = 0;
    };
    Zel2Set set;
    std::vector<Counted*> children;
    for (int i = 0; i < 7; ++i) {
        children.push_back(new Counted(CSize(100, 2000)));
        set.Add(children.back());
    }
    zel::RecordingDevice page(96, CSize(800, 96 * 11));  // eleven inches, one of them kept free
    CDC dc(page);
    CPrintInfo info;
    info.m_nCurPage = 2;
    set.OnPrintGraph(&dc, &info);
    std::string printed;
    for (const Counted* child : children) printed += child->printed ? '1' : '0';
    EXPECT_EQ(printed, "0000111") << "four to a page";
    Zel2Set empty;
    EXPECT_NE(MessageOf<CInvalidArgException>([&] { empty.OnPrintGraph(&dc, &info); }), "");
}

TEST(Zel2Selection, ReplacesOrAccumulates) {
    Block a, b, c;
    Zel2Selection selection;
    selection.Add(&a);
    selection.Add(&b);
    ASSERT_EQ(selection.GetSize(), 1);
    EXPECT_EQ(selection[0], &b);
    selection.accumulate = 1;
    selection.Add(&a);
    selection.Add(&b);
    EXPECT_EQ(selection.GetSize(), 2);
    selection.accumulate = 0;
    selection.Add(&c);
    EXPECT_EQ(selection[0], &c) << "only the first gives way";
    EXPECT_EQ(selection.GetSize(), 2);
    selection.SetFocus(&c);
    EXPECT_EQ(c.GetStatus(Zel2::FOCUS), 1);
    selection.SetFocus(nullptr);
    EXPECT_EQ(c.GetStatus(Zel2::FOCUS), 0);
    EXPECT_EQ(selection.GetSize(), 2);
}

}  // namespace
