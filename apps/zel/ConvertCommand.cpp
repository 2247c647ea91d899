#include "apps/zel/Commands.h"

#include <zel/zel.h>

#include <functional>

namespace zel::cli {
namespace {

// The endings of the formats for which `fits` holds: ".png .jpg".
std::string EndingsOf(const std::function<bool(const FileFormat&)>& fits) {
    std::string endings;
    for (const FileFormat& format : ExportFormats()) {
        if (!fits(format)) continue;
        for (const std::string& ending : format.endings)
            endings.append(endings.empty() ? "." : " .").append(ending);
    }
    return endings;
}

bool HasPixels(const FileFormat& format) {
    return format.pixels;
}
bool HasPaper(const FileFormat& format) {
    return format.paper;
}
bool CanBeTransparent(const FileFormat& format) {
    return format.transparent;
}

}  // namespace

std::string ExportEndings() {
    return EndingsOf([](const FileFormat&) { return true; });
}

bool IsImage(const std::string& path) {
    return (" " + EndingsOf(HasPixels) + " ").find(" ." + EndingOf(path) + " ") != std::string::npos;
}

void OutputChoice::AddTo(CLI::App& command, bool positional) {
    command
        .add_option(positional ? "output" : "-o,--output", path,
                    "File to write; its ending chooses the format: " + ExportEndings() + " .zel")
        ->required();
    const auto about = [this](bool (*fits)(const FileFormat&), CLI::Option* option) {
        endings_.emplace_back(option, EndingsOf(fits));
        return option;
    };
    CLI::Option* const perInch =
        about(HasPixels, command.add_option("--dpi", dpi, "Pixels per inch of an image"))
            ->capture_default_str()
            ->check(CLI::Range(10.0, 2400.0));
    about(HasPixels, command.add_option("--pixels", pixels, "Width of an image in pixels, instead of --dpi"))
        ->check(CLI::Range(1, 30000))
        ->excludes(perInch);
    CLI::Option* const sheet = about(
        HasPaper, command.add_option("--paper", paper,
                                     "Paper of a page: A2 to A5, letter, legal (default: as large as the "
                                     "drawing)"));
    about(HasPaper, command.add_flag("--landscape", landscape, "Lay the paper on its side"))->needs(sheet);
    about(HasPaper, command.add_flag("--printer", printer, "Use the tools' printer colours"));
    about(CanBeTransparent,
          command.add_flag("--transparent", transparent,
                           "Leave the background out (" + EndingsOf(CanBeTransparent) + ")"));
}

void OutputChoice::RefuseWhatCannotApply() const {
    const std::string ending = "." + EndingOf(path);
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
