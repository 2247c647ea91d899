#include "backends/widgets/Peer.h"

#include <zel/platform/Exception.h>

#include <QCursor>
#include <QImage>
#include <QPixmap>

#include <cmath>

namespace zel::widgets {

double FactorOf(const QWidget& widget) {
    return widget.devicePixelRatioF();
}

CRect ToDevice(const QRect& area, double factor) {
    const auto at = [factor](int value) { return static_cast<int>(std::lround(value * factor)); };
    return {at(area.left()), at(area.top()), at(area.left() + area.width()), at(area.top() + area.height())};
}

QRect FromDevice(const CRect& area, double factor) {
    const auto at = [factor](LONG value) { return static_cast<int>(std::lround(value / factor)); };
    return {QPoint(at(area.left), at(area.top)), QSize(at(area.Width()), at(area.Height()))};
}

UINT VirtualKey(int key) {
    static const std::map<int, UINT> keys = {
        {Qt::Key_Backspace, VK_BACK}, {Qt::Key_Tab, VK_TAB},      {Qt::Key_Return, VK_RETURN},
        {Qt::Key_Enter, VK_RETURN},   {Qt::Key_Shift, VK_SHIFT},  {Qt::Key_Control, VK_CONTROL},
        {Qt::Key_Escape, VK_ESCAPE},  {Qt::Key_PageUp, VK_PRIOR}, {Qt::Key_PageDown, VK_NEXT},
        {Qt::Key_End, VK_END},        {Qt::Key_Home, VK_HOME},    {Qt::Key_Left, VK_LEFT},
        {Qt::Key_Up, VK_UP},          {Qt::Key_Right, VK_RIGHT},  {Qt::Key_Down, VK_DOWN},
        {Qt::Key_Delete, VK_DELETE},  {Qt::Key_Backtab, VK_TAB}};
    const auto found = keys.find(key);
    if (found != keys.end()) return found->second;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return VK_F1 + static_cast<UINT>(key - Qt::Key_F1);
    return key >= Qt::Key_Space && key <= Qt::Key_Z ? static_cast<UINT>(key) : 0;
}

UINT KeyFlags(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    UINT flags = 0;
    if (buttons & Qt::LeftButton) flags |= MK_LBUTTON;
    if (buttons & Qt::RightButton) flags |= MK_RBUTTON;
    if (buttons & Qt::MiddleButton) flags |= MK_MBUTTON;
    if (modifiers & Qt::ShiftModifier) flags |= MK_SHIFT;
    if (modifiers & Qt::ControlModifier) flags |= MK_CONTROL;
    return flags;
}

namespace {

QCursor QtCursor(const Cursor& cursor) {
    if (!cursor.pixels.empty()) {
        const QImage image(reinterpret_cast<const uchar*>(cursor.pixels.data()), cursor.size.cx,
                           cursor.size.cy, QImage::Format_ARGB32_Premultiplied);
        return QCursor(QPixmap::fromImage(image.copy()), cursor.hotSpot.x, cursor.hotSpot.y);
    }
    static const std::map<UINT, Qt::CursorShape> shapes = {
        {IDC_IBEAM, Qt::IBeamCursor},        {IDC_WAIT, Qt::WaitCursor},
        {IDC_CROSS, Qt::CrossCursor},        {IDC_UPARROW, Qt::UpArrowCursor},
        {IDC_SIZENWSE, Qt::SizeFDiagCursor}, {IDC_SIZENESW, Qt::SizeBDiagCursor},
        {IDC_SIZEWE, Qt::SizeHorCursor},     {IDC_SIZENS, Qt::SizeVerCursor},
        {IDC_SIZEALL, Qt::SizeAllCursor}};
    const auto found = shapes.find(cursor.id);
    return found != shapes.end() ? QCursor(found->second) : QCursor(Qt::ArrowCursor);
}

}  // namespace

// The widget may be in the middle of one of its events: Qt deletes it when that is over.
Peer::~Peer() {
    *alive_ = false;
    if (!widget_) return;
    widget_->disconnect(&context_);
    widget_->hide();
    widget_->setParent(nullptr);
    widget_->deleteLater();
}

void Peer::Adopt(QWidget* widget) {
    widget_ = widget;
    QObject::connect(widget, &QObject::destroyed, &context_, [this] {
        widget_ = nullptr;
        if (WindowHost* host = Host()) host->OnPeerGone();
    });
}

QWidget* Peer::ParentWidget() const {
    if (!spec_.parent) return nullptr;
    auto* parent = static_cast<Peer*>(spec_.parent);
    return IsChild() ? parent->PlaceOf(spec_.id) : parent->Widget();
}

bool Peer::Send(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    WindowHost* const host = Host();
    if (!host) return false;
    const std::shared_ptr<bool> alive = alive_;
    leftToQt_ = false;
    const LRESULT answer = host->OnPeerMessage(message, wParam, lParam);
    if (result) *result = answer;
    return !*alive || !leftToQt_;
}

void Peer::Notify(UINT code, UINT id) {
    if (WindowHost* host = Host()) host->OnPeerNotify(id, code);
}

bool Peer::Default(UINT, WPARAM, LPARAM, LRESULT&) {
    leftToQt_ = true;
    return true;
}

void Peer::Invalidate(const CRect&, bool) {
    if (widget_) widget_->update();
}

GraphicsDevice& Peer::ClientDevice() {
    AfxThrowNotSupportedException("Cannot draw on a control: the window system draws it by itself.");
}

void Peer::Show(bool on) {
    if (widget_) widget_->setVisible(on);
}
void Peer::Enable(bool on) {
    if (widget_) widget_->setEnabled(on);
}

void Peer::Move(const CRect& area) {
    if (widget_) widget_->setGeometry(FromDevice(area, Factor()));
}
CRect Peer::Area() const {
    return widget_ ? ToDevice(widget_->geometry(), Factor()) : CRect();
}
CSize Peer::ClientSize() const {
    return Area().Size();
}

CPoint Peer::ClientToScreen(const CPoint& point) const {
    QWidget* const inner = Inner();
    if (!inner) return point;
    const double factor = Factor();
    const QPointF at = inner->mapToGlobal(QPointF(point.x / factor, point.y / factor)) * factor;
    return {static_cast<int>(std::lround(at.x())), static_cast<int>(std::lround(at.y()))};
}

void Peer::SetFont(const LOGFONT& font) {
    constexpr double kPointsPerInch = 72, kPixelsPerInch = 96;
    if (!widget_) return;
    QFont chosen(QString::fromUtf8(font.lfFaceName));
    const double pixels = std::abs(font.lfHeight) / Factor();
    if (pixels > 0) chosen.setPointSizeF(pixels * kPointsPerInch / kPixelsPerInch);
    chosen.setBold(font.lfWeight >= FW_BOLD);
    chosen.setItalic(font.lfItalic != 0);
    chosen.setUnderline(font.lfUnderline != 0);
    chosen.setStrikeOut(font.lfStrikeOut != 0);
    widget_->setFont(chosen);
}

void Peer::TakeFocus() {
    if (QWidget* inner = Inner()) inner->setFocus(Qt::OtherFocusReason);
}
void Peer::SetCursor(const Cursor& cursor) {
    if (QWidget* inner = Inner()) inner->setCursor(QtCursor(cursor));
}

void Peer::SetTimer(UINT_PTR id, UINT milliseconds) {
    if (milliseconds == 0) {
        // The timer itself may be what called.
        if (const auto found = timers_.find(id); found != timers_.end()) found->second->stop();
        return;
    }
    std::unique_ptr<QTimer>& timer = timers_[id];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        QObject::connect(timer.get(), &QTimer::timeout, &context_, [this, id] { Send(WM_TIMER, id); });
    }
    timer->start(static_cast<int>(milliseconds));
}

}  // namespace zel::widgets
