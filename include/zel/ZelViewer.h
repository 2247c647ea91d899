// The zooming viewer.
#pragma once

#include <zel/Mouse.h>
#include <zel/Zel2Main.h>
#include <zel/Zel2Selection.h>
#include <zel/platform/View.h>

#include <functional>
#include <utility>
#include <vector>

class CCmdUI;

namespace zel {
// What a user has done to a drawing.
enum class ViewerEdit { MOVE, RESIZE, TEXT, TABLE };
}  // namespace zel

// Shows a drawing in a scroll view and lets the user select, move and resize its objects and zoom. It is no
// window: the host view calls its handlers from its own. The drawing stands in a root of the viewer's own,
// which gives it window, context and mapping.
//
// Points are device pixels of the view's client area; the zoom is a rational number (see Mapping), of which
// the scale is the absolute value in thousandths.
class ZelViewer {
  public:
    enum Mode {
        MODE_SELECT = 1,  // idle
        MODE_PART = 2,    // over a handle or an edge
        MODE_DRAG_PART = 3,
        MODE_ZOOM_RECTANGLE = 4,  // the next drag says what to zoom to
        MODE_REDUCE = 5,          // at the next click
        MODE_ENLARGE = 6,
        MODE_DRAG_SELECTION = 7,
        MODE_OVER_SELECTION = 8
    };
    enum ZoomType { ZOOM_FREE = 0, ZOOM_FIT_HORIZONTALLY = 4, ZOOM_FIT_VERTICALLY = 5, ZOOM_FIT_WINDOW = 6 };
    // The registered cursor of the zoom modes.
    static constexpr UINT kZoomCursor = 130;

    // `view` is borrowed and must outlive the viewer.
    explicit ZelViewer(CScrollView* view);
    virtual ~ZelViewer();
    ZelViewer(const ZelViewer&) = delete;
    ZelViewer& operator=(const ZelViewer&) = delete;

    // Shows `drawing`, which the viewer owns from then on; the drawing shown before is deleted. Null shows
    // nothing.
    void Set(Zel2Tools* drawing);
    // Hands the drawing back without deleting it; nothing is shown then.
    void Reset();
    // The drawing shown; null when there is none.
    Zel2Tools* Drawing();
    Zel2Main& Root() { return root_; }
    Zel2Selection& Selection() { return selection_; }

    // Is called after each edit that the user has made, with the drawing as it is then: for undo, and for who
    // asks before losing changes.
    void SetEditHandler(std::function<void(zel::ViewerEdit)> handler) { editHandler_ = std::move(handler); }

    int GetMode() const { return mode_; }
    void SetMode(int mode);
    int GetZoomType() const { return zoomType_; }
    // The zoom in thousandths.
    int GetScale() const { return scale_; }
    const MouseAction& GetMouseAction() const { return action_; }
    // The last mouse event.
    void GetMouseStatus(unsigned flags, CPoint pt);
    MouseStatus GetMStatus(unsigned flags, CPoint pt);
    // Passed on to the root when a page is printed; see Zel2Main::PrepareMappingFor.
    void SetNumGraphs(int a, int b);
    // The drawing's size at the current zoom, device pixels.
    CSize GetLgGraphsSize() const { return graphSize_; }

    void OnDraw(CDC* dc);
    virtual BOOL OnPreparePrinting(CPrintInfo* info);
    virtual void OnBeginPrinting(CDC* dc, CPrintInfo* info);
    virtual void OnPrint(CDC* dc, CPrintInfo* info);
    virtual void OnEndPrinting(CDC* dc, CPrintInfo* info);

