#include "backends/widgets/Peer.h"

#include <zel/qt/ImageDevice.h>

#include <QAction>
#include <QChildEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QToolBar>

#include <cmath>

namespace zel::widgets {
namespace {

constexpr int kIconSize = 20;  // units of Qt's
constexpr int kDefaultGap = 8;
constexpr int kIdleInterval = 100;  // milliseconds

// A picture for every factor that a screen is likely to have.
QIcon IconOf(const ToolButton& button) {
    QIcon icon;
    for (const double factor : {1.0, 1.5, 2.0, 3.0}) {
        const int size = static_cast<int>(std::lround(kIconSize * factor));
        qt::ImageDevice device(size, size, 96 * factor);
        device.Clear(RGB(0, 0, 0), false);
        constexpr int kUnits = qt::ImageDevice::kSubPixels;
        button.image(device, CRect(0, 0, size * kUnits, size * kUnits));
        QImage image(reinterpret_cast<const uchar*>(device.Pixels()), size, size,
                     QImage::Format_ARGB32_Premultiplied);
        QPixmap pixmap = QPixmap::fromImage(image.copy());
        pixmap.setDevicePixelRatio(factor);
        icon.addPixmap(pixmap);
    }
    return icon;
}

// Room for a control between the buttons: what is put into it fills it.
class Room : public QWidget {
  public:
    explicit Room(QWidget* parent) : QWidget(parent) {
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(0, 0, 0, 0);
    }

  protected:
    void childEvent(QChildEvent* event) override {
        if (event->polished() && event->child()->isWidgetType())
            layout()->addWidget(static_cast<QWidget*>(event->child()));
    }
};

class ToolBarPeer : public Peer {
  public:
    explicit ToolBarPeer(const WindowSpec& spec) : Peer(spec), bar_(new QToolBar(ParentWidget())) {
        bar_->setIconSize(QSize(kIconSize, kIconSize));
        Adopt(bar_);
        // What can be chosen changes with everything that happens: it is asked for when nothing does.
        QObject::connect(&idle_, &QTimer::timeout, Context(), [this] {
            if (IsShown()) Send(WM_IDLEUPDATECMDUI, TRUE);
        });
        idle_.start(kIdleInterval);
    }

    void SetButtons(const std::vector<ToolButton>& buttons) override {
        if (!bar_) return;
        bar_->clear();
        actions_.clear();
        rooms_.clear();
        for (const ToolButton& button : buttons) actions_.push_back(Add(button));
        bar_->resize(bar_->sizeHint());
    }

    QWidget* PlaceOf(UINT id) const override {
        const auto found = rooms_.find(id);
        return found != rooms_.end() ? found->second : Inner();
    }

    void SetButtonState(UINT id, bool enabled, bool checked) override {
        for (QAction* action : actions_) {
            if (action->data().toUInt() != id || action->isSeparator()) continue;
            action->setEnabled(enabled);
            // A button becomes one that stays pressed when it is first told to.
            if (checked) action->setCheckable(true);
            if (action->isCheckable()) action->setChecked(checked);
        }
    }

    CRect ButtonArea(int index) const override {
        if (!bar_ || index < 0 || static_cast<std::size_t>(index) >= actions_.size()) return {};
        bar_->adjustSize();
        const QWidget* const widget = bar_->widgetForAction(actions_[static_cast<std::size_t>(index)]);
        return widget ? ToDevice(widget->geometry(), Factor()) : CRect();
    }

  private:
    QAction* Add(const ToolButton& button) {
        if (button.style & TBBS_SEPARATOR) {
            if (button.width == 0) return bar_->addSeparator();
            auto* room = new QWidget(bar_);
            room->setFixedSize(FromDevice(CRect(0, 0, button.width, 1), Factor()).width(),
                               kIconSize + kDefaultGap);
            return bar_->addWidget(room);
        }
        const QString text = QString::fromStdString(button.text);
        QAction* const action = bar_->addAction(text);
        action->setData(button.id);
        action->setCheckable(button.style & TBBS_CHECKBOX);
        if (button.image) action->setIcon(IconOf(button));
        // Checking is what the update says, not what the click does.
        QObject::connect(action, &QAction::triggered, Context(), [this, action](bool on) {
            const UINT id = action->data().toUInt();
            if (action->isCheckable()) action->setChecked(!on);
            const Live<QToolBar> bar = bar_;
            Notify(BN_CLICKED, id);
            if (bar && IsShown()) Send(WM_IDLEUPDATECMDUI, TRUE);
        });
        return action;
    }

    Live<QToolBar> bar_;
    std::vector<QAction*> actions_;
    std::map<UINT, QWidget*> rooms_;
    QTimer idle_;
};

}  // namespace

std::unique_ptr<WindowPeer> MakeToolBar(const WindowSpec& spec) {
    return std::make_unique<ToolBarPeer>(spec);
}

}  // namespace zel::widgets
