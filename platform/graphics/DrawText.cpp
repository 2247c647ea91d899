// Formatted text: CDC::DrawText.
#include "platform/graphics/Utf8.h"

#include <zel/platform/DC.h>

#include <algorithm>
#include <string>

namespace {

constexpr std::int64_t kTabStop = 8;  // average character widths

struct FormattedLine {
    std::string text;
    int width = 0;
    std::ptrdiff_t underlined = -1;  // byte offset of the character that is underlined
};

class Formatter {
  public:
    Formatter(const CDC& dc, UINT format) : dc_(dc), format_(format) { dc.GetTextMetrics(&metrics_); }

    std::vector<FormattedLine> Lines(std::string_view text, int width) const {
        std::vector<FormattedLine> lines;
        if (format_ & DT_SINGLELINE) {
            lines.push_back(Measured(text));
            return lines;
        }
        while (true) {
            const std::size_t end = text.find_first_of("\r\n");
            AppendBroken(text.substr(0, end), width, lines);
            if (end == std::string_view::npos) break;
            // CR LF is one line end, and so is LF CR.
            const bool pair = end + 1 < text.size() && text[end + 1] != text[end] &&
                              (text[end + 1] == '\r' || text[end + 1] == '\n');
            text.remove_prefix(end + (pair ? 2 : 1));
            if (text.empty()) break;  // a line end at the very end adds no line
        }
        return lines;
    }
    int LineHeight() const {
        return zel::Add(metrics_.tmHeight, format_ & DT_EXTERNALLEADING ? metrics_.tmExternalLeading : 0);
    }
    const TEXTMETRIC& Metrics() const { return metrics_; }
    int Width(std::string_view text) const {
        return dc_.GetTextExtent(text.data(), static_cast<int>(text.size())).cx;
    }

    // Where a line's pieces between tabs begin, relative to the line.
    template <class Piece>
    int ForEachPiece(const std::string& line, Piece piece) const {
        int x = 0;
        if (!(format_ & DT_EXPANDTABS)) {
            piece(std::string_view(line), 0);
            return Width(line);
        }
        const std::int64_t stop = std::max<std::int64_t>(1, kTabStop * metrics_.tmAveCharWidth);
        std::string_view rest(line);
        while (true) {
            const std::size_t tab = rest.find('\t');
            const std::string_view part = rest.substr(0, tab);
            piece(part, x);
            x = zel::Add(x, Width(part));
            if (tab == std::string_view::npos) return x;
            x = zel::Saturate((x / stop + 1) * stop);
            rest.remove_prefix(tab + 1);
        }
    }

  private:
    // The line with its '&' taken out, measured.
    FormattedLine Measured(std::string_view text) const {
        FormattedLine line;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '&' && !(format_ & DT_NOPREFIX) && i + 1 < text.size()) {
                ++i;
                if (text[i] != '&') line.underlined = static_cast<std::ptrdiff_t>(line.text.size());
            }
            line.text += text[i];
        }
        line.width = ForEachPiece(line.text, [](std::string_view, int) {});
        return line;
    }

    void AppendBroken(std::string_view text, int width, std::vector<FormattedLine>& lines) const {
        while (format_ & DT_WORDBREAK) {
            const std::size_t cut = BreakAt(text, width);
            if (cut >= text.size()) break;
            std::size_t end = cut;
            while (end > 0 && text[end - 1] == ' ') --end;
            lines.push_back(Measured(text.substr(0, end)));
            std::size_t next = cut;
            while (next < text.size() && text[next] == ' ') ++next;
            text.remove_prefix(next);
            if (text.empty()) return;  // blanks at the end add no line
        }
        lines.push_back(Measured(text));
    }

    // How much of the text goes on one line: whole words as long as they fit, at least one. Widths grow with
    // the words, so that few need measuring: a long text costs its length, not its square.
    std::size_t BreakAt(std::string_view text, int width) const {
        std::vector<std::size_t> ends;  // of the words looked at so far
        const auto fits = [&](std::size_t words) {
            while (ends.size() < words && (ends.empty() || ends.back() < text.size())) {
                const std::size_t at = ends.empty() ? 0 : ends.back();
                ends.push_back(std::min(text.find(' ', text.find_first_not_of(' ', at)), text.size()));
            }
            const std::size_t end = ends[std::min(words, ends.size()) - 1];
            return words == 1 || Measured(text.substr(0, end)).width <= width;
        };
        std::size_t most = 1, tooMany = 2;
        while (fits(tooMany)) {
            if (tooMany >= ends.size() && ends.back() >= text.size()) return text.size();
            most = tooMany;
            tooMany *= 2;
        }
        tooMany = std::min(tooMany, ends.size());
        if (ends.size() == 1) return ends[0];
        while (tooMany - most > 1) {
            const std::size_t middle = most + (tooMany - most) / 2;
            (fits(middle) ? most : tooMany) = middle;
        }
        return ends[most - 1];
    }

    const CDC& dc_;
    UINT format_;
    TEXTMETRIC metrics_{};
};

