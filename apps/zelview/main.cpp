// Looks at drawings, edits, prints and exports them.
//
//     zelview [--first-picture] [FILE.zel | FILE.csv]
#include "apps/zelview/MainWindow.h"

#include <zel/platform/Exception.h>
#include <zel/widgets/Widgets.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QTimer>

#include <cstdio>

namespace {

// When the picture has gone to the screen. Not by closing the window, which may ask.
void EndAfterPicture(zel::view::MainWindow& window) {
    window.View().SetPictureHandler([] { QTimer::singleShot(0, qApp, [] { QApplication::exit(0); }); });
}

int Run(QApplication& application) {
    QCommandLineParser arguments;
    arguments.setApplicationDescription("Looks at drawings, edits, prints and exports them.");
    arguments.addHelpOption();
    arguments.addVersionOption();
    arguments.addPositionalArgument("file", "A drawing (.zel), or a table (.csv) to make one from.",
                                    "[file]");
    const QCommandLineOption firstPicture("first-picture",
                                          "Ends as soon as the drawing is on the screen: how long that takes "
                                          "is the time to start.");
    arguments.addOption(firstPicture);
    arguments.process(application);
    zel::widgets::Install();
    zel::view::MainWindow window;
    window.show();
    const QStringList files = arguments.positionalArguments();
    files.isEmpty() ? window.OfferUntitledCopy() : static_cast<void>(window.Open(files.front()));
    if (arguments.isSet(firstPicture)) EndAfterPicture(window);
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    QApplication::setApplicationName("zelview");
    QApplication::setOrganizationName("zel");
    QApplication::setApplicationVersion(ZEL_VERSION);
    QApplication::setDesktopFileName("zelview");
    QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon::fromTheme("zelview"));
    try {
        return Run(application);
    } catch (CException* e) {
        std::fprintf(stderr, "zelview: %s\n", zel::TakeMessage(e).c_str());
    }
    return 1;
}
