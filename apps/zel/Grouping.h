// Series of a table in long form, where a column says to which series a row belongs.
#pragma once

#include "apps/zel/Figure.h"

#include <string>
#include <vector>

namespace zel::cli {

// Each of `series` once for every value of `group`, in order of appearance, named by it. Rows without a value
// are left out. Throws Error for more than 200 of them.
std::vector<Series> Grouped(const std::vector<Series>& series, const Column& group);

}  // namespace zel::cli