int HorizontalOffset(UINT format, int room, int width) {
    if (format & DT_RIGHT) return zel::Subtract(room, width);
    if (format & DT_CENTER) return zel::Subtract(room, width) / 2;
    return 0;
}

// Text hangs down on the device: the step from one line to the next is against the y axis where that points
// upwards.
int DownwardsOn(const CDC& dc) {
    const bool flipped = (dc.GetViewportExt().cy < 0) != (dc.GetWindowExt().cy < 0);
    return flipped ? -1 : 1;
}

// The y so far below another one; `down` is the direction.
int Below(int y, int down, std::int64_t distance) {
    return zel::Saturate(y + down * distance);
}

void Underline(CDC& dc, const Formatter& formatter, const FormattedLine& line, int x, int y) {
    const std::string_view text(line.text);
    auto end = static_cast<std::size_t>(line.underlined);
    const int left = zel::Add(x, formatter.Width(text.substr(0, end)));
    zel::NextCodePoint(text, end);
    const int right = zel::Add(x, formatter.Width(text.substr(0, end)));
    const int below = Below(y, DownwardsOn(dc), zel::Add(formatter.Metrics().tmAscent, 1));
    CPen pen(PS_SOLID, 0, dc.GetTextColor());
    CPen* previous = dc.SelectObject(&pen);
    const CPoint position = dc.GetCurrentPosition();
    dc.MoveTo(left, below);
    dc.LineTo(right, below);
    dc.MoveTo(position);
    dc.SelectObject(previous);
}

}  // namespace

int CDC::DrawText(const char* text, int length, RECT* rect, UINT format) {
    const std::string_view whole =
        length < 0 ? std::string_view(text) : std::string_view(text, static_cast<std::size_t>(length));
    const Formatter formatter(*this, format);
    const int lineHeight = formatter.LineHeight();
    if (whole.empty()) {
        if (format & DT_CALCRECT) *rect = CRect(rect->left, rect->top, rect->left, rect->top);
        return lineHeight;
    }
    const CRect box(*rect);
    const std::vector<FormattedLine> lines = formatter.Lines(whole, box.Width());
    const int height = zel::Saturate(std::int64_t{lineHeight} * static_cast<std::int64_t>(lines.size()));
    const int down = DownwardsOn(*this);
    int offset = 0;  // of the text below the top of the box
    if (format & DT_SINGLELINE) {
        const int room = zel::Saturate(std::int64_t{down} * box.Height());
        if (format & DT_VCENTER) offset = room / 2 - height / 2;
        if (format & DT_BOTTOM) offset = zel::Subtract(room, height);
    }
    const int answer = zel::Add(offset, height);
    if (format & DT_CALCRECT) {
        int widest = 0;
        for (const FormattedLine& line : lines) widest = std::max(widest, line.width);
        rect->right = zel::Add(rect->left, widest);
        rect->bottom = Below(rect->top, down, answer);
        return answer;
    }
    const bool clips = !(format & DT_NOCLIP);
    if (clips) SaveDC();
    if (clips) IntersectClipRect(&box);
    const UINT align = SetTextAlign(TA_LEFT | TA_TOP);
    int y = Below(box.top, down, offset);
    for (const FormattedLine& line : lines) {
        const int x = zel::Add(box.left, HorizontalOffset(format, box.Width(), line.width));
        formatter.ForEachPiece(line.text, [&](std::string_view piece, int along) {
            if (!piece.empty()) TextOut(zel::Add(x, along), y, piece.data(), static_cast<int>(piece.size()));
        });
        if (line.underlined >= 0) Underline(*this, formatter, line, x, y);
        y = Below(y, down, lineHeight);
    }
    SetTextAlign(align);
    if (clips) RestoreDC(-1);  // the attribute context counts its own levels
    return answer;
}
