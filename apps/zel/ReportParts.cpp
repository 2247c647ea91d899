#include "apps/zel/ReportParts.h"

#include <zel/platform/DC.h>
#include <zel/platform/Platform.h>

#include <algorithm>

namespace zel::cli {
namespace {

constexpr int kUnitsPerInch = 1000;
constexpr int kRowHeight = 170;
constexpr int kCellMargin = 120;  // of a column, for both sides together
constexpr int kSmallPoints10 = 80;
constexpr COLORREF kInk = RGB(40, 40, 40);
constexpr COLORREF kRule = RGB(120, 120, 120);
constexpr COLORREF kThin = RGB(215, 215, 215);
constexpr COLORREF kShade = RGB(238, 241, 245);
const Zel2Text::Rule kNoRule{-1, 0.0F};
constexpr float kBelow = 1.0F;

// Measures text in the small font, in world units.
class Ruler {
  public:
    Ruler() : dc_(Platform::Get().CreateScreenCompatibleDevice()) {
        // Measured large, so that no rounding to pixels matters.
        font_.CreateFont(-kScale * kUnitsPerInch * kSmallPoints10 / 720, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0,
                         0, 0, "Arial");
        previous_ = dc_.SelectObject(&font_);
    }
    ~Ruler() { dc_.SelectObject(previous_); }
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;

    int WidthOf(const std::string& text) const {
        return dc_.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx / kScale + 1;
    }

  private:
    static constexpr int kScale = 4;
    CDC dc_;
    CFont font_;
    CFont* previous_;
};

// The beginning of a text that fits, with an ellipsis where something is left out. Line ends become blanks.
std::string Fitted(const Ruler& ruler, std::string text, int width) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    if (ruler.WidthOf(text) <= width) return text;
    const std::string ellipsis = "…";
    // Halving finds the longest beginning; a cut within a character is moved to its start.
    std::size_t fits = 0, tooLong = text.size();
    while (tooLong - fits > 1) {
        const std::size_t middle = fits + (tooLong - fits) / 2;
        (ruler.WidthOf(text.substr(0, middle) + ellipsis) <= width ? fits : tooLong) = middle;
    }
    while (fits > 0 && (static_cast<unsigned char>(text[fits]) & 0xC0) == 0x80) --fits;
    return text.substr(0, fits) + ellipsis;
}

std::unique_ptr<Zel2Text> Box(const std::string& text, int width, int height, int font, unsigned format,
                              const Zel2Text::Rule& rule = kNoRule, int background = -1) {
    return std::make_unique<Zel2Text>(text.c_str(), CRect(0, 0, width - 1, height - 1), font,
                                      static_cast<int>(format), 0, -1, background, rule);
}

}  // namespace

ReportParts::ReportParts(Zel2Report& report)
    : width_(report.Paper() ? report.Paper()->Room().cx : ReportPaper().Room().cx),
      titleFont_(report.RegisterFont("Report Title", "Arial", 200, 1, 0, 0, 0, kInk, 0)),
      headingFont_(report.RegisterFont("Report Heading", "Arial", 120, 1, 0, 0, 0, kInk, 0)),
      textFont_(report.RegisterFont("Report Text", "Arial", 100, 0, 0, 0, 0, kInk, 0)),
      smallFont_(report.RegisterFont("Report Table", "Arial", kSmallPoints10, 0, 0, 0, 0, kInk, 0)),
      headerFont_(report.RegisterFont("Report Table Header", "Arial", kSmallPoints10, 1, 0, 0, 0, kInk, 0)),
      rulePen_(report.RegisterPen("Report Rule", DrawPen::SOLID, 2, kRule, kRule, nullptr)),
      thinPen_(report.RegisterPen("Report Thin Rule", DrawPen::SOLID, 1, kThin, kThin, nullptr)),
      shade_(report.RegisterColor("Report Shade", kShade, kShade)) {}

std::unique_ptr<Zel2> ReportParts::Title(const std::string& text) const {
    return Box(text, width_, 500, titleFont_, DT_LEFT | DT_VCENTER, {rulePen_, kBelow});
}

std::unique_ptr<Zel2> ReportParts::Heading(const std::string& text) const {
    auto heading = Box(text, width_, 330, headingFont_, DT_LEFT | DT_VCENTER);
    heading->SetStatus(Zel2::KEEP_WITH_NEXT, 1);
    return heading;
}

