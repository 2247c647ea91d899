#include "apps/zel/Commands.h"
#include "apps/zel/Figure.h"
#include "apps/zel/ReportParts.h"
#include "apps/zel/TableChoice.h"

#include <zel/platform/Warning.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <numeric>
#include <unistd.h>

namespace zel::cli {
namespace {

constexpr double kUnitsPerMillimetre = 1000 / 25.4;
constexpr double kFigureHeight = 75;  // millimetres
constexpr std::size_t kMostFigures = 12;

struct ReportChoice {
    TableChoice table;
    std::string x;
    std::string title;
    std::string paper = "A4";
    bool landscape = false;
    bool noFigures = false;
    double dpi = 100;
    CLI::Option* dpiOption = nullptr;
    std::string output;
};

volatile std::sig_atomic_t stopped = 0;

std::string Shown(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

// What is known of the values of one column.
struct ColumnSummary {
    bool isNumber = false;
    double min = 0, max = 0, mean = 0;
};

ColumnSummary Summarize(const tables::Table& table, std::size_t k) {
    ColumnSummary summary;
    const Column& column = table.At(k);
    summary.isNumber = table.Columns()[k].kind == tables::Kind::NUMBER;
    if (!summary.isNumber) return summary;
    for (const std::string& note : table.NotesOf(k)) Warn(note);
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t row = 0; row < column.Size(); ++row) {
        const double value = column.At(row);
        if (!std::isfinite(value)) continue;
        summary.min = count == 0 ? value : std::min(summary.min, value);
        summary.max = count == 0 ? value : std::max(summary.max, value);
        sum += value;
        ++count;
    }
    summary.mean = count > 0 ? sum / static_cast<double>(count) : 0;
    return summary;
}

class ReportMaker {
  public:
    ReportMaker(const tables::Table& table, const ReportChoice& choice) : table_(table), choice_(choice) {
        for (std::size_t k = 0; k < table.Columns().size(); ++k) columns_.push_back(Summarize(table, k));
    }

    // The report belongs to `drawing`.
    Zel2Report& MakeIn(Zel2Main& drawing) {
        drawing.SetRules(ZelRules::EXACT);
        report_ = new Zel2Report;
        drawing.Add(report_);
        report_->SetPaper(Paper());
        const ReportParts parts(*report_);
        parts_ = std::make_unique<ReportParts>(parts);
        AddHead();
        AddSummary();
        if (!choice_.noFigures) AddFigures();
        AddRows();
        report_->MakePages();
        return *report_;
    }

  private:
    ReportPaper Paper() const {
        ExportOptions size;
        if (!zel::SetPaper(size, choice_.paper, choice_.landscape)) {
            throw Error("Cannot use the paper \"" + choice_.paper +
                        "\"; known are A2, A3, A4, A5, letter and legal");
        }
        ReportPaper paper;
        paper.size = CSize(static_cast<int>(std::lround(size.paperWidth * kUnitsPerMillimetre)),
                           static_cast<int>(std::lround(size.paperHeight * kUnitsPerMillimetre)));
        paper.header.right = Title().c_str();
        paper.footer.left = FileName().c_str();
        paper.footer.right = "page {page} of {pages}";
        return paper;
    }
    std::string FileName() const {
        const std::string& path = table_.Name();
        const std::size_t slash = path.rfind('/');
        return slash == std::string::npos ? path : path.substr(slash + 1);
    }
    std::string Title() const { return choice_.title.empty() ? FileName() : choice_.title; }
    void Append(std::unique_ptr<Zel2> object) { report_->Append(object.release()); }

    void AddHead() {
        Append(parts_->Title(Title()));
        Append(parts_->Gap(100));
        const auto numbers =
            std::count_if(columns_.begin(), columns_.end(), [](const auto& c) { return c.isNumber; });
        Append(parts_->Fields({{"file", FileName()},
                               {"rows", std::to_string(table_.RowCount())},
                               {"columns", std::to_string(columns_.size())},
                               {"of numbers", std::to_string(numbers)}}));
        Append(parts_->Gap(150));
    }

    void AddSummary() {
        PrintedTable summary;
        summary.names = {"column", "cells", "missing", "lowest", "mean", "highest"};
        summary.isNumber = {false, true, true, true, true, true};
        for (std::size_t k = 0; k < columns_.size(); ++k) {
            const tables::ColumnFacts& facts = table_.Columns()[k];
            std::vector<std::string> row = {facts.name, std::to_string(table_.RowCount() - facts.missing),
                                            std::to_string(facts.missing)};
            const ColumnSummary& column = columns_[k];
            if (column.isNumber) {
                for (const double value : {column.min, column.mean, column.max}) row.push_back(Shown(value));
            }
            summary.rows.push_back(std::move(row));
        }
        Append(parts_->Heading("Columns"));
        for (auto& made : parts_->Tables(summary)) Append(std::move(made));
        Append(parts_->Gap(150));
    }

