// The walk of a dash pattern along lines.
#pragma once

#include <zel/DrawPen.h>
#include <zel/platform/DC.h>

#include <array>
#include <cstdint>

// Draws lines from point to point through a pen's dash pattern and keeps the pen's dash state. One walker
// serves any number of consecutive lines on the same context with the same pen.
class DrawPen::DashWalker {
  public:
    DashWalker(DrawPen& pen, CDC& dc);
    // Hands on what is left, and the dash state back to the pen.
    ~DashWalker();
    DashWalker(const DashWalker&) = delete;
    DashWalker& operator=(const DashWalker&) = delete;

    void MoveTo(const CPoint& to);
    void LineTo(const CPoint& to);
    // `n` lines one after another.
    void LinesTo(const int* x, const int* y, std::size_t n);
    const CPoint& Current() const { return current_; }
    // Whether the pattern is a single dash: what it draws is one line, whatever its length.
    bool IsSolid() const { return elementCount_ == 1 && Advances(); }
    // From here on lines are drawn without the walk, which cuts a solid line where its dash begins anew, and
    // leave the dash state as it is; or are walked again, the pattern from its beginning.
    void DrawSolid() { solid_ = true; }
    void BeginDashes() {
        solid_ = false;
        dashPosition_ = dashIndex_ = 0;
    }
    bool DrawsSolid() const { return solid_; }
    // The length of the whole pattern in logical units; 0 or less when it does not go ahead.
    std::int64_t Cycle() const { return cycle_; }
    // Hands on what was drawn.
    void FlushRun();

  private:
    // Lengths in logical units of one pattern element, as the walk uses them.
    struct Element {
        int atStart = 0;  // when a call begins inside the element: its width is added once
        int inLoop = 0;   // when the walk enters it: gaps grow by two widths, dashes shrink by a unit
    };

    void WalkDashes(const CPoint& to, int length);
    void WalkVisiblePart(const CPoint& to);
    CRect SurfaceWithMargin() const;
    bool Advances() const { return cycle_ > 0; }
    bool IsDash() const { return dashIndex_ % 2 == 0; }
    int Remaining() const {
        return elements_[static_cast<std::size_t>(dashIndex_)].atStart - dashPosition_ - 1;
    }
    // What is left of a dash for a line that begins now; negative in a gap, or when the context stands
    // elsewhere.
    int DashLeft() const { return elementCount_ > 0 && IsDash() && position_ == current_ ? Remaining() : -1; }
    void NextElement();
    void Go(const CPoint& to);

    // Consecutive lines are handed on in runs.
    void Draw(const CPoint& to) {
        run_[runLength_++] = to;
        position_ = to;
        if (runLength_ == run_.size()) FlushRun();
    }
    void Jump(const CPoint& to) {
        FlushRun();
        dc_.MoveTo(to.x, to.y);
        position_ = to;
    }

    DrawPen& pen_;
    CDC& dc_;
    CPoint current_;
    int dashPosition_;
    int dashIndex_;
    std::array<Element, kPatternSize> elements_{};
    int elementCount_ = 0;
    bool solid_ = false;
    std::int64_t cycle_ = 0;    // the sum of all elements in the loop
    std::int64_t advance_ = 0;  // of those that go ahead
    CPoint position_;           // where the context's position is, or will be after the run
    std::array<CPoint, 1024> run_;
    std::size_t runLength_ = 0;
};
