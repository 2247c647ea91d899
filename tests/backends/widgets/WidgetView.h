// A view on a small drawing, in a host's window, with a mouse.
#pragma once

#include "WidgetSupport.h"

#include <zel/zel.h>

#include <QVBoxLayout>

#include <cmath>

namespace zel::test {

inline constexpr COLORREF kBlue = RGB(20, 60, 200);

// A view of 400 x 300 units of Qt's, embedded in a host's window, on a drawing of four by three inches with a
// blue rectangle.
class WidgetView : public OnWidgets {
  protected:
    WidgetView() {
        auto* layout = new QVBoxLayout(&host_);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(zel::widgets::Embed(view_, &host_));
        view_->SetDrawing(drawing_);
        drawing_->SetRules(ZelRules::EXACT);
        const int blue = drawing_->RegisterColor("Blue", kBlue, RGB(0, 0, 0));
        const int pen = drawing_->RegisterPen("Line", DrawPen::SOLID, 3, RGB(0, 0, 0), 0, nullptr);
        drawing_->RegisterFont("Font", "Arial", 100, 0, 0, 0, 0, 0, 0);
        rect_ = new Zel2Rect(CRect(1000, 1000, 1999, 1999), -1, blue, Zel2Rect::RECTANGLE, -1);
        drawing_->Add(rect_);
        drawing_->Add(new Zel2Rect(CRect(2500, 500, 3999, 2999), pen, -1, Zel2Rect::ELLIPSE, -1));
        host_.resize(400, 300);
        Show(host_);
        area_ = zel::widgets::WidgetOf(*view_)->findChild<QWidget*>("qt_scrollarea_viewport");
        factor_ = host_.devicePixelRatioF();
    }
    QImage Grab() {
        Settle();
        return host_.grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    COLORREF PixelAt(const QImage& image, const CPoint& at) {
        const QRgb value = image.pixel(at.x, at.y);
        return RGB(qRed(value), qGreen(value), qBlue(value));
    }
    ZelViewer& Viewer() { return *view_->Viewer(); }
    CPoint DeviceOf(const CPoint& world) { return Viewer().Root().Map()->ToDevice(world); }
    // The middle of a device pixel, as near as the mouse gets to it.
    QPoint At(const CPoint& device) {
        return {static_cast<int>(std::floor((device.x + 0.5) / factor_)),
                static_cast<int>(std::floor((device.y + 0.5) / factor_))};
    }
    QPoint AtWorld(int x, int y) { return At(DeviceOf(CPoint(x, y))); }
    // Moves are sent to the widget: a real pointer that follows them would send others, later.
    void Move(const QPoint& to, Qt::MouseButtons buttons) {
        QMouseEvent move(QEvent::MouseMove, to, area_->mapToGlobal(to), Qt::NoButton, buttons,
                         Qt::NoModifier);
        QApplication::sendEvent(area_, &move);
    }
    void Press(const QPoint& at, Qt::KeyboardModifiers keys = {}) {
        Move(at, Qt::NoButton);
        QTest::mousePress(area_, Qt::LeftButton, keys, at);
    }
    void DragTo(const QPoint& to) { Move(to, Qt::LeftButton); }
    void Release(const QPoint& at) { QTest::mouseRelease(area_, Qt::LeftButton, {}, at); }
    void Click(const QPoint& at, Qt::KeyboardModifiers keys = {}) {
        Soon([=, this] { return Release(at), true; });
        Press(at, keys);
    }

    QWidget host_;
    CZelView* view_ = new CZelView;
    Zel2Main* drawing_ = new Zel2Main;
    Zel2Rect* rect_ = nullptr;
    QWidget* area_ = nullptr;
    double factor_ = 1;
};

}  // namespace zel::test
