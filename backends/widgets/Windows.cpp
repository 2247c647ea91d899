#include "backends/qt/Application.h"
#include "backends/qt/QtPlatform.h"
#include "backends/widgets/Peer.h"
#include "backends/widgets/Printer.h"

#include <zel/platform/Error.h>
#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>
#include <zel/platform/View.h>
#include <zel/widgets/Widgets.h>

#include <QApplication>
#include <QColorDialog>
#include <QCursor>
#include <QEventLoop>
#include <QFontDialog>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

#include <cmath>
#include <cstring>
#include <vector>

namespace zel::widgets {
namespace {

constexpr double kPointsPerInch = 72;
constexpr double kPixelsPerInch = 96;

QWidget* WidgetOf(WindowPeer* peer) {
    return peer ? static_cast<Peer*>(peer)->Widget() : nullptr;
}

double ScreenFactor() {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1;
}

QColor ToQt(COLORREF color) {
    return {GetRValue(color), GetGValue(color), GetBValue(color)};
}
COLORREF FromQt(const QColor& color) {
    return RGB(color.red(), color.green(), color.blue());
}

QMessageBox::Icon IconOf(UINT type) {
    switch (type & 0xF0) {
        case MB_ICONSTOP:
            return QMessageBox::Critical;
        case MB_ICONQUESTION:
            return QMessageBox::Question;
        case MB_ICONEXCLAMATION:
            return QMessageBox::Warning;
        case MB_ICONINFORMATION:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

struct BoxButton {
    QMessageBox::StandardButton button;
    int answer;
};

std::vector<BoxButton> ButtonsOf(UINT type) {
    switch (type & MB_TYPEMASK) {
        case MB_OKCANCEL:
            return {{QMessageBox::Ok, IDOK}, {QMessageBox::Cancel, IDCANCEL}};
        case MB_ABORTRETRYIGNORE:
            return {{QMessageBox::Abort, IDABORT},
                    {QMessageBox::Retry, IDRETRY},
                    {QMessageBox::Ignore, IDIGNORE}};
        case MB_YESNOCANCEL:
            return {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}, {QMessageBox::Cancel, IDCANCEL}};
        case MB_YESNO:
            return {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}};
        case MB_RETRYCANCEL:
            return {{QMessageBox::Retry, IDRETRY}, {QMessageBox::Cancel, IDCANCEL}};
        default:
            return {{QMessageBox::Ok, IDOK}};
    }
}

QFont QtFont(const LOGFONT& font, int tenthsOfPoint) {
    QFont chosen(QString::fromUtf8(font.lfFaceName));
    if (tenthsOfPoint > 0) chosen.setPointSizeF(tenthsOfPoint / 10.0);
    chosen.setBold(font.lfWeight >= FW_BOLD);
    chosen.setItalic(font.lfItalic != 0);
    chosen.setUnderline(font.lfUnderline != 0);
    chosen.setStrikeOut(font.lfStrikeOut != 0);
    return chosen;
}

// A face name is cut to its field at a whole character.
void StoreFace(const QString& family, LOGFONT& font) {
    QByteArray face = family.toUtf8();
    while (face.size() >= LF_FACESIZE) face = QString::fromUtf8(face).chopped(1).toUtf8();
    std::memset(font.lfFaceName, 0, sizeof font.lfFaceName);
    std::memcpy(font.lfFaceName, face.constData(), static_cast<std::size_t>(face.size()));
}

void Store(const QFont& chosen, LOGFONT& font, int& size) {
    // A font that was chosen by the name of its style says what it is only when it is looked up.
    const QFontInfo found(chosen);
    font.lfWeight = chosen.bold() || found.bold() ? FW_BOLD : FW_NORMAL;
    font.lfItalic = chosen.italic() || found.italic() ? 1 : 0;
    font.lfUnderline = chosen.underline() ? 1 : 0;
    font.lfStrikeOut = chosen.strikeOut() ? 1 : 0;
    size = static_cast<int>(std::lround(chosen.pointSizeF() * 10));
    font.lfHeight = -static_cast<LONG>(std::lround(size * kPixelsPerInch / (10 * kPointsPerInch)));
}

// Qt's font dialog has no colour.
void AddColorButton(QFontDialog& dialog, QColor& color) {
    auto* button = new QPushButton(&dialog);
    button->setObjectName("color");
    button->setText("Color...");
    const auto show = [button, &color] {
        QPixmap sample(32, 16);
        sample.fill(color);
        button->setIcon(QIcon(sample));
        button->setIconSize(sample.size());
    };
    show();
    QObject::connect(button, &QPushButton::clicked, &dialog, [&dialog, &color, show] {
        const QColor chosen =
            QColorDialog::getColor(color, &dialog, "Color", QColorDialog::DontUseNativeDialog);
        if (chosen.isValid()) color = chosen;
        show();
    });
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (grid) grid->addWidget(button, grid->rowCount(), 0);
}

class QtWindows : public WindowSystem {
  public:
    std::unique_ptr<WindowPeer> CreateWindow(const WindowSpec& spec) override {
        switch (spec.kind) {
            case WindowKind::CANVAS:
            case WindowKind::FRAME:
            case WindowKind::DIALOG:
                return MakeCanvas(spec);
            case WindowKind::TOOLBAR:
                return MakeToolBar(spec);
            default:
                return MakeControl(spec);
        }
    }

