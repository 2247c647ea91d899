// The view of the program's window.
#pragma once

#include <zel/zel.h>

#include <functional>
#include <optional>
#include <string>

namespace zel::view {

// Where the pointer is: in the drawing, in thousandths of an inch, and in the graph under it.
struct Position {
    CPoint world;
    struct Values {
        double x;
        double y;
    };
    std::optional<Values> graph;
    std::string chart;  // the values of a chart's axes, as texts
};

// A document view that tells where the pointer is, can show the drawing with its printer tools, and prints
// all pages of a report.
class DrawingView : public CZelView {
  public:
    // Called after each move of the mouse and each press and release.
    void SetMouseHandler(std::function<void(const Position&)> handler) { onMouse_ = std::move(handler); }
    // Called after each picture that is drawn on the window.
    void SetPictureHandler(std::function<void()> handler) { onPicture_ = std::move(handler); }
    // Shows the tools' printer variants.
    void ShowAsPrinted(bool on);

    // The drawing shown; null before there is one.
    Zel2Main* Drawing() const;
    // The report that the drawing holds; null when there is none.
    Zel2Report* Report() const;
    void OnDraw(CDC* dc) override;
    std::string PrintTitle() override { return title_; }
    void SetPrintTitle(std::string title) { title_ = std::move(title); }

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void DrawDesk(CDC& dc);
    Position At(const CPoint& pixel) const;

    std::function<void(const Position&)> onMouse_;
    std::function<void()> onPicture_;
    std::string title_ = "Drawing";
    bool asPrinted_ = false;
};

}  // namespace zel::view