std::unique_ptr<Zel2> ReportParts::RuledLine(const std::string& text) const {
    return Box(text, width_, 250, textFont_, DT_CENTER | DT_VCENTER, {thinPen_, 0.0F});
}

std::unique_ptr<Zel2> ReportParts::Gap(int height) const {
    auto gap = std::make_unique<Zel2Rect>();
    gap->SetSize(CSize(width_, height));
    return gap;
}

std::unique_ptr<Zel2> ReportParts::Fields(
    const std::vector<std::pair<std::string, std::string>>& fields) const {
    auto row = std::make_unique<Zel2Row>(Zel2Row::STRETCH | Zel2Row::SHRINK);
    const int width = width_ / static_cast<int>(std::max<std::size_t>(fields.size(), 1));
    for (const auto& [caption, value] : fields) {
        auto field = std::make_unique<Zel2DataField>(CRect(0, 0, width - 1, 499), value.c_str(),
                                                     caption.c_str(), thinPen_, -1, -1);
        field->SetFont(textFont_);
        field->SetLabelFont(smallFont_);
        for (Zel2TRect* part : {field->Value(), field->Label()}) part->SetBorder(CSize(3, 0));
        field->SetStyle(0, DT_LEFT | DT_VCENTER);
        row->Add(field.release());
    }
    return row;
}

std::vector<int> ReportParts::ColumnWidths(const PrintedTable& table) const {
    const Ruler ruler;
    std::vector<int> widths;
    for (const std::string& name : table.names) widths.push_back(ruler.WidthOf(name));
    for (const auto& row : table.rows) {
        for (std::size_t c = 0; c < std::min(row.size(), widths.size()); ++c)
            widths[c] = std::max(widths[c], ruler.WidthOf(row[c]));
    }
    for (int& width : widths) width = std::min(width + kCellMargin, width_);
    return widths;
}

std::unique_ptr<Zel2> ReportParts::MakeTable(const PrintedTable& table,
                                             const std::vector<std::size_t>& columns,
                                             const std::vector<int>& widths) const {
    const Ruler ruler;
    const int rows = static_cast<int>(table.rows.size());
    auto made = std::make_unique<Zel2TextTable>(static_cast<int>(columns.size()), rows + 1);
    made->SetNHeaderRows(1);
    for (std::size_t place = 0; place < columns.size(); ++place) {
        const std::size_t k = columns[place];
        const int c = static_cast<int>(place), width = widths[k];
        const unsigned side = table.isNumber[k] ? DT_RIGHT : DT_LEFT;
        const auto header =
            Box("", width, kRowHeight, headerFont_, side | DT_VCENTER, {rulePen_, kBelow}, shade_);
        const auto cell = Box("", width, kRowHeight, smallFont_, side | DT_VCENTER, {thinPen_, kBelow});
        made->SetStyle(c, c, 0, 0, *header);
        made->SetStyle(c, c, 1, rows, *cell);
        // Blanks keep the texts of neighbours apart.
        const auto put = [&](int r, const std::string& text) {
            const std::string fitted = Fitted(ruler, text, width - kCellMargin + 2);
            made->SetPlainText(c, r, (table.isNumber[k] ? fitted + "  " : "  " + fitted).c_str());
        };
        put(0, table.names[k]);
        for (int r = 0; r < rows; ++r) {
            const auto& row = table.rows[static_cast<std::size_t>(r)];
            if (k < row.size()) put(r + 1, row[k]);
        }
    }
    return made;
}

std::vector<std::unique_ptr<Zel2>> ReportParts::Tables(const PrintedTable& table) const {
    std::vector<std::unique_ptr<Zel2>> tables;
    const std::vector<int> widths = ColumnWidths(table);
    const bool hasKey = !widths.empty() && widths[0] <= width_ / 3;
    for (std::size_t next = 0; next < widths.size();) {
        std::vector<std::size_t> columns;
        int sum = 0;
        const auto take = [&](std::size_t k) {
            columns.push_back(k);
            sum += widths[k];
        };
        if (next > 0 && hasKey) take(0);
        const std::size_t first = next;
        while (next < widths.size() && (next == first || sum + widths[next] <= width_)) take(next++);
        // A column as wide as the paper stands alone.
        if (sum > width_ && columns.size() > 1) columns.erase(columns.begin());
        tables.push_back(MakeTable(table, columns, widths));
    }
    return tables;
}

}  // namespace zel::cli
