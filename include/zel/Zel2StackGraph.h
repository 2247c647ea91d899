// Stacked coordinate systems.
#pragma once

#include <zel/Zel2CoordSys.h>

#include <array>

// Several coordinate systems one above another in one rectangle, the first at the bottom, each with a share
// of the height by its weight, on one horizontal axis whose range and type they take over. The first three
// children are the background rectangle, the set of coordinate systems and the set with the shared axis;
// children added later are drawn over them. Copies share these children, as those of sets do.
//
// With classic rules the shares are whole numbers divided as such: all origins fall on the bottom margin and
// a weight below 1 counts nothing, and MoveTo moves the background a second time. With exact rules origins
// and heights follow the weights, the labels of the shared axis are taken over too, and paper shows what the
// screen does. World units; classic archives hold a stack as a set.
class Zel2StackGraph : public Zel2Set {
    DECLARE_DOCUMENT_CLASS(Zel2StackGraph)
  public:
    static constexpr int kMostGraphs = 100;

    Zel2StackGraph();
    // A stack at the rectangle's place and of its size, its background with a pen and a colour (-1 for none).
    Zel2StackGraph(const CRect& r, int pen, int color);

    // Takes ownership of `cs`. With 100 of them there already nothing happens, and `cs` stays the caller's.
    void AddSubGraph(Zel2CoordSys* cs, float weight);
    // Takes ownership; a second axis replaces the first as the shared one.
    void AddHAxis(Zel2HAxis* axis);
    // Around the coordinate systems; a negative top, right or bottom takes the value of `left`. Without it:
    // 800 on every side.
    void SetMarg(int left, int top, int right, int bottom);
    Zel2Rect* Background() { return background_; }
    // Lays out the shared axis and the coordinate systems.
    void Setup();

    void SetSize(const CSize& size) override;
    void MoveTo(const CPoint& p) override;
    using Zel2::MoveTo;
    void OpenOn(CDC* dc, int scale) override;
    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    int OnNotify(Zel2* sender, long code) override;

  private:
    struct Share {
        LONG y = 0;  // from the bottom margin
        LONG height = 0;
    };
    struct Margins {
        int left = -1;
        int top = -1;
        int right = -1;
        int bottom = -1;
    };

    void FindParts(CArchive& ar, int axis);
    Zel2CoordSys* SubGraph(int i);
    std::vector<Share> ClassicShares(int height) const;
    std::vector<Share> ExactShares(int height) const;
    void Place(Zel2CoordSys& graph, const Share& share, int width);

    Zel2Rect* background_;
    Zel2Set* graphs_;
    Zel2Set* axes_;
    std::array<float, kMostGraphs> weights_{};
    int count_ = 0;
    Margins margins_;
    Zel2HAxis* axis_ = nullptr;
};
