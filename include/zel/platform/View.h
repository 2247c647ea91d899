// Views of documents.
#pragma once

#include <zel/platform/Exception.h>
#include <zel/platform/PrintInfo.h>
#include <zel/platform/Wnd.h>

#include <functional>
#include <memory>

class CView;

// The data that views show.
class CDocument : public CCmdTarget {
    DECLARE_DYNCREATE(CDocument)
  public:
    ~CDocument() override;

    // Views belong to their windows; a document that goes lets go of them.
    void AddView(CView* view);
    void RemoveView(CView* view);
    const std::vector<CView*>& Views() const { return views_; }
    // Tells all views but `sender` that the data changed.
    void UpdateAllViews(CView* sender, LPARAM hint = 0, CObject* object = nullptr);
    const CString& GetTitle() const { return title_; }
    virtual void SetTitle(const char* title) { title_ = title; }
    BOOL IsModified() const { return modified_; }
    void SetModifiedFlag(BOOL modified = TRUE) { modified_ = modified; }

  private:
    std::vector<CView*> views_;
    CString title_;
    BOOL modified_ = FALSE;
};

// A child window that shows something and can print it. A view deletes itself when its window is destroyed:
// make it with new.
class CView : public CWnd {
    DECLARE_DYNAMIC(CView)
  public:
    CDocument* GetDocument() const { return document_; }

    // Called once when the window is there and before it is shown; the base calls OnUpdate.
    virtual void OnInitialUpdate();
    // Prepares a context for drawing or, with `info`, for one page. The base ends printing after the first
    // page where the number of pages is not known.
    virtual void OnPrepareDC(CDC* dc, CPrintInfo* info = nullptr);
    virtual void OnDraw(CDC* dc) = 0;

    // Printing: prepare (FALSE cancels), begin, each page, end.
    virtual BOOL OnPreparePrinting(CPrintInfo* info);
    virtual void OnBeginPrinting(CDC* dc, CPrintInfo* info);
    virtual void OnPrint(CDC* dc, CPrintInfo* info);
    virtual void OnEndPrinting(CDC* dc, CPrintInfo* info);
    // Asks the user for a printer where that is wanted, and keeps it in `info`; FALSE when he cancels.
    BOOL DoPreparePrinting(CPrintInfo* info);
    // What print-outs are called: the document's title, else that of the frame.
    virtual std::string PrintTitle();
    // Draws all pages on `pages`, which is finished then. Not a user's command: nothing is asked.
    void PrintTo(zel::DocumentDevice& pages);

    // The document's commands follow the view's.
    BOOL OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) override;

    void OnFilePrint();
    void OnFilePrintDirect();
    void OnFilePrintPreview();

  protected:
    CView() = default;
    ~CView() override;
    virtual void OnUpdate(CView* sender, LPARAM hint, CObject* object);
    void PostNcDestroy() override;
    DECLARE_MESSAGE_MAP()
    void OnPaint();
    LRESULT OnInitialUpdateMessage(WPARAM, LPARAM);

  private:
    friend class CDocument;
    void Print(bool direct);
    void DrawPages(zel::DocumentDevice& pages, CPrintInfo& info);

    CDocument* document_ = nullptr;
};

// A view of something larger than its window.
class CScrollView : public CView {
    DECLARE_DYNAMIC(CScrollView)
  public:
    static constexpr SIZE sizeDefault{0, 0};

    // The size of what is shown, in units of a mapping mode, and the steps of the scroll bars: by default a
    // tenth and a hundredth of it.
    void SetScrollSizes(int mapMode, SIZE total, const SIZE& page = sizeDefault,
                        const SIZE& line = sizeDefault);
    // What lies at the window's top left corner, in those units.
    CPoint GetScrollPosition() const;
    // In device pixels, never negative.
    CPoint GetDeviceScrollPosition() const { return position_; }
    CSize GetTotalSize() const { return total_; }
    // As far as there is something to scroll to.
    void ScrollToPosition(POINT position);
    void ScrollToDevicePosition(POINT position);

    void OnPrepareDC(CDC* dc, CPrintInfo* info = nullptr) override;
    void OnInitialUpdate() override;

  protected:
    CScrollView() = default;
    DECLARE_MESSAGE_MAP()
    void OnSize(UINT type, int cx, int cy);
    void OnHScroll(UINT code, UINT position, CScrollBar*);
    void OnVScroll(UINT code, UINT position, CScrollBar*);
    BOOL OnMouseWheel(UINT flags, short delta, CPoint screen);
    // Answers whether the view moved.
    virtual BOOL OnScrollBy(CSize by, BOOL doScroll = TRUE);

  private:
    void UpdateBars();
    void PlaceBars();
    CSize ToDevice(const SIZE& size);
    void OnScrollCode(int bar, UINT code, int position);

    int mapMode_ = 1;  // MM_TEXT
    CSize total_;
    CSize totalDevice_;
    CSize pageDevice_;
    CSize lineDevice_;
    CPoint position_;
    CSize page_;   // what is seen, without the scroll bars
    CSize wheel_;  // what the wheel turned and did not scroll yet
    bool updating_ = false;
    bool again_ = false;
};
