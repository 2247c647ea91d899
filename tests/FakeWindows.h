// A window system that shows nothing: it keeps what it is told, and tests send it what users would do.
#pragma once

#include <zel/platform/MessageBox.h>
#include <zel/platform/Platform.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/platform/Wnd.h>

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace zel::test {

class FakeWindows;

class FakePeer : public WindowPeer {
  public:
    FakePeer(FakeWindows& system, const WindowSpec& made)
        : spec(made), area(made.area), text(made.text), system_(system) {}
    ~FakePeer() override;

    // What users and the window system do.
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return Host() ? Host()->OnPeerMessage(message, wParam, lParam) : 0;
    }
    LRESULT Mouse(UINT message, UINT flags, const CPoint& at) {
        return Send(message, flags, MAKELPARAM(at.x, at.y));
    }
    void Drag(const std::vector<CPoint>& points, UINT keys = 0) {
        Mouse(WM_LBUTTONDOWN, MK_LBUTTON | keys, points.front());
        for (const CPoint& at : points) Mouse(WM_MOUSEMOVE, MK_LBUTTON | keys, at);
        Mouse(WM_LBUTTONUP, keys, points.back());
    }
    void Use(UINT code, UINT id = 0) { Host()->OnPeerNotify(id, code); }
    void Type(const std::string& typed) {
        text = typed;
        Use(EN_CHANGE);
    }
    void Choose(int item, UINT code) {
        selected = item;
        Use(code);
    }
    void Resize(const CSize& size) {
        area = CRect(area.TopLeft(), size);
        Invalidate(CRect(CPoint(), size), true);
        Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(ClientSize().cx, ClientSize().cy));
    }
    // Paints what is invalid and answers what was drawn.
    std::string Paint() {
        device.Clear();
        if (!invalid.empty()) Send(WM_PAINT);
        return device.Text();
    }

    void Invalidate(const CRect& part, bool) override {
        CRect seen;
        if (seen.IntersectRect(part, CRect(CPoint(), ClientSize()))) invalid.push_back(seen);
    }
    GraphicsDevice& ClientDevice() override { return device; }
    PaintArea BeginPaint() override {
        PaintArea paint{.area = {}, .erase = true};
        for (const CRect& part : invalid) paint.area = Region::Combine(paint.area, Region(part), RGN_OR);
        invalid.clear();
        return paint;
    }
    void Update() override {
        if (!invalid.empty()) Send(WM_PAINT);
    }
    void ScrollPixels(int dx, int dy) override {
        scrolled = scrolled + CSize(dx, dy);
        WindowPeer::ScrollPixels(dx, dy);
    }
    void Show(bool on) override { shown = on; }
    bool IsShown() const override { return shown; }
    void Enable(bool on) override { enabled = on; }
    bool IsEnabled() const override { return enabled; }
    void Move(const CRect& to) override {
        const bool sized = !(to.Size() == area.Size());
        area = to;
        if (sized) Resize(to.Size());
    }
    CRect Area() const override { return area; }
    CSize ClientSize() const override {
        return area.Size() - CSize(HasBar(SB_VERT) ? bar.cx : 0, HasBar(SB_HORZ) ? bar.cy : 0);
    }
    CSize SizeWithoutBars() const override { return area.Size(); }
    CSize BarThickness() const override { return bar; }
    CPoint ClientToScreen(const CPoint& point) const override {
        const CPoint own = point + area.TopLeft();
        return spec.parent && spec.style & WS_CHILD ? spec.parent->ClientToScreen(own) : own;
    }
    void SetText(const std::string& content) override { text = content; }
    std::string GetText() const override { return text; }
    void SetFont(const LOGFONT& given) override { font = given; }
    void SetExtendedStyle(DWORD style) override { spec.extendedStyle = style; }
    void TakeFocus() override;
    void SetCapture(bool on) override { captured = on; }
    void SetCursor(const Cursor& shown_) override { cursor = shown_.id; }
    void SetTimer(UINT_PTR id, UINT milliseconds) override { timers[id] = milliseconds; }
    void SetScroll(int which, const ScrollState& state) override {
        const CSize before = ClientSize();
        scroll[which] = state;
        if (!(ClientSize() == before))
            Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(ClientSize().cx, ClientSize().cy));
    }
    void SelectText(int begin, int end) override { selection = {begin, end}; }
    std::pair<int, int> SelectedText() const override { return selection; }
    void SetCheck(int on) override { check = on; }
    int GetCheck() const override { return check; }
    void InsertItem(int at, const std::string& item) override { items.insert(items.begin() + at, item); }
    void RemoveItem(int at) override { items.erase(items.begin() + at); }
    int ItemCount() const override { return static_cast<int>(items.size()); }
    std::string ItemText(int at) const override { return items[static_cast<std::size_t>(at)]; }
    void SelectItem(int at) override { selected = at; }
    int SelectedItem() const override { return selected; }
    void SetButtons(const std::vector<ToolButton>& given) override { buttons = given; }
    void SetButtonState(UINT id, bool on, bool checked) override { states[id] = {on, checked}; }
    CRect ButtonArea(int index) const override { return {CPoint(20 * index, 0), CSize(20, 20)}; }

    WindowSpec spec;
    CRect area;
    std::string text;
    CSize bar{16, 16};
    bool shown = false, enabled = true, captured = false;
    std::vector<CRect> invalid;
    RecordingDevice device;
    CSize scrolled;
    LOGFONT font{};
    UINT cursor = 0;
    std::map<UINT_PTR, UINT> timers;
    ScrollState scroll[2];
    std::pair<int, int> selection{0, 0};
    int check = 0, selected = -1;
    std::vector<std::string> items;
    std::vector<ToolButton> buttons;
    std::map<UINT, std::pair<bool, bool>> states;  // enabled, checked

  private:
    bool HasBar(int which) const { return scroll[which].range > scroll[which].page; }
    FakeWindows& system_;
};

