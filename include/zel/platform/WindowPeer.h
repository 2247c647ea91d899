// What windows stand on: the interface between the framework and a window system.
#pragma once

#include <zel/platform/Cursor.h>
#include <zel/platform/GraphicsDevice.h>
#include <zel/platform/WinMessages.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zel {

class WindowPeer;

enum class WindowKind { CANVAS, FRAME, DIALOG, EDIT, COMBO, LIST, BUTTON, STATIC, TOOLBAR };

// A window to be made. Areas are device pixels, of children in the client area of their parent, of others on
// the screen; an empty area leaves place and size of a top-level window to the system.
struct WindowSpec {
    WindowKind kind = WindowKind::CANVAS;
    std::string text;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    CRect area;
    UINT id = 0;
    WindowPeer* parent = nullptr;  // of a top-level window: its owner, or null
};

// Who receives what happens to a window.
class WindowHost {
  public:
    // A message; what is left to the window system comes back through WindowPeer::Default.
    virtual LRESULT OnPeerMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    // A control was used: a BN_, EN_, CBN_ or LBN_ code; of a toolbar, `id` is the button's command.
    virtual void OnPeerNotify(UINT id, UINT code) = 0;
    // The window system destroyed the window, with all of its children, by itself.
    virtual void OnPeerGone() = 0;

  protected:
    ~WindowHost() = default;
};

// A scroll bar's range [0, range) of which `page` is seen from `position` on; not shown when all is seen.
struct ScrollState {
    int range = 0;
    int page = 0;
    int position = 0;
    friend bool operator==(const ScrollState&, const ScrollState&) = default;
};

// A tool button: what it shows is drawn by `image` into a square of device pixels on a transparent ground.
struct ToolButton {
    UINT id = 0;
    std::string text;  // for people who cannot see the image, and as a tip
    UINT style = 0;    // TBBS_*
    int width = 0;     // of a separator; 0: the system's choice
    std::function<void(GraphicsDevice&, const CRect&)> image;
};

// A window of the window system, or a stand-in for one in tests. Invalidate and ClientDevice are all that
// drawing needs; each further operation does nothing, or answers nothing, where a peer does not have it.
class WindowPeer {
  public:
    WindowPeer() = default;
    WindowPeer(const WindowPeer&) = delete;
    WindowPeer& operator=(const WindowPeer&) = delete;
    virtual ~WindowPeer() = default;

    // The receiver of messages, borrowed; null for none.
    void Bind(WindowHost* host) { host_ = host; }
    WindowHost* Host() const { return host_; }

    // Asks for a part of the window to be painted again; device pixels.
    virtual void Invalidate(const CRect& area, bool erase) = 0;
    // The surface of the client area, for drawing outside of painting. Valid as long as the peer is.
    virtual GraphicsDevice& ClientDevice() = 0;

    // Painting, in answer to WM_PAINT: the area to paint (its box on the surface), and whether its ground is
    // to be erased first. What was invalid is valid from then on.
    struct PaintArea {
        Region area;
        bool erase = false;
    };
    virtual PaintArea BeginPaint() { return {}; }
    virtual void EndPaint() {}
    // Paints at once what is invalid.
    virtual void Update() {}
    // Moves the pixels of the client area and invalidates what is uncovered.
    virtual void ScrollPixels(int dx, int dy);

    virtual void Show(bool) {}
    // Blocks all other windows while this one is shown.
    virtual void SetModal() {}
    virtual bool IsShown() const { return false; }
    virtual void Enable(bool) {}
    virtual bool IsEnabled() const { return true; }
    virtual void Move(const CRect&) {}
    virtual CRect Area() const { return {}; }  // as in WindowSpec
    virtual CSize ClientSize() const { return {}; }
    virtual CPoint ClientToScreen(const CPoint& point) const { return point; }
    virtual void SetText(const std::string&) {}
    virtual std::string GetText() const { return {}; }
    virtual void SetFont(const LOGFONT&) {}
    virtual void SetExtendedStyle(DWORD) {}
    virtual void TakeFocus() {}
    // Sends all mouse messages here, also those from outside.
    virtual void SetCapture(bool) {}
    virtual void SetCursor(const Cursor&) {}
    // WM_TIMER with `id` every so many milliseconds; 0 ends it.
    virtual void SetTimer(UINT_PTR, UINT) {}
    virtual void SetScroll(int /*bar*/, const ScrollState&) {}
    // The client size as it would be without scroll bars, and what bars take of it: a vertical one of the
    // width, a horizontal one of the height.
    virtual CSize SizeWithoutBars() const { return ClientSize(); }
    virtual CSize BarThickness() const { return {}; }
    // The window system's own treatment of a message; false where it has none.
    virtual bool Default(UINT, WPARAM, LPARAM, LRESULT&) { return false; }

