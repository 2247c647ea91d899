// Looks at drawings, edits, prints and exports them.
//
//     zelview [FILE.zel | FILE.csv]
#include "apps/zelview/MainWindow.h"

#include <zel/platform/Exception.h>
#include <zel/widgets/Widgets.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

#include <cstdio>

namespace {

int Run(QApplication& application) {
    QCommandLineParser arguments;
    arguments.setApplicationDescription("Looks at drawings, edits, prints and exports them.");
    arguments.addHelpOption();
    arguments.addVersionOption();
    arguments.addPositionalArgument("file", "A drawing (.zel), or a table (.csv) to make one from.",
                                    "[file]");
    arguments.process(application);
    zel::widgets::Install();
    zel::view::MainWindow window;
    window.show();
    const QStringList files = arguments.positionalArguments();
    files.isEmpty() ? window.OfferUntitledCopy() : static_cast<void>(window.Open(files.front()));
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
