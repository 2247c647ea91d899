#include "backends/widgets/Canvas.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace zel::widgets {
namespace {

constexpr double kDotsPerInch = 96;

// A top-level window; closing it is up to its host.
template <class Base>
class TopLevel : public Base {
  public:
    TopLevel(Peer* peer, QWidget* parent, Qt::WindowFlags flags) : Base(parent, flags), peer_(peer) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
    }
    void Detach() { peer_ = nullptr; }

  protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        Close();
    }
    void Close() {
        if (peer_) peer_->Send(WM_CLOSE);
    }

  private:
    Peer* peer_;
};

class FrameWindow : public TopLevel<QWidget> {
  public:
    using TopLevel::TopLevel;
};

class DialogWindow : public TopLevel<QDialog> {
  public:
    using TopLevel::TopLevel;
    // The Escape key.
    void reject() override { Close(); }
};

QRect ToQt(const CRect& area) {
    return {area.left, area.top, area.Width(), area.Height()};
}

UINT MouseMessage(QEvent::Type type, Qt::MouseButton button) {
    const UINT first = button == Qt::LeftButton     ? WM_LBUTTONDOWN
                       : button == Qt::RightButton  ? WM_RBUTTONDOWN
                       : button == Qt::MiddleButton ? WM_MBUTTONDOWN
                                                    : 0;
    if (type == QEvent::MouseMove) return WM_MOUSEMOVE;
    if (first == 0) return 0;
    return type == QEvent::MouseButtonPress     ? first
           : type == QEvent::MouseButtonRelease ? first + 1
                                                : first + 2;
}

}  // namespace

CanvasArea::CanvasArea(CanvasPeer* peer, QWidget* parent) : QAbstractScrollArea(parent), peer_(peer) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setMouseTracking(true);
}

CanvasArea::~CanvasArea() {
    if (peer_) peer_->area_ = nullptr;
}

bool CanvasArea::Mouse(QMouseEvent* event) {
    const UINT message = MouseMessage(event->type(), event->button());
    if (message == 0) return false;
    const CPoint at = peer_->DevicePoint(event->position());
    if (event->type() == QEvent::MouseButtonPress && focusPolicy() != Qt::NoFocus)
        setFocus(Qt::MouseFocusReason);
    if (!peer_) return true;
    peer_->Send(message, KeyFlags(event->buttons(), event->modifiers()), MAKELPARAM(at.x, at.y));
    return true;
}

bool CanvasArea::Wheel(QWheelEvent* event) {
    const CPoint at = peer_->ClientToScreen(peer_->DevicePoint(event->position()));
    UINT flags = KeyFlags(event->buttons(), event->modifiers());
    QPoint delta = event->angleDelta();
    // A wheel that turns sideways is one that is turned with the shift key.
    if (delta.y() == 0 && delta.x() != 0) {
        flags |= MK_SHIFT;
        delta.setY(delta.x());
    }
    LRESULT used = 0;
    peer_->Send(WM_MOUSEWHEEL, MAKEWPARAM(flags, static_cast<WORD>(delta.y())), MAKELPARAM(at.x, at.y),
                &used);
    event->setAccepted(used != 0);
    return true;
}

bool CanvasArea::viewportEvent(QEvent* event) {
    if (!peer_) return QAbstractScrollArea::viewportEvent(event);
    switch (event->type()) {
        case QEvent::Paint:
            peer_->PaintOn(static_cast<QPaintEvent*>(event));
            return true;
        case QEvent::Resize:
            peer_->Resized();
            return true;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            return Mouse(static_cast<QMouseEvent*>(event));
        case QEvent::Wheel:
            return Wheel(static_cast<QWheelEvent*>(event));
        case QEvent::Leave:
            peer_->Send(WM_MOUSELEAVE);
            return true;
        default:
            return QAbstractScrollArea::viewportEvent(event);
    }
}

void CanvasArea::keyPressEvent(QKeyEvent* event) {
    const UINT key = VirtualKey(event->key());
    bool used = peer_ && key != 0 && peer_->Send(WM_KEYDOWN, key);
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (plain) {
        for (const uint character : event->text().toUcs4()) used |= peer_ && peer_->Send(WM_CHAR, character);
    }
    event->setAccepted(used);
}

void CanvasArea::keyReleaseEvent(QKeyEvent* event) {
    const UINT key = VirtualKey(event->key());
    event->setAccepted(peer_ && key != 0 && peer_->Send(WM_KEYUP, key));
}

void CanvasArea::focusInEvent(QFocusEvent*) {
    if (peer_) peer_->Send(WM_SETFOCUS);
}
void CanvasArea::focusOutEvent(QFocusEvent*) {
    if (peer_) peer_->Send(WM_KILLFOCUS);
}

