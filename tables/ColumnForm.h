// What the cells of a column hold, and how they are written.
#pragma once

#include "tables/Numbers.h"
#include "tables/Times.h"

#include <zel/tables/Table.h>

#include <string>
#include <string_view>
#include <vector>

namespace zel::tables {

struct ColumnForm {
    Kind kind = Kind::EMPTY;
    NumberForm number{};
    TimeForm time = TimeForm::YEAR_FIRST;
    bool isAmbiguous = false;  // dates could have day and month exchanged

    bool operator==(const ColumnForm& other) const {
        return kind == other.kind && time == other.time && number.prefix == other.number.prefix &&
               number.suffix == other.number.suffix;
    }
};

// The form that fits most of a column's cells, which are trimmed and not missing.
ColumnForm FormOf(const std::vector<std::string_view>& cells, const std::string& name, char decimal,
                  std::optional<DateOrder> dates);

// Texts that stand for no value, in columns of any kind and in those that are not of texts.
bool IsMissing(std::string_view text);
bool IsMissingValue(std::string_view text);

}  // namespace zel::tables
