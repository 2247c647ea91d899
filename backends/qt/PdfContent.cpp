#include "backends/qt/PdfContent.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <set>

namespace zel::qt {
namespace {

constexpr int kDigits = 3;  // behind the point

void Append(std::string& text, double number) {
    char digits[64];
    const double rounded = std::round(number * 1000) / 1000;
    char* end =
        std::to_chars(std::begin(digits), std::end(digits), rounded + 0.0, std::chars_format::fixed, kDigits)
            .ptr;
    while (end[-1] == '0') --end;
    if (end[-1] == '.') --end;
    text.append(digits, end);
    text += ' ';
}

void Append(std::string& text, std::initializer_list<double> numbers, const char* operation) {
    for (const double number : numbers) Append(text, number);
    text += operation;
    text += '\n';
}

void AppendPath(std::string& text, const QPainterPath& path) {
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element at = path.elementAt(i);
        if (at.isCurveTo()) {
            const QPainterPath::Element second = path.elementAt(i + 1), end = path.elementAt(i + 2);
            Append(text, {at.x, at.y, second.x, second.y, end.x, end.y}, "c");
            i += 2;
        } else {
            Append(text, {at.x, at.y}, at.isMoveTo() ? "m" : "l");
        }
    }
}

QColor ColorOf(const MarkPiece& piece) {
    return piece.brush.style() == Qt::NoBrush ? piece.pen.color() : piece.brush.color();
}

void AppendPen(std::string& text, const QPen& pen) {
    Append(text, {pen.widthF()}, "w");
    Append(text, {pen.capStyle() == Qt::RoundCap ? 1.0 : 0.0}, "J 1 j");
    text += "[";
    if (pen.style() == Qt::CustomDashLine)
        for (const double length : pen.dashPattern()) Append(text, length * pen.widthF());
    text += "] 0 d\n";
}

std::string BoxText(const QRectF& box) {
    std::string text = "/BBox [";
    for (const double side : {box.left(), box.top(), box.right(), box.bottom()}) Append(text, side);
    return text + "]\n";
}

}  // namespace

PdfStream FormOf(std::span<const MarkPiece> pieces) {
    PdfStream form;
    std::set<int> alphas;
    for (const MarkPiece& piece : pieces) {
        const QColor color = ColorOf(piece);
        const bool fills = piece.brush.style() != Qt::NoBrush;
        alphas.insert(color.alpha());
        form.content += "/A" + std::to_string(color.alpha()) + " gs\n";
        Append(form.content, {color.redF(), color.greenF(), color.blueF()}, fills ? "rg" : "RG");
        if (!fills) AppendPen(form.content, piece.pen);
        AppendPath(form.content, piece.path);
        form.content += !fills ? "S\n" : piece.path.fillRule() == Qt::WindingFill ? "f\n" : "f*\n";
    }
    form.dictionary =
        "/Type /XObject\n/Subtype /Form\n" + BoxText(ReachOf(pieces)) + "/Resources << /ExtGState <<";
    for (const int alpha : alphas) {
        form.dictionary += " /A" + std::to_string(alpha) + " << ";
        for (const char* name : {"/CA ", "/ca "}) {
            form.dictionary += name;
            Append(form.dictionary, alpha / 255.0);
        }
        form.dictionary += ">>";
    }
    form.dictionary += " >> >>\n";
    return form;
}

PdfStream FormOf(int mark, const QRectF& reach, std::span<const CPoint> places, double unit) {
    PdfStream form;
    CPoint before;
    QRectF area;
    for (const CPoint& at : places) {
        form.content += "1 0 0 1 ";
        for (const LONG step : {at.x - before.x, at.y - before.y}) {
            char digits[16];
            form.content.append(digits, std::to_chars(std::begin(digits), std::end(digits), step).ptr);
            form.content += ' ';
        }
        form.content += "cm/M Do\n";
        before = at;
        area |= reach.translated(at.x, at.y);
    }
    std::string matrix;
    for (const double number : {1 / unit, 0.0, 0.0, -1 / unit, 0.0, 1.0}) Append(matrix, number);
    form.dictionary = "/Type /XObject\n/Subtype /Form\n" + BoxText(area) + "/Matrix [" + matrix +
                      "]\n/Resources << /XObject << /M " + std::to_string(mark) + " 0 R >> >>\n";
    return form;
}

}  // namespace zel::qt