CanvasPeer::CanvasPeer(const WindowSpec& spec)
    : Peer(spec), device_([this](const CRect& box) { ShowPart(box); }) {
    if (IsChild()) {
        area_ = new CanvasArea(this, ParentWidget());
        area_->setFocusPolicy(Qt::StrongFocus);
        Adopt(area_);
        if (!spec.area.IsRectEmpty()) Move(spec.area);
    } else {
        MakeTopLevel();
    }
    ConnectBars();
}

CanvasPeer::~CanvasPeer() {
    if (area_) area_->Detach();
    if (auto* frame = dynamic_cast<FrameWindow*>(Widget())) frame->Detach();
    if (auto* dialog = dynamic_cast<DialogWindow*>(Widget())) dialog->Detach();
}

void CanvasPeer::MakeTopLevel() {
    const bool dialog = Spec().kind == WindowKind::DIALOG;
    QWidget* const owner = ParentWidget();
    QWidget* top = nullptr;
    if (dialog) {
        top = new DialogWindow(this, owner ? owner->window() : nullptr,
                               Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    } else {
        top = new FrameWindow(this, owner ? owner->window() : nullptr, Qt::Window);
    }
    area_ = new CanvasArea(this, top);
    area_->setFocusPolicy(dialog ? Qt::NoFocus : Qt::StrongFocus);
    top->layout()->addWidget(area_);
    Adopt(top);
    SetText(Spec().text);
    const QRect place = FromDevice(Spec().area, Factor());
    if (dialog) {
        top->setFixedSize(place.size());
    } else if (!Spec().area.IsRectEmpty()) {
        top->setGeometry(place);
    } else {
        top->resize(960, 720);
    }
}

void CanvasPeer::ConnectBars() {
    const auto connect = [this](QScrollBar* bar, UINT message) {
        QObject::connect(bar, &QScrollBar::valueChanged, Context(),
                         [=, this](int value) { Send(message, MAKEWPARAM(SB_THUMBTRACK, 0), value); });
    };
    connect(area_->horizontalScrollBar(), WM_HSCROLL);
    connect(area_->verticalScrollBar(), WM_VSCROLL);
}

CRect CanvasPeer::Place() const {
    const QWidget* const inner = Inner();
    const double factor = Factor();
    const QPoint at = inner->mapTo(inner->window(), QPoint());
    return ToDevice(QRect(at, inner->size()), factor);
}

CSize CanvasPeer::ClientSize() const {
    return area_ ? Place().Size() : CSize();
}

CSize CanvasPeer::BarThickness() const {
    if (!area_) return {};
    const double factor = Factor();
    return {static_cast<int>(std::lround(area_->verticalScrollBar()->sizeHint().width() * factor)),
            static_cast<int>(std::lround(area_->horizontalScrollBar()->sizeHint().height() * factor))};
}

CSize CanvasPeer::SizeWithoutBars() const {
    if (!area_) return {};
    const QPoint at = area_->mapTo(area_->window(), QPoint());
    return ToDevice(QRect(at, area_->size()), Factor()).Size();
}

CPoint CanvasPeer::DevicePoint(const QPointF& point) const {
    const QWidget* const inner = Inner();
    const double factor = Factor();
    const QPointF at = inner->mapTo(inner->window(), point) * factor;
    const CRect place = Place();
    return {static_cast<int>(std::floor(at.x() + 1e-6)) - place.left,
            static_cast<int>(std::floor(at.y() + 1e-6)) - place.top};
}

// Keeps the picture as large as the window. A new picture has everything to paint.
void CanvasPeer::Fit() {
    if (!area_) return;
    const CSize size = ClientSize();
    if (device_.Fit(size, kDotsPerInch * Factor())) Invalidate(CRect(CPoint(), size), true);
}

GraphicsDevice& CanvasPeer::ClientDevice() {
    Fit();
    return device_;
}

void CanvasPeer::Invalidate(const CRect& area, bool erase) {
    if (!area_) return;
    CRect seen;
    if (!seen.IntersectRect(area, CRect(CPoint(), ClientSize()))) return;
    invalid_ += ToQt(seen);
    erase_ |= erase;
    ShowPart(seen);
}

// Has Qt show a part of the picture again.
void CanvasPeer::ShowPart(const CRect& box) {
    CRect seen;
    if (painting_ || !area_ || !seen.IntersectRect(box, CRect(CPoint(), ClientSize()))) return;
    const double factor = Factor();
    const QRectF part(seen.left / factor, seen.top / factor, seen.Width() / factor, seen.Height() / factor);
    area_->viewport()->update(part.toAlignedRect().adjusted(-1, -1, 1, 1));
}

WindowPeer::PaintArea CanvasPeer::BeginPaint() {
    Fit();
    // Qt's regions are in bands as well.
    std::vector<CRect> bands;
    bands.reserve(static_cast<std::size_t>(invalid_.rectCount()));
    for (const QRect& rect : invalid_)
        bands.emplace_back(rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height());
    PaintArea paint{.area = Region::FromBands(std::move(bands)), .erase = erase_};
    invalid_ = QRegion();
    erase_ = false;
    painting_ = true;
    return paint;
}

void CanvasPeer::Update() {
    Fit();
    if (invalid_.isEmpty() || painting_) return;
    Send(WM_PAINT);
}

void CanvasPeer::ScrollPixels(int dx, int dy) {
    Fit();
    const CSize size = ClientSize();
    device_.Image().Scroll(dx, dy);
    invalid_.translate(dx, dy);
    invalid_ &= QRect(0, 0, size.cx, size.cy);
    if (dx != 0)
        Invalidate(dx > 0 ? CRect(0, 0, dx, size.cy) : CRect(size.cx + dx, 0, size.cx, size.cy), true);
    if (dy != 0)
        Invalidate(dy > 0 ? CRect(0, 0, size.cx, dy) : CRect(0, size.cy + dy, size.cx, size.cy), true);
    ShowPart(CRect(CPoint(), size));
}

void CanvasPeer::PaintOn(QPaintEvent* event) {
    Fit();
    if (!invalid_.isEmpty() && !painting_) Send(WM_PAINT);
    if (!area_) return;
    painting_ = false;
    // Painting may have resized the window or moved its content.
    if (!invalid_.isEmpty()) area_->viewport()->update();
    const CRect place = Place();
    const double factor = Factor();
    const QPoint at = Inner()->mapTo(Inner()->window(), QPoint());
    QImage picture(reinterpret_cast<const uchar*>(device_.Image().Pixels()), device_.Size().cx,
                   device_.Size().cy, QImage::Format_RGB32);
    picture.setDevicePixelRatio(factor);
    QPainter painter(area_->viewport());
    painter.setClipRegion(event->region());
    // The picture's corner lies on a whole pixel, which at fractional factors the widget's may not.
    painter.drawImage(QPointF(place.left / factor - at.x(), place.top / factor - at.y()), picture);
}

void CanvasPeer::Resized() {
    if (!area_) return;
    const CSize size = ClientSize();
    if (size == reported_) return;
    reported_ = size;
    Fit();
    const bool minimized = Widget()->window()->isMinimized();
    const bool maximized = !minimized && Widget()->window()->isMaximized();
    Send(WM_SIZE,
         minimized   ? SIZE_MINIMIZED
         : maximized ? SIZE_MAXIMIZED
                     : SIZE_RESTORED,
         MAKELPARAM(size.cx, size.cy));
}

void CanvasPeer::Show(bool on) {
    Peer::Show(on);
    if (on && !IsChild() && Widget()) Widget()->raise();
}

void CanvasPeer::SetModal() {
    if (Widget()) Widget()->setWindowModality(Qt::ApplicationModal);
}

void CanvasPeer::Move(const CRect& area) {
    Peer::Move(area);
    if (!IsChild() || !area_ || area_->isVisible()) return;
    // Qt lays out what is hidden when it is shown; the host may ask before that.
    QResizeEvent resized(area_->size(), QSize());
    QCoreApplication::sendEvent(area_, &resized);
    Resized();
}

void CanvasPeer::SetText(const std::string& text) {
    if (Widget()) Widget()->setWindowTitle(QString::fromStdString(text));
}
std::string CanvasPeer::GetText() const {
    return Widget() ? Widget()->windowTitle().toStdString() : std::string();
}

void CanvasPeer::TakeFocus() {
    if (area_) area_->setFocus(Qt::OtherFocusReason);
}

void CanvasPeer::SetCapture(bool on) {
    QWidget* const inner = Inner();
    if (!inner) return;
    if (!on) {
        if (QWidget::mouseGrabber() == inner) inner->releaseMouse();
    } else if (inner->isVisible()) {
        inner->grabMouse();
    }
}

void CanvasPeer::SetScroll(int which, const ScrollState& state) {
    if (!area_) return;
    QScrollBar* const bar = which == SB_HORZ ? area_->horizontalScrollBar() : area_->verticalScrollBar();
    const bool needed = state.range > state.page;
    const QSignalBlocker quiet(bar);
    bar->setRange(0, needed ? state.range - state.page : 0);
    bar->setPageStep(std::max(1, state.page));
    bar->setSingleStep(std::max(1, state.page / 20));
    bar->setValue(state.position);
    const Qt::ScrollBarPolicy policy = needed ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    if (which == SB_HORZ) {
        area_->setHorizontalScrollBarPolicy(policy);
    } else {
        area_->setVerticalScrollBarPolicy(policy);
    }
}

std::unique_ptr<WindowPeer> MakeCanvas(const WindowSpec& spec) {
    return std::make_unique<CanvasPeer>(spec);
}

}  // namespace zel::widgets
