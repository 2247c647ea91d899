// A figure for a table of which nothing but the columns is known.
#pragma once

#include "apps/zel/Figure.h"

#include <zel/tables/Table.h>

#include <string>
#include <vector>

namespace zel::cli {

struct Proposal {
    FigureKind kind = FigureKind::LINES;
    std::string x;  // columns; empty for a histogram
    std::vector<std::string> ys;
    std::string group;    // the column that says to which series a row belongs; empty without one
    bool points = false;  // marks instead of lines

    // "precipitation, wind along date, as lines".
    std::string Words() const;
};

// Chooses by the kinds of columns: what is measured along the time, or along numbers that ascend, as lines;
// of two numbers in any order the points; what is measured of each name as bars; one number alone as a
// histogram. Throws Error when no column holds numbers.
Proposal ProposalFor(const tables::Table& table);

// The columns of numbers and durations but `except`, as many as can be told apart in one figure.
std::vector<std::string> MeasuresOf(const tables::Table& table, const std::string& except);

// The column of words that tells rows with the same x apart; empty when x never comes back or none does.
std::string GroupOf(const tables::Table& table, const Column& x);

}  // namespace zel::cli
