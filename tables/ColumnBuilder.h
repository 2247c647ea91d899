// The values of a column, cell by cell.
#pragma once

#include "tables/ColumnForm.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zel::tables {

class ColumnBuilder {
  public:
    // `missing` (borrowed) are texts that stand for no value too.
    ColumnBuilder(std::string name, ColumnForm form, const std::vector<std::string>& missing);

    // A trimmed cell of row `row`, from 1.
    void Add(std::string_view cell, std::size_t row);
    void AddMissing();
    std::size_t Size() const;

    const ColumnForm& Form() const { return form_; }
    const ColumnFacts& Facts() const { return facts_; }
    // The column; the builder is empty afterwards.
    Column Finish();

  private:
    bool Take(std::string_view cell);
    void TakeTime(const Instant& time);
    void TakeText(std::string_view cell);
    void Scale(std::int64_t perSecond);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    ColumnForm form_;
    ColumnFacts facts_;
    const std::vector<std::string>* missing_;
    std::vector<double> numbers_;
    std::vector<std::int64_t> ticks_;
    std::int64_t perSecond_ = 1;
    std::vector<std::int32_t> codes_;
    std::vector<std::string> names_;
    std::unordered_map<std::string, std::int32_t, Hash, std::equal_to<>> known_;
};

}  // namespace zel::tables