    bool RunLoop(const std::function<bool()>& done) override {
        bool goesOn = true;
        while (goesOn && !done()) {
            QEventLoop loop;
            loops_.push_back(&loop);
            goesOn = loop.exec() == kWoken;
            loops_.pop_back();
        }
        return goesOn;
    }
    void WakeLoop() override {
        for (QEventLoop* loop : loops_) loop->exit(kWoken);
    }
    void Post(std::function<void()> action) override {
        QMetaObject::invokeMethod(qApp, std::move(action), Qt::QueuedConnection);
    }

    int ShowMessageBox(WindowPeer* owner, const std::string& text, UINT type) override {
        QWidget* const parent = owner ? WidgetOf(owner) : QApplication::activeWindow();
        QMessageBox box(IconOf(type), QGuiApplication::applicationDisplayName(), QString::fromStdString(text),
                        QMessageBox::NoButton, parent);
        box.setTextFormat(Qt::PlainText);
        const std::vector<BoxButton> buttons = ButtonsOf(type);
        for (const BoxButton& each : buttons) box.addButton(each.button);
        box.setDefaultButton(buttons.front().button);
        const int chosen = box.exec();
        for (const BoxButton& each : buttons) {
            if (each.button == chosen) return each.answer;
        }
        return CautiousAnswer(type);
    }

    bool ChooseFont(WindowPeer* owner, LOGFONT& font, COLORREF& color, int& size,
                    const std::string& caption) override {
        if (size <= 0)
            size =
                static_cast<int>(std::lround(std::abs(font.lfHeight) * 10 * kPointsPerInch / kPixelsPerInch));
        // The list holds what is installed: the family that stands in for one that is not.
        QFont shown = QtFont(font, size);
        shown.setFamily(QFontInfo(shown).family());
        QFontDialog dialog(shown, WidgetOf(owner));
        dialog.setOption(QFontDialog::DontUseNativeDialog);
        dialog.setWindowTitle(QString::fromStdString(caption.empty() ? "Font" : caption));
        QColor chosen = ToQt(color);
        AddColorButton(dialog, chosen);
        if (dialog.exec() != QDialog::Accepted) return false;
        if (dialog.selectedFont().family() != shown.family()) StoreFace(dialog.selectedFont().family(), font);
        Store(dialog.selectedFont(), font, size);
        color = FromQt(chosen);
        return true;
    }

    std::unique_ptr<DocumentDevice> OpenPrinter(WindowPeer* owner, PrintRequest& request) override {
        return widgets::OpenPrinter(WidgetOf(owner), request);
    }
    void Preview(WindowPeer* owner, const std::string& title,
                 const std::function<void(DocumentDevice&)>& draw) override {
        widgets::Preview(WidgetOf(owner), title, draw);
    }

    CPoint CursorPosition() override {
        const QPointF at = QPointF(QCursor::pos()) * ScreenFactor();
        return {static_cast<int>(std::lround(at.x())), static_cast<int>(std::lround(at.y()))};
    }
    void SetCursorPosition(const CPoint& screen) override {
        const double factor = ScreenFactor();
        QCursor::setPos(static_cast<int>(std::lround(screen.x / factor)),
                        static_cast<int>(std::lround(screen.y / factor)));
    }
    CSize DialogUnit() override {
        const QFontMetricsF metrics(QApplication::font());
        const double factor = ScreenFactor();
        // Qt's controls are taller than the ones that dialog units were made for.
        constexpr double kTaller = 1.15;
        return {static_cast<int>(std::lround(metrics.averageCharWidth() * kTaller * factor)),
                static_cast<int>(std::lround(metrics.height() * kTaller * factor))};
    }
    COLORREF DialogColor() override { return FromQt(QApplication::palette().color(QPalette::Window)); }

  private:
    static constexpr int kWoken = -4711;
    std::vector<QEventLoop*> loops_;
};

class WidgetsPlatform : public qt::QtPlatform {
  public:
    WindowSystem* Windows() override { return &windows_; }

  private:
    QtWindows windows_;
};

void EnsureWidgetApplication() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) return;
    if (QCoreApplication::instance()) {
        throw Error(
            "Cannot show windows: the program's Qt application object is no QApplication, which widgets "
            "need.");
    }
    static int count = 1;
    static char name[] = "zel";
    static char* arguments[] = {name, nullptr};
    const qt::KeptLocale kept;
    qt::ChoosePlatform();
    // Kept for the life of the process: what Qt has made since would be destroyed before it at exit.
    [[maybe_unused]] static const QApplication* const application = new QApplication(count, arguments);
}

}  // namespace

void Install() {
    if (dynamic_cast<WidgetsPlatform*>(&Platform::Get())) return;
    EnsureWidgetApplication();
    Platform::Install(std::make_unique<WidgetsPlatform>());
}

QWidget* WidgetOf(const CWnd& window) {
    return window.Peer() ? static_cast<QWidget*>(window.Peer()->Native()) : nullptr;
}

QWidget* Embed(CView* view, QWidget* parent) {
    if (!view->Create(nullptr, nullptr, WS_CHILD, CRect(), nullptr, AFX_IDW_PANE_FIRST)) {
        throw Error("Cannot embed a view: it refused to be created.");
    }
    QWidget* const widget = WidgetOf(*view);
    if (parent) widget->setParent(parent);
    view->SendMessage(WM_INITIALUPDATE);
    widget->show();
    return widget;
}

}  // namespace zel::widgets
