// The commands of the program. Each adds itself to the command line and runs when it is chosen.
#pragma once

#include <zel/ZelExport.h>

#include <CLI/CLI.hpp>

namespace zel::cli {

void AddPlotCommand(CLI::App& app);
void AddImportCommand(CLI::App& app);
void AddConvertCommand(CLI::App& app);
void AddInfoCommand(CLI::App& app);
void AddReportCommand(CLI::App& app);

// Options on how a file is written, shared by commands that write one.
struct OutputChoice {
    std::string path;
    std::string paper;
    bool landscape = false;
    bool printer = false;
    bool transparent = false;
    double dpi = 150;
    int pixels = 0;

    void AddTo(CLI::App& command, bool positional);
    // Writes a drawing in the format of the path's ending, documents (.zel) included.
    void Write(Zel2Main& drawing, const std::string& title) const;
};

}  // namespace zel::cli
