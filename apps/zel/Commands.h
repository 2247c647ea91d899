// The commands of the program. Each adds itself to the command line and runs when it is chosen.
#pragma once

#include <zel/ZelExport.h>

#include <CLI/CLI.hpp>
#include <string>
#include <utility>
#include <vector>

namespace zel::cli {

void AddDescribeCommand(CLI::App& app);
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

    // The choice must outlive the parsing.
    void AddTo(CLI::App& command, bool positional);
    // Writes a drawing in the format of the path's ending, documents (.zel) included.
    // Throws Error for options that say nothing about that format.
    void Write(Zel2Main& drawing, const std::string& title) const;

  private:
    void RefuseWhatCannotApply() const;

    std::vector<std::pair<CLI::Option*, std::string>> endings_;  // the formats that each option is about
};

// The endings of all formats that drawings are exported in, each with its dot.
std::string ExportEndings();
// Whether a file of that name is made of pixels.
bool IsImage(const std::string& path);

}  // namespace zel::cli