// Pages that write down what is drawn, each begun by a line of its own.
class FakePages : public BasicDevice<DocumentDevice> {
  public:
    explicit FakePages(std::string& text) : text_(text) {}
    void NewPage() override { EndPage(); }
    void Finish() override {
        EndPage();
        text_ += "finished\n";
    }
    int Caps(int index) const override { return page_.Caps(index); }
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        page_.Polyline(state, points, count);
    }
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
        page_.Polygons(state, points, counts);
    }
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override {
        page_.FillRect(state, rect, brush, operation);
    }
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
        page_.DrawText(state, spans);
    }
    CSize TextExtent(const GraphicsState& state, std::string_view text) override {
        return page_.TextExtent(state, text);
    }
    TEXTMETRIC TextMetrics(const GraphicsState& state) override { return page_.TextMetrics(state); }

  private:
    void EndPage() {
        text_ += "page\n" + page_.Text();
        page_.Clear();
    }
    RecordingDevice page_{100, CSize(800, 1100)};
    std::string& text_;
};

class FakeWindows : public WindowSystem {
  public:
    std::unique_ptr<WindowPeer> CreateWindow(const WindowSpec& spec) override {
        auto peer = std::make_unique<FakePeer>(*this, spec);
        peers.push_back(peer.get());
        return peer;
    }
    // Plays the steps of the script until the loop is done; without further steps the program ends.
    bool RunLoop(const std::function<bool()>& done) override {
        while (!done()) {
            if (script.empty()) return false;
            const std::function<void()> step = std::move(script.front());
            script.pop_front();
            step();
        }
        return true;
    }
    void Post(std::function<void()> action) override { posted.push_back(std::move(action)); }
    int ShowMessageBox(WindowPeer*, const std::string& text, UINT type) override {
        boxes.push_back(text);
        return CautiousAnswer(type);
    }
    bool ChooseFont(WindowPeer*, LOGFONT& font, COLORREF& color, int& size, const std::string&) override {
        return chooseFont && chooseFont(font, color, size);
    }
    std::unique_ptr<DocumentDevice> OpenPrinter(WindowPeer*, PrintRequest& request) override {
        printed.push_back(request.title);
        return hasPrinter ? std::make_unique<FakePages>(pages) : nullptr;
    }
    void Preview(WindowPeer*, const std::string&, const std::function<void(DocumentDevice&)>& draw) override {
        FakePages shown(pages);
        draw(shown);
    }
    CPoint CursorPosition() override { return cursor; }
    void SetCursorPosition(const CPoint& screen) override { cursor = screen; }
    CSize DialogUnit() override { return {8, 16}; }

    // The peer of a control or window; a failure of the test when there is none.
    static FakePeer& Of(CWnd* window) {
        EXPECT_NE(window, nullptr);
        EXPECT_NE(window->Peer(), nullptr);
        return *static_cast<FakePeer*>(window->Peer());
    }
    FakePeer* Newest(WindowKind kind) const {
        const auto found =
            std::find_if(peers.rbegin(), peers.rend(), [=](FakePeer* p) { return p->spec.kind == kind; });
        return found != peers.rend() ? *found : nullptr;
    }
    FakePeer& Control(UINT id) const {
        const auto found =
            std::find_if(peers.rbegin(), peers.rend(), [=](FakePeer* p) { return p->spec.id == id; });
        if (found == peers.rend()) throw std::runtime_error("there is no control " + std::to_string(id));
        return **found;
    }

    std::vector<FakePeer*> peers;
    std::deque<std::function<void()>> script;
    std::deque<std::function<void()>> posted;
    std::vector<std::string> boxes;
    std::function<bool(LOGFONT&, COLORREF&, int&)> chooseFont;
    bool hasPrinter = true;
    std::vector<std::string> printed;
    std::string pages;
    CPoint cursor;
    FakePeer* focus = nullptr;
};

inline FakePeer::~FakePeer() {
    std::erase(system_.peers, this);
    if (system_.focus == this) system_.focus = nullptr;
}

inline void FakePeer::TakeFocus() {
    FakePeer* const previous = system_.focus;
    if (previous == this) return;
    system_.focus = this;
    if (previous) previous->Send(WM_KILLFOCUS);
    Send(WM_SETFOCUS);
}

// Tests under it run on a screen that nobody sees.
class OnFakeScreen : public testing::Test {
  protected:
    class FakePlatform : public Platform {
      public:
        WindowSystem* Windows() override { return &windows; }
        FakeWindows windows;
    };

    OnFakeScreen() {
        auto platform = std::make_unique<FakePlatform>();
        screen_ = &platform->windows;
        Platform::Install(std::move(platform));
    }
    ~OnFakeScreen() override {
        EXPECT_TRUE(screen_->peers.empty()) << "every window is destroyed";
        Platform::Install(nullptr);
    }
    FakePeer& Of(CWnd* window) { return FakeWindows::Of(window); }

    FakeWindows* screen_;
};

}  // namespace zel::test
