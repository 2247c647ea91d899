#include "apps/zel/Commands.h"
#include "apps/zel/Csv.h"

#include <zel/zel.h>

#include <cctype>
#include <filesystem>

namespace zel::cli {
namespace {

constexpr const char* kImages = ".png .jpg .jpeg";
constexpr const char* kPages = ".png .jpg .jpeg .pdf .svg";
constexpr const char* kLayers = ".png .svg";

std::string EndingOf(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ending;
}

}  // namespace

bool IsImage(const std::string& path) {
    const std::string ending = EndingOf(path);
    return ending == ".png" || ending == ".jpg" || ending == ".jpeg";
}

void OutputChoice::AddTo(CLI::App& command, bool positional) {
    command
        .add_option(positional ? "output" : "-o,--output", path,
                    "File to write; its ending chooses the format: .png .jpg .pdf .svg .wmf .zel")
        ->required();
    const auto about = [this](const char* formats, CLI::Option* option) {
        endings_.emplace_back(option, formats);
        return option;
    };
    CLI::Option* const perInch =
        about(kImages, command.add_option("--dpi", dpi, "Pixels per inch of an image"))
            ->capture_default_str()
            ->check(CLI::Range(10.0, 2400.0));
    about(kImages, command.add_option("--pixels", pixels, "Width of an image in pixels, instead of --dpi"))
        ->check(CLI::Range(1, 30000))
        ->excludes(perInch);
    CLI::Option* const sheet =
        about(kPages, command.add_option("--paper", paper,
                                         "Paper of a page: A2 to A5, letter, legal (default: as large as the "
                                         "drawing)"));
    about(kPages, command.add_flag("--landscape", landscape, "Lay the paper on its side"))->needs(sheet);
    about(kPages, command.add_flag("--printer", printer, "Use the tools' printer colours"));
    about(kLayers, command.add_flag("--transparent", transparent, "Leave the background out (.png, .svg)"));
}

void OutputChoice::RefuseWhatCannotApply() const {
    const std::string ending = EndingOf(path);
    for (const auto& [option, formats] : endings_) {
        if (option->count() > 0 && (" " + formats + " ").find(" " + ending + " ") == std::string::npos)
            throw Error("Cannot use " + option->get_name() + " for \"" + path + "\": it is for " + formats);
    }
}

void OutputChoice::Write(Zel2Main& drawing, const std::string& title) const {
    RefuseWhatCannotApply();
    if (path.size() > 4 && path.ends_with(".zel")) {
        SaveDocument(drawing, path.c_str());
        return;
    }
    ExportOptions options;
    options.dotsPerInch = dpi;
    options.pixelWidth = pixels;
    options.printerTools = printer;
    options.transparent = transparent;
    options.title = title;
    if (!paper.empty() && !SetPaper(options, paper, landscape)) {
        throw Error("Cannot use the paper \"" + paper + "\"; known are A2, A3, A4, A5, letter and legal");
    }
    if (Zel2Report* const report = Zel2Report::FirstIn(drawing)) {
        ExportReport(drawing, *report, path.c_str(), options);
    } else {
        Export(drawing, path.c_str(), options);
    }
}

void AddConvertCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("convert", "Write a drawing in another format");
    auto input = std::make_shared<std::string>();
    auto output = std::make_shared<OutputChoice>();
    command->add_option("drawing", *input, "Document (.zel) to read")->required();
    output->AddTo(*command, true);
    command->footer(
        "Of a report all pages are written: into one .pdf, or a file each.\n"
        "Examples:\n  zel convert drawing.zel picture.svg\n  zel convert drawing.zel page.pdf --paper A4 "
        "--landscape");
    command->callback([input, output] {
        const auto drawing = LoadDocument(input->c_str());
        output->Write(*drawing, "");
    });
}

}  // namespace zel::cli
