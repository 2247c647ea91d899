// Windows that are drawn by their hosts.
#pragma once

#include "backends/widgets/Peer.h"
#include "backends/widgets/WindowDevice.h"

#include <QAbstractScrollArea>
#include <QRegion>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

namespace zel::widgets {

class CanvasPeer;

// The widget that shows the picture, between scroll bars where there is more of it.
class CanvasArea : public QAbstractScrollArea {
  public:
    CanvasArea(CanvasPeer* peer, QWidget* parent);
    ~CanvasArea() override;
    void Detach() { peer_ = nullptr; }
    QSize minimumSizeHint() const override { return {1, 1}; }

  protected:
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void scrollContentsBy(int, int) override {}

  private:
    bool Mouse(QMouseEvent* event);
    bool Wheel(QWheelEvent* event);
    CanvasPeer* peer_;
};

class CanvasPeer : public Peer {
  public:
    explicit CanvasPeer(const WindowSpec& spec);
    ~CanvasPeer() override;

    QWidget* Inner() const override { return area_ ? area_->viewport() : nullptr; }
    void Invalidate(const CRect& area, bool erase) override;
    GraphicsDevice& ClientDevice() override;
    PaintArea BeginPaint() override;
    void EndPaint() override { painting_ = false; }
    void Update() override;
    void ScrollPixels(int dx, int dy) override;
    void Show(bool on) override;
    void SetModal() override;
    void Move(const CRect& area) override;
    CSize ClientSize() const override;
    CSize SizeWithoutBars() const override;
    CSize BarThickness() const override;
    void SetText(const std::string& text) override;
    std::string GetText() const override;
    void TakeFocus() override;
    void SetCapture(bool on) override;
    void SetScroll(int bar, const ScrollState& state) override;

    // From the widget.
    void PaintOn(QPaintEvent* event);
    void Resized();
    CPoint DevicePoint(const QPointF& point) const;

  private:
    friend class CanvasArea;
    void MakeTopLevel();
    void ConnectBars();
    // The window's place in device pixels, relative to the top-level window: its edges lie on whole pixels.
    CRect Place() const;
    void Fit();
    void ShowPart(const CRect& box);

    CanvasArea* area_ = nullptr;  // null once it is being destroyed
    WindowDevice device_;
    QRegion invalid_;  // device pixels
    bool erase_ = false;
    bool painting_ = false;
    CSize reported_{-1, -1};
};

}  // namespace zel::widgets
