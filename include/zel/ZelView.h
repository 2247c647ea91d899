// The document view.
#pragma once

#include <zel/ZelViewer.h>
#include <zel/platform/Collections.h>
#include <zel/platform/Controls.h>

#include <memory>

// The commands of the view.
inline constexpr UINT ID_ZEL_SELECT = 32501;
inline constexpr UINT ID_ZEL_ZOOM_RECTANGLE = 32502;
inline constexpr UINT ID_ZEL_ZOOM_IN = 32503;
inline constexpr UINT ID_ZEL_ZOOM_OUT = 32504;
inline constexpr UINT ID_ZEL_FIT_HEIGHT = 32505;
inline constexpr UINT ID_ZEL_FIT_WIDTH = 32506;
inline constexpr UINT ID_ZEL_FIT_WINDOW = 32507;
inline constexpr UINT ID_ZEL_FONTS = 32508;
inline constexpr UINT ID_ZEL_COLORS = 32509;
inline constexpr UINT ID_ZEL_PENS = 32510;

// A toolbar with three combo boxes behind its buttons, which the host fills.
class CToolBarPsComboBox : public CToolBar {
    DECLARE_DYNCREATE(CToolBarPsComboBox)
  public:
    static constexpr int kCombos = 3;
    static constexpr UINT kFirstCombo = 32601;  // their identifiers count up from here

    // Puts the buttons and the combo boxes in place; commands of this library have pictures.
    BOOL SetButtonsAndCombos(const UINT* ids, int count);
    CComboBox& Combo(int i) { return combos_[i]; }

  private:
    CComboBox combos_[kCombos];
    CFont font_;
};

// Shows one drawing, with the commands above, printing and print preview. The host makes it with new, gives
// it a window, and sets the drawing; the view goes with its window.
class CZelView : public CScrollView {
    DECLARE_DYNCREATE(CZelView)
  public:
    CZelView() = default;

    // Shows `drawing`, which the view owns from then on; the one before is deleted. Nothing before the window
    // is there.
    void SetDrawing(Zel2Tools* drawing);
    // Null before the window is there.
    ZelViewer* Viewer() const { return viewer_.get(); }
    CStringArray& Strings() { return strings_; }
    // Handed to the viewer before a page is printed; see ZelViewer::SetNumGraphs.
    void SetPrintPageExtent(int a, int b);

    // Makes a toolbar with a button for each command (0 for a gap); in a frame it is docked there. Answers 1,
    // or 0 when it could not be made.
    int CreateToolBar(unsigned id, const unsigned* buttons, int count);
    CToolBarPsComboBox* ToolBar() const { return toolBar_.get(); }

    // Of an identifier that ends in a number in brackets, as in "Series[12]": option 0 cuts the number off
    // and answers 0, option 1 answers it, option 2 does both. The smallest int when there is no bracket, or
    // for another option, which the user is told.
    static int IdentFilter(CString& s, int option);

    void OnInitialUpdate() override;
    void OnDraw(CDC* dc) override;
    void OnPrepareDC(CDC* dc, CPrintInfo* info = nullptr) override;
    BOOL OnPreparePrinting(CPrintInfo* info) override;
    void OnBeginPrinting(CDC* dc, CPrintInfo* info) override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void OnEndPrinting(CDC* dc, CPrintInfo* info) override;

  protected:
    ~CZelView() override;
    // The viewer of the view; an override makes its own.
    virtual std::unique_ptr<ZelViewer> MakeViewer();
    DECLARE_MESSAGE_MAP()
    int OnCreate(LPCREATESTRUCT cs);
    void OnSize(UINT type, int cx, int cy);
    void OnVScroll(UINT code, UINT position, CScrollBar* bar);
    void OnLButtonDown(UINT flags, CPoint point);
    void OnLButtonUp(UINT flags, CPoint point);
    void OnMouseMove(UINT flags, CPoint point);
    void OnRButtonUp(UINT flags, CPoint point);
    void OnLButtonDblClk(UINT flags, CPoint point);
    // The wheel zooms about the pointer while the control key is held, and scrolls otherwise.
    BOOL OnMouseWheel(UINT flags, short delta, CPoint screen);
    // The middle button drags the drawing along.
    void OnMButtonDown(UINT flags, CPoint point);
    void OnMButtonUp(UINT flags, CPoint point);
    void OnPointZelObject();
    void OnZoomRect();
    void OnZoomPlus();
    void OnZoomMinus();
    void OnExpwndVert();
    void OnExpwndHor();
    void OnExpwnd();
    void OnEditFonttable();
    void OnEditColortable();
    void OnEditLinetable();
    void OnUpdatePointZelObject(CCmdUI* ui);
    void OnUpdateZoomRect(CCmdUI* ui);
    void OnUpdateZoomPlus(CCmdUI* ui);
    void OnUpdateZoomMinus(CCmdUI* ui);
    void OnUpdateExpwndVert(CCmdUI* ui);
    void OnUpdateExpwndHor(CCmdUI* ui);
    void OnUpdateExpwnd(CCmdUI* ui);
    void OnUpdateTables(CCmdUI* ui);

  private:
    std::unique_ptr<ZelViewer> viewer_;
    CStringArray strings_;
    int printPageExtent_[2] = {0, 0};
    int wheelTurned_ = 0;
    bool panning_ = false;
    std::unique_ptr<CToolBarPsComboBox> toolBar_;
};
