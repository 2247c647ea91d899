// The scale of an axis: which value lies where, and which values are marked and labelled.
#pragma once

#include <zel/SeriesPoints.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zel {

class TimeZone;

// How numbers become label texts. The texts are the same in every locale.
struct NumberFormat {
    enum class Factor {
        POWERS,  // large and small numbers share a power of ten beside the axis (×10⁶)
        SI,      // each label ends with an SI prefix (k, M, G, m, µ, ...)
        NONE     // every digit is written
    };
    Factor factor = Factor::POWERS;
    int decimals = -1;       // -1: as many as tell neighbours apart
    bool percent = false;    // 0.25 is written 25 %
    std::string grouping{};  // between groups of three digits, such as "," or a thin space
    std::string prefix{};    // before each number, such as "$"
    std::string suffix{};    // behind each number, such as " °C"
    // Writes a value instead of all of the above. Documents do not store it.
    std::function<std::string(double)> function{};
};

// A labelled position.
struct Tick {
    double value = 0;
    std::string label{};
    // What several neighbours have in common, such as the month of days, written below where it begins;
    // mostly empty.
    std::string context{};

    bool operator==(const Tick&) const = default;
};

struct Ticks {
    std::vector<Tick> major;    // ascending by value
    std::vector<double> minor;  // ascending, none of them major
    std::string factor;         // what all labels are to be multiplied by, such as "×10⁶"; or empty
};

// The room for the labels of an axis. Lengths in any one unit.
struct TickRoom {
    double length = 0;  // of the axis
    // How much of the axis a label takes, along the axis.
    std::function<double(const std::string&)> extent{};
    double gap = 0;       // kept free between two labels, at least
    double distance = 0;  // wanted between two ticks
    // Whether the ends are to stay as they are, or may lie between two labels as the data has it.
    bool endsAreGiven = false;
};

// A value: copy it freely. Ends, a kind, and what follows from them: where a value lies between the ends,
// which value lies at a place, and which values to label.
//
// The first end may be the larger one: the axis is reversed then, and places count from the first end all
// the same. Ends that are equal, not finite, or have no place on the kind of scale are replaced by ones
// around or near them (see WithUsableEnds); nothing fails.
class Scale {
  public:
    // Stored in documents by number.
    enum class Kind : int {
        LINEAR = 0,
        LOGARITHM = 1,            // values of one sign
        SYMMETRIC_LOGARITHM = 2,  // linear within ±threshold, logarithmic beyond
        SQUARE_ROOT = 3,          // values from 0 on
        FUNCTION = 4,             // a pair of functions of the host
        TIME = 5,                 // seconds since 1970-01-01 00:00 UTC, leap seconds not counted
        DURATION = 6,             // seconds
        CATEGORIES = 7            // the category with index i reaches from i - 0.5 to i + 0.5
    };
    using Function = std::function<double(double)>;

    // Linear, from 0 to 1.
    Scale() = default;
    static Scale Linear(double from, double to);
    // `base` is more than 1; 2, e and 10 have labels of their own. Both ends should have the same sign.
    static Scale Logarithm(double from, double to, double base = 10);
    // As asinh(v / (2 threshold)); `threshold` is more than 0.
    static Scale SymmetricLogarithm(double from, double to, double threshold = 1);
    static Scale SquareRoot(double from, double to);
    // `forward` must be strictly increasing wherever it is finite, and `inverse` undo it. A name under which
    // the pair was registered (RegisterFunction) is stored in documents; without one, what is loaded is
    // linear.
    static Scale WithFunction(double from, double to, Function forward, Function inverse,
                              std::string name = {});
    // `zone` is a name of the time zone database, such as "Europe/Berlin". Throws zel::Error when there is no
    // such zone.
    static Scale Time(double from, double to, const std::string& zone = "UTC");
    static Scale Duration(double from, double to);
    static Scale Categories(std::vector<std::string> names);

    // Makes the pair known under a name, for documents that use it. Not while drawings are loaded.
    static void RegisterFunction(const std::string& name, Function forward, Function inverse);

    Kind GetKind() const { return kind_; }
    double From() const { return from_; }
    double To() const { return to_; }
    double Low() const { return from_ < to_ ? from_ : to_; }
    double High() const { return from_ < to_ ? to_ : from_; }
    bool IsReversed() const { return from_ > to_; }
    double Base() const { return base_; }
    double Threshold() const { return threshold_; }
    const std::string& Zone() const { return zoneName_; }
    // Times: what all values of the scale are counted from, in whole seconds since 1970; 0 unless set. Near
    // it, doubles tell nanoseconds apart.
    double Origin() const { return origin_; }
    Scale WithOrigin(double origin) const;
    const std::string& FunctionName() const { return functionName_; }
    const std::vector<std::string>& Names() const;

    // The same kind of scale between other ends.
    Scale WithEnds(double from, double to) const;
    // The same kind in the other direction.
    Scale Reversed() const { return WithEnds(to_, from_); }
    // Ends between which something can be drawn: different, finite, and with a place on this kind of scale.
    // Usable ends stay as they are, to the last digit.
    Scale WithUsableEnds() const;
    // Ends moved outwards to round values, or by nothing where that would change much. Time and categories
    // stay as they are.
    Scale WithRoundEnds() const;

    // Where a value lies between the ends: 0 at From(), 1 at To(); none when it has no place, such as the
    // logarithm of 0. Outside the ends places go on below 0 and above 1.
    std::optional<double> PlaceOf(double value) const;
    // The value at a place.
    double ValueAt(double place) const;
    bool HasPlace(double value) const;

    // The increasing function that makes the scale linear, NaN without a place. Identity on linear scales,
    // times, durations and categories.
    double Forward(double value) const;
    double Inverse(double u) const;
    // Forward for many values at once; null where it is the identity. Lives as long as some copy of it.
    std::shared_ptr<const SeriesTransform> Transform() const;

    // Positions and labels that fit: no two labels of `room` overlap, and there are at least two where two
    // fit. All lie between the ends.
    Ticks MakeTicks(const TickRoom& room, const NumberFormat& format = {}) const;
    // The text of one value in the manner of this scale, with digits for steps of `resolution`: for
    // read-outs.
    std::string TextOf(double value, double resolution, const NumberFormat& format = {}) const;

  private:
    Scale(Kind kind, double from, double to) : kind_(kind), from_(from), to_(to) {}

    Kind kind_ = Kind::LINEAR;
    double from_ = 0;
    double to_ = 1;
    double base_ = 10;
    double threshold_ = 1;
    double origin_ = 0;
    Function forward_, inverse_;
    std::string functionName_;
    std::string zoneName_;
    const TimeZone* zone_ = nullptr;  // lives as long as the program
    std::shared_ptr<const std::vector<std::string>> names_;
};

}  // namespace zel