    void OnZoomRectangle();
    void OnZoomEnlarge();
    void OnZoomReduce();
    void OnEnlarge(CPoint pt) { Enlarge(pt, 1); }
    void OnReduce(CPoint pt) { Enlarge(pt, 0); }
    // One step in (3/2) or out (2/3) around a point, which stays under the pointer.
    void Enlarge(CPoint pt, int enlarge);
    // The same by scrolling alone, for wheels: the pointer is not moved.
    void ZoomAbout(CPoint pt, int enlarge);
    // Scrolls with the mouse from the point where a pan began.
    void StartPan(CPoint pt);
    void PanTo(CPoint pt);
    // Fits the drawing's width, its height, or both; the last also after each change of the window's size.
    void OnZoomFitwinhorizontaly();
    void OnZoomFitwinverticaly();
    void OnZoomFitwindow();
    // The first half of the horizontal fit: it does not ask for a redraw.
    void FitHorizontally();
    // Zooms to a rectangle of the client area, in any order of its corners.
    void AdjustViewToRectangle(CRect r);
    // The world rectangle last zoomed to.
    CRect GetZoomRectangle() const { return zoomRectangle_; }
    void SetScaleToZoomType();
    void AdjustScaleToZoomType();
    // Gives the view the scroll sizes of the drawing at the current zoom.
    void UpdateScrollSizes();

    void OnSize(unsigned type, int cx, int cy);
    void OnLButtonDown(unsigned flags, CPoint pt);
    void OnMouseMove(unsigned flags, CPoint pt);
    void OnLButtonUp(unsigned flags, CPoint pt);
    void OnMouseEnter();
    void OnMouseExit();

    // Drawing and erasing the rectangle between the points of the last press and the last move.
    void ClearDragRectangle();
    void UpdateDragRectangle(CPoint pt);

    void OnUpdateZoomRectangle(CCmdUI* ui);
    void OnUpdateZoomEnlarge(CCmdUI* ui);
    void OnUpdateZoomReduce(CCmdUI* ui);
    void OnUpdateZoomFitwinhorizontaly(CCmdUI* ui);
    void OnUpdateZoomFitwinverticaly(CCmdUI* ui);
    void OnUpdateZoomFitwindow(CCmdUI* ui);
    void OnUpdateTestSelectObject(CCmdUI* ui);

    void OnTestSelectObject();
    // Edit the drawing's tables, and redraw when something was accepted.
    void OnTestColorTable();
    void OnTestPenTable();
    void EditFontTable();

  protected:
    void SetZoomCursor();
    void SetVertCursor();
    void RestoreCursor();

  private:
    bool IsExact();
    // The root that the drawing stands in clips and prints by the drawing's rules.
    void AdoptRules();
    bool IsEmpty();
    Mapping& Map() { return *root_.Map(); }
    CSize ClientSize() const;
    // World and logical rectangles for the screen.
    void PrepareMapping();
    void PrepareMapping(CDC& dc);
    void StoreScale();
    void UseScale(int scale);
    int FitScale();
    void ScrollToWorld(const CPoint& world);
    CPoint ShownCorner(const CPoint& at, int enlarge);
    void ZoomBy(int numerator, int denominator);
    void TellEdit(zel::ViewerEdit edit) {
        if (editHandler_) editHandler_(edit);
    }
    void OnObjectLeaves(const Zel2* object);
    template <class Table>
    void EditTable(Table* table);

    void ShowCursor(HCURSOR cursor);
    void Hover(const CPoint& pt);
    void PressInSelectMode(unsigned flags, const CPoint& pt);
    void StartDragOfSelection(CPoint pt);
    void ReleaseSelection(CPoint pt);

    MouseStatus status_;
    MouseAction action_;
    Zel2Selection selection_;
    int rubberBand_ = 0;
    CSize graphSize_{100, 100};
    int numGraphs_[2] = {0, 0};
    CPoint panFrom_;
    CPoint panScroll_;
    CPoint anchor_;
    CPoint corner_;
    CRect dragRectangle_;
    CRect zoomRectangle_;
    int zoomType_ = ZOOM_FREE;
    int scale_ = 1000;
    Zel2Main root_;
    CScrollView* view_;
    HCURSOR cursor_ = nullptr;
    HCURSOR previousCursor_ = nullptr;
    int mode_ = MODE_SELECT;
    Zel2* dragObject_ = nullptr;
    int dragPart_ = 0;
    bool sizing_ = false;
    std::function<void(zel::ViewerEdit)> editHandler_;
};
