#include "charts/TextRuler.h"

#include "tools/TextClusters.h"

#include <zel/DrawFont.h>
#include <zel/platform/DC.h>
#include <zel/platform/Platform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <tuple>

namespace zel {
namespace {

constexpr int kLargestFont = 100'000;  // tenths of a point; larger ones are laid out like it
constexpr int kEm = 2048;              // device units in which letters are measured
constexpr const char* kEllipsis = "\u2026";

}  // namespace

// A typeface, opened once for each thread.
struct TextRuler::Face {
    explicit Face(const DrawFont& font) : dc(Platform::Get().CreateScreenCompatibleDevice()) {
        LOGFONT log{};
        log.lfHeight = -kEm;
        log.lfWeight = font.Bold() ? FW_BOLD : FW_NORMAL;
        log.lfItalic = static_cast<BYTE>(font.Italic());
        const CString name = font.FontName();
        const auto length = static_cast<std::size_t>(name.GetLength());
        std::memcpy(log.lfFaceName, name.GetString().data(), std::min<std::size_t>(length, LF_FACESIZE - 1));
        made.CreateFontIndirect(&log);
        dc.SelectObject(&made);
        for (std::size_t c = 32; c < ascii.size(); ++c) {
            const char letter = static_cast<char>(c);
            ascii[c] = dc.GetTextExtent(&letter, 1).cx;
        }
        height = dc.GetTextExtent("X", 1).cy;
    }
    // The widths of ASCII letters add up; other texts are shaped.
    double WidthOf(const std::string& text) {
        double width = 0;
        for (const char c : text) {
            const auto code = static_cast<unsigned char>(c);
            if (code < 32 || code >= 127) return Measured(text);
            width += ascii[code];
        }
        return width;
    }
    double Measured(const std::string& text) {
        if (text.size() > 64) return dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx;
        const auto known = widths.find(text);
        if (known != widths.end()) return known->second;
        if (widths.size() > 4096) widths.clear();
        return widths[text] = dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx;
    }

    CFont made;
    CDC dc;
    std::array<int, 127> ascii{};
    std::map<std::string, double> widths;
    int height = 0;
};

TextRuler::Face& TextRuler::FaceOf(const DrawFont& font) {
    using Key = std::tuple<Platform*, std::string, int, int>;
    thread_local std::map<Key, std::unique_ptr<Face>> faces;
    const Key key(&Platform::Get(), font.FontName().GetString(), font.Bold(), font.Italic());
    std::unique_ptr<Face>& face = faces[key];
    if (!face) face = std::make_unique<Face>(font);
    return *face;
}

TextRuler::TextRuler(const DrawFont& font)
    : face_(FaceOf(font)),
      unitsPerEm_(std::clamp(font.PtSize10(), 0, kLargestFont) * 1000.0 / 720),
      lineHeight_(static_cast<int>(std::ceil(face_.height * unitsPerEm_ / kEm))) {}

double TextRuler::WidthOf(const std::string& text) const {
    return face_.WidthOf(text) * unitsPerEm_ / kEm;
}

std::string TextRuler::Shortened(const std::string& text, double width) const {
    if (text.size() < 1000 && WidthOf(text) <= width) return text;
    const std::vector<std::size_t> ends = ClusterEnds(std::string_view(text).substr(0, 1000));
    // Of the beginnings that fit, the longest.
    const auto fits = [&](std::size_t end) {
        return WidthOf(end < text.size() ? text.substr(0, end) + kEllipsis : text) <= width;
    };
    const auto longest = std::partition_point(ends.begin(), ends.end(), fits);
    if (longest == ends.begin()) return WidthOf(kEllipsis) <= width ? kEllipsis : "";
    std::string kept = text.substr(0, *(longest - 1));
    if (kept.size() == text.size()) return text;
    while (!kept.empty() && kept.back() == ' ') kept.pop_back();
    return kept + kEllipsis;
}

std::vector<std::string> TextRuler::Wrapped(const std::string& text, double width, std::size_t most) const {
    std::vector<std::string> lines;
    std::string line;
    std::size_t at = 0;
    while (at < text.size()) {
        if (lines.size() + 1 == most) {
            // The last line takes what is left.
            std::string rest = (line.empty() ? "" : line + " ") + text.substr(at);
            std::replace(rest.begin(), rest.end(), '\n', ' ');
            lines.push_back(Shortened(rest, width));
            return lines;
        }
        const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
        const std::string word = text.substr(at, end - at);
        std::string longer = line;
        if (!longer.empty()) longer += ' ';
        longer += word;
        const bool breaks = end < text.size() && text[end] == '\n';
        if (!line.empty() && WidthOf(longer) > width) {
            lines.push_back(Shortened(line, width));
            line.clear();
            continue;
        }
        line = longer;
        at = end + 1;
        if (breaks) {
            lines.push_back(Shortened(line, width));
            line.clear();
        }
    }
    if (!line.empty()) lines.push_back(Shortened(line, width));
    return lines;
}

}  // namespace zel
