// The program's main object and its top-level windows.
#pragma once

#include <zel/platform/Controls.h>
#include <zel/platform/View.h>

// A top-level window around one view, with toolbars above it. Commands go to the view, then to the frame,
// then to the program. A frame deletes itself when its window is destroyed: make it with new.
class CFrameWnd : public CWnd {
    DECLARE_DYNCREATE(CFrameWnd)
  public:
    using CWnd::Create;
    // A window of the system's choice of place and size where `area` is empty.
    BOOL Create(const char* title, const RECT& area = CRect(), DWORD style = WS_OVERLAPPEDWINDOW);
    // Makes `view` the frame's view: gives it a window over the client area, below the toolbars. FALSE when
    // its window cannot be made; it is deleted then.
    BOOL SetView(CView* view, CDocument* document = nullptr);
    CView* GetActiveView() const { return view_; }
    CDocument* GetActiveDocument() const { return view_ ? view_->GetDocument() : nullptr; }
    // Shows a toolbar (borrowed) that was created with this frame as its parent.
    void DockControlBar(CToolBar* bar);
    void RecalcLayout();
    BOOL OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) override;
    zel::WindowKind Kind() const override { return zel::WindowKind::FRAME; }

  protected:
    void PostNcDestroy() override;
    DECLARE_MESSAGE_MAP()
    void OnSize(UINT type, int cx, int cy);
    void OnSetFocus(CWnd* previous);
    void OnDestroy();
    BOOL OnEraseBkgnd(CDC*);

  private:
    CView* view_ = nullptr;
    std::vector<CToolBar*> bars_;
};

// The program. A host derives from it, makes one object of it, and calls Run from its main function.
class CWinApp : public CCmdTarget {
    DECLARE_DYNAMIC(CWinApp)
  public:
    CWinApp();
    ~CWinApp() override;

    // Makes the main window; FALSE ends the program.
    virtual BOOL InitInstance() { return TRUE; }
    // What the program answers to its caller.
    virtual int ExitInstance() { return 0; }
    // Calls InitInstance, handles events while the main window exists, and calls ExitInstance.
    virtual int Run();
    HCURSOR LoadCursor(UINT id) const { return ::LoadCursor(id); }
    HCURSOR LoadStandardCursor(UINT id) const { return ::LoadCursor(id); }

    CWnd* m_pMainWnd = nullptr;
};

// The program's object and its main window; null where there is none.
CWinApp* AfxGetApp();
CWnd* AfxGetMainWnd();