    // What the figures are drawn against: the column asked for, else the first if it is of dates, else the
    // numbers of the rows.
    Column Across() const {
        if (!choice_.x.empty()) return CoordinateOf(table_, choice_.x);
        if (table_.Columns().front().kind == tables::Kind::TIME) return table_.At(0);
        std::vector<double> numbers(table_.RowCount());
        std::iota(numbers.begin(), numbers.end(), 1.0);
        return Column(std::move(numbers)).SetName("row");
    }

    void AddFigures() {
        if (table_.RowCount() < 2) return;
        const Column x = Across();
        std::size_t count = 0;
        for (std::size_t k = 0; k < columns_.size() && count < kMostFigures; ++k) {
            const std::string& name = table_.Columns()[k].name;
            if (!columns_[k].isNumber || name == x.Name() || columns_[k].min == columns_[k].max) continue;
            FigureOptions options;
            if (x.GetKind() != Column::Kind::TIMES) options.xTitle = x.Name();
            options.yTitle = name;
            options.width = std::clamp(parts_->Width() / kUnitsPerMillimetre, 30.0, 2000.0);
            options.height = kFigureHeight;
            Append(parts_->Heading(name));
            Append(MakeFigure({{name, x, table_.At(k), {}}}, options));
            ++count;
        }
    }

    void AddRows() {
        PrintedTable all;
        for (std::size_t k = 0; k < columns_.size(); ++k) {
            all.names.push_back(table_.Columns()[k].name);
            all.isNumber.push_back(columns_[k].isNumber);
        }
        for (std::size_t row = 0; row < table_.RowCount(); ++row) {
            std::vector<std::string>& cells = all.rows.emplace_back();
            for (std::size_t k = 0; k < columns_.size(); ++k) cells.emplace_back(table_.Text(row, k));
        }
        report_->BreakPage();
        Append(parts_->Heading("Rows"));
        for (auto& made : parts_->Tables(all)) {
            Append(std::move(made));
            Append(parts_->Gap(150));
        }
    }

    const tables::Table& table_;
    const ReportChoice& choice_;
    std::vector<ColumnSummary> columns_;
    Zel2Report* report_ = nullptr;
    std::unique_ptr<ReportParts> parts_;
};

// On a terminal the pages are counted; an interrupt stops between two pages and leaves no file.
bool Write(Zel2Main& drawing, Zel2Report& report, const ReportChoice& choice, const std::string& title) {
    ExportOptions options;
    options.dotsPerInch = choice.dpi;
    options.title = title;
    const bool terminal = isatty(STDERR_FILENO) != 0;
    const auto handler = std::signal(SIGINT, [](int) { stopped = 1; });
    const bool done = ExportReport(drawing, report, choice.output.c_str(), options, [&](int page, int pages) {
        if (terminal && (page % 50 == 0 || page == pages))
            std::cerr << "\rpage " << page << " of " << pages << (page == pages ? "\n" : "") << std::flush;
        return stopped == 0;
    });
    std::signal(SIGINT, handler);
    return done;
}

void MakeReport(const ReportChoice& choice) {
    if (choice.dpiOption->count() > 0 && !IsImage(choice.output))
        throw Error("Cannot use --dpi: only images (.png, .jpg) have pixels");
    const tables::Table table = choice.table.Read(true);
    Zel2Main drawing;
    Zel2Report& report = ReportMaker(table, choice).MakeIn(drawing);
    if (!Write(drawing, report, choice, choice.title.empty() ? table.Name() : choice.title))
        throw Error("Stopped; \"" + choice.output + "\" has not been written");
}

}  // namespace

void AddReportCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("report", "Make a report of a table: summary, figures, all rows");
    auto choice = std::make_shared<ReportChoice>();
    choice->table.AddTo(*command)->required();
    command
        ->add_option("-o,--output", choice->output,
                     "File to write, in the format of its ending: .pdf for all pages in one; of " +
                         ExportEndings() + " the others make a file a page")
        ->required();
    command->add_option("--title", choice->title, "Title of the report (default: the file's name)");
    command->add_option("--x", choice->x,
                        "Column that the figures are drawn against (default: the first if it holds dates, "
                        "else the row number)");
    command->add_option("--paper", choice->paper, "A2 to A5, letter or legal")->capture_default_str();
    command->add_flag("--landscape", choice->landscape, "Lay the paper on its side");
    command->add_flag("--no-figures", choice->noFigures, "Leave the figures out");
    choice->dpiOption = command->add_option("--dpi", choice->dpi, "Pixels per inch of images")
                            ->capture_default_str()
                            ->check(CLI::Range(10.0, 2400.0));
    command->footer("Example:\n  zel report weather.csv --title \"Seattle weather\" -o weather.pdf");
    command->callback([choice] { MakeReport(*choice); });
}

}  // namespace zel::cli
