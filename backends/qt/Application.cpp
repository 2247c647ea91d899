#include "backends/qt/Application.h"

#include <zel/platform/Exception.h>

#include <QGuiApplication>

#include <clocale>
#include <memory>
#include <mutex>

namespace zel::qt {

KeptLocale::KeptLocale() : locale_(std::setlocale(LC_ALL, nullptr)) {}
KeptLocale::~KeptLocale() {
    std::setlocale(LC_ALL, locale_.c_str());
}

void ChoosePlatform() {
    const bool chosen = qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ||
                        !qEnvironmentVariableIsEmpty("DISPLAY") ||
                        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (!chosen) qputenv("QT_QPA_PLATFORM", "offscreen");
}

namespace {

std::unique_ptr<QGuiApplication> MakeApplication() {
    // It has no windows: whether a display answers is not asked.
    static int count = 3;
    static char name[] = "zel", option[] = "-platform", platform[] = "offscreen";
    static char* arguments[] = {name, option, platform, nullptr};
    const KeptLocale kept;
    return std::make_unique<QGuiApplication>(count, arguments);
}

}  // namespace

void EnsureApplication() {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
    if (QCoreApplication::instance()) {
        AfxThrowNotSupportedException(
            "Cannot draw: the program's Qt application object is a QCoreApplication, and text needs a "
            "QGuiApplication "
            "or QApplication.");
    }
    // Kept for the life of the process: what Qt has made since would be destroyed before it at exit.
    [[maybe_unused]] static const QGuiApplication* const application = MakeApplication().release();
}

}  // namespace zel::qt