    // Edit controls: byte offsets into the text.
    virtual void SelectText(int, int) {}
    virtual std::pair<int, int> SelectedText() const { return {0, 0}; }
    virtual void ShowCaret() {}
    // Buttons: 0 or 1.
    virtual void SetCheck(int) {}
    virtual int GetCheck() const { return 0; }
    // Lists and combo boxes; -1 selects none.
    virtual void InsertItem(int, const std::string&) {}
    virtual void RemoveItem(int) {}
    virtual int ItemCount() const { return 0; }
    virtual std::string ItemText(int) const { return {}; }
    virtual void SelectItem(int) {}
    virtual int SelectedItem() const { return -1; }
    // Toolbars.
    virtual void SetButtons(const std::vector<ToolButton>&) {}
    virtual void SetButtonState(UINT /*id*/, bool /*enabled*/, bool /*checked*/) {}
    virtual CRect ButtonArea(int) const { return {}; }
    // What the back end calls the window: of the Qt one, a QWidget*.
    virtual void* Native() const { return nullptr; }

  private:
    WindowHost* host_ = nullptr;
};

// What the printing commands ask of a printer.
struct PrintRequest {
    std::string title;
    bool direct = false;  // without asking the user
    UINT firstPage = 1;   // what there is
    UINT lastPage = 1;
    UINT fromPage = 1;  // what the user chose
    UINT toPage = 1;
};

// Makes windows and runs their events.
class WindowSystem {
  public:
    virtual ~WindowSystem() = default;

    // Never null; throws CResourceException* when the window cannot be made.
    virtual std::unique_ptr<WindowPeer> CreateWindow(const WindowSpec& spec) = 0;
    // Handles events until `done`, which is asked again after each WakeLoop. False when the program is to end
    // before that.
    virtual bool RunLoop(const std::function<bool()>& done) = 0;
    // Makes running loops look again whether they are done.
    virtual void WakeLoop() {}
    // Runs `action` from the event loop, soon.
    virtual void Post(std::function<void()> action) = 0;
    virtual int ShowMessageBox(WindowPeer* owner, const std::string& text, UINT type) = 0;
    // The font dialog, which changes what it is given; false when it was cancelled. The size is in tenths of
    // a point.
    virtual bool ChooseFont(WindowPeer* owner, LOGFONT& font, COLORREF& color, int& size,
                            const std::string& caption) = 0;
    // Pages on a printer, after the user chose one; null when that was cancelled. Throws
    // CNotSupportedException* when there is none.
    virtual std::unique_ptr<DocumentDevice> OpenPrinter(WindowPeer* owner, PrintRequest& request) = 0;
    // Shows what `draw` draws page by page; returns when the user has seen enough.
    virtual void Preview(WindowPeer* owner, const std::string& title,
                         const std::function<void(DocumentDevice&)>& draw) = 0;
    virtual CPoint CursorPosition() = 0;
    virtual void SetCursorPosition(const CPoint& screen) = 0;
    // The average width and the height of a character in dialogs, device pixels.
    virtual CSize DialogUnit() = 0;
    // The fill of dialogs.
    virtual COLORREF DialogColor() { return RGB(240, 240, 240); }
};

// The installed platform's window system. Throws CNotSupportedException* that names the missing back end.
WindowSystem& Windows();
// Null where there is none.
WindowSystem* WindowsOrNull();

}  // namespace zel

using HWND = zel::WindowPeer*;
