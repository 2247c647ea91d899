// Windows on widgets.
#pragma once

#include <zel/platform/WindowPeer.h>

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <map>
#include <memory>

namespace zel::widgets {

// Device pixels to a unit of Qt's.
double FactorOf(const QWidget& widget);
CRect ToDevice(const QRect& area, double factor);
QRect FromDevice(const CRect& area, double factor);
// The virtual key of Qt's key, the MK_ flags of its buttons and modifiers.
UINT VirtualKey(int key);
UINT KeyFlags(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);

// A widget of a kind while it lives as that: null as soon as its destruction has begun, in which it still
// sends events.
template <class Widget>
class Live {
  public:
    explicit Live(Widget* widget) : object_(widget) {}
    Widget* data() const { return qobject_cast<Widget*>(object_.data()); }
    operator Widget*() const { return data(); }
    Widget* operator->() const { return data(); }

  private:
    QPointer<QObject> object_;
};

// What the windows of all kinds share. A peer owns its widget, which the window system may nevertheless
// destroy first, with the widget that it stands in; the host is told then.
class Peer : public WindowPeer {
  public:
    explicit Peer(const WindowSpec& spec) : spec_(spec) {}
    ~Peer() override;

    // The widget in which children are placed.
    virtual QWidget* Inner() const { return widget_; }
    // The widget in which the child of an identifier is placed.
    virtual QWidget* PlaceOf(UINT) const { return Inner(); }
    QWidget* Widget() const { return widget_; }

    void Invalidate(const CRect& area, bool erase) override;
    GraphicsDevice& ClientDevice() override;
    void Show(bool on) override;
    // A child may be shown in a parent that is not yet.
    bool IsShown() const override { return widget_ && !widget_->isHidden(); }
    void Enable(bool on) override;
    bool IsEnabled() const override { return widget_ && widget_->isEnabled(); }
    void Move(const CRect& area) override;
    CRect Area() const override;
    CSize ClientSize() const override;
    CPoint ClientToScreen(const CPoint& point) const override;
    void SetFont(const LOGFONT& font) override;
    void TakeFocus() override;
    void SetCursor(const Cursor& cursor) override;
    void SetTimer(UINT_PTR id, UINT milliseconds) override;
    bool Default(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    void* Native() const override { return widget_; }

    // Sends a message; true when the host treated it itself and Qt need not.
    bool Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0, LRESULT* result = nullptr);
    void Notify(UINT code, UINT id = 0);

  protected:
    void Adopt(QWidget* widget);
    bool IsChild() const { return (spec_.style & WS_CHILD) != 0; }
    QWidget* ParentWidget() const;
    const WindowSpec& Spec() const { return spec_; }
    double Factor() const { return widget_ ? FactorOf(*widget_) : 1; }
    // For connections that end with the peer.
    QObject* Context() { return &context_; }

  private:
    WindowSpec spec_;
    QPointer<QWidget> widget_;
    QObject context_;
    std::map<UINT_PTR, std::unique_ptr<QTimer>> timers_;
    bool leftToQt_ = false;
    // Cleared by the destructor, for those who are still on its stack.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

std::unique_ptr<WindowPeer> MakeCanvas(const WindowSpec& spec);
std::unique_ptr<WindowPeer> MakeControl(const WindowSpec& spec);
std::unique_ptr<WindowPeer> MakeToolBar(const WindowSpec& spec);

}  // namespace zel::widgets
