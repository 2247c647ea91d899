// Looks at drawings, edits, prints and exports them.
//
//     zelview [--first-picture] [FILE.zel | FILE.csv]
#include "apps/zelview/MainWindow.h"

#include <zel/platform/DC.h>
#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>
#include <zel/platform/Platform.h>
#include <zel/widgets/Widgets.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>

namespace {

// When the picture has gone to the screen. Not by closing the window, which may ask.
void EndAfterPicture(zel::view::MainWindow& window) {
    window.View().SetPictureHandler([] { QTimer::singleShot(0, qApp, [] { QApplication::exit(0); }); });
}

// What the command line can say.
class Arguments {
  public:
    explicit Arguments(const QCoreApplication& application) {
        parser_.setApplicationDescription("Looks at drawings, edits, prints and exports them.");
        parser_.addHelpOption();
        parser_.addVersionOption();
        parser_.addPositionalArgument("file", "A drawing (.zel), or a table (.csv) to make one from.",
                                      "[file]");
        parser_.addOption(firstPicture_);
        parser_.process(application);  // ends the program where only help was asked for
    }
    QString File() const { return parser_.positionalArguments().value(0); }
    bool EndsAfterPicture() const { return parser_.isSet(firstPicture_); }

  private:
    QCommandLineParser parser_;
    const QCommandLineOption firstPicture_{
        "first-picture",
        "Ends as soon as the drawing is on the screen: how long that takes is the time to start."};
};

// No display is needed for that.
bool AsksForWordsOnly(int argc, char** argv) {
    const std::set<std::string> words{"-h", "-?", "--help", "--help-all", "-v", "--version"};
    return std::any_of(argv + 1, argv + argc, [&](const char* word) { return words.contains(word); });
}

// Qt ends a program that finds no display, and says what Qt knows about its plugins.
void TellOfNoDisplay(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const bool aboutPlatform = QByteArray(context.category).startsWith("qt.qpa");
    if (type == QtFatalMsg) {
        const QByteArray display =
            qgetenv("WAYLAND_DISPLAY").isEmpty() ? qgetenv("DISPLAY") : qgetenv("WAYLAND_DISPLAY");
        std::fprintf(
            stderr,
            "zelview: Cannot open a window: the display \"%s\" cannot be reached. \"zel convert\" writes "
            "drawings in other formats without one.\n",
            display.constData());
        std::_Exit(1);
    }
    if (!aboutPlatform) std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv) {
    const QtMessageHandler before = qInstallMessageHandler(&TellOfNoDisplay);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(before);
    return application;
}

int Run(const QApplication& application) {
    const Arguments arguments(application);
    QApplication::setWindowIcon(QIcon::fromTheme("zelview"));
    zel::widgets::Install();
    CDC text(zel::Platform::Get().CreateScreenCompatibleDevice());
    TEXTMETRIC metrics;
    text.GetTextMetrics(&metrics);  // without any font there is nothing to show, and a reason to say so
    zel::view::MainWindow window;
    window.show();
    const QString file = arguments.File();
    if (!file.isEmpty()) window.Open(file);
    if (zel::view::DocumentFile::HasUntitledLeft()) {
        file.isEmpty()
            ? window.RecoverUntitled()
            : window.statusBar()->showMessage("Unsaved work of an earlier run is there: File, Recover.");
    }
    if (arguments.EndsAfterPicture()) EndAfterPicture(window);
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow must not cost the work
    QCoreApplication::setApplicationName("zelview");
    QCoreApplication::setOrganizationName("zel");
    QCoreApplication::setApplicationVersion(ZEL_VERSION);
    if (AsksForWordsOnly(argc, argv)) {
        const QCoreApplication application(argc, argv);
        const Arguments arguments(application);
    }
    QGuiApplication::setDesktopFileName("zelview");
    const std::unique_ptr<QApplication> application = MakeApplication(argc, argv);
    try {
        return Run(*application);
    } catch (CException* e) {
        std::fprintf(stderr, "zelview: %s\n", zel::TakeMessage(e).c_str());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zelview: %s\n", zel::WordsOf(e).c_str());
    }
    return 1;
}
