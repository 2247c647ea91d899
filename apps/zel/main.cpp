// zel: drawings from the command line.
#include "apps/zel/Commands.h"

#include <zel/platform/Exception.h>
#include <zel/platform/Warning.h>
#include <zel/qt/Install.h>

#include <csignal>
#include <iostream>
#include <new>

namespace {

constexpr int kFailed =
    1;  // the command could not be carried out; the parser has codes of its own from 100 on

int Complain(const std::string& message) {
    std::cerr << "zel: " << message << "\n";
    return kFailed;
}

std::string CommandOf(const CLI::App& app) {
    std::string command = "zel";
    for (const CLI::App* chosen : app.get_subcommands()) command += " " + chosen->get_name();
    return command;
}

}  // namespace

int main(int argc, char** argv) {
    zel::qt::Install();  // before the options, which name its formats
    CLI::App app("Graphs from data, and drawings in other formats.", "zel");
    app.set_version_flag("--version", ZEL_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Examples:\n"
        "  zel describe data.csv\n"
        "  zel plot data.csv --x year --y temp -o out.pdf\n"
        "  zel report data.csv --title Weather -o report.pdf\n"
        "  zel plot --db weather.sqlite --table daily --x date --y temp_max -o out.pdf\n"
        "  zel import data.csv --db weather.sqlite --table daily\n"
        "  zel convert drawing.zel out.svg\n"
        "  zel info drawing.zel\n"
        "\"zel plot --help\" tells more. Exit codes: 0 done, 1 failed, others wrong usage.");
    zel::cli::AddDescribeCommand(app);
    zel::cli::AddPlotCommand(app);
    zel::cli::AddImportCommand(app);
    zel::cli::AddConvertCommand(app);
    zel::cli::AddReportCommand(app);
    zel::cli::AddInfoCommand(app);
    zel::SetWarningHandler(
        [](const std::string& message) { std::cerr << "zel: warning: " << message << "\n"; });
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is told like any other failure
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (CException* e) {
        return Complain(zel::TakeMessage(e));
    } catch (const std::bad_alloc&) {
        return Complain("Cannot finish \"" + CommandOf(app) + "\": there is not enough memory");
    } catch (const std::exception& e) {
        return Complain(e.what());
    }
    return 0;
}
