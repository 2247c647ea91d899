#include "RandomDrawing.h"
#include "Support.h"

#include <zel/Column.h>
#include <zel/Error.h>
#include <zel/platform/File.h>

#include <limits>

namespace {

using zel::Column;

constexpr std::int64_t kAbsent = std::numeric_limits<std::int64_t>::min();

template <class T>
void ExpectEveryType(T low, T high) {
    const std::vector<T> numbers{low, T(3), high};
    const Column owned(numbers);
    EXPECT_EQ(owned.At(0), static_cast<double>(low));
    EXPECT_EQ(owned.At(1), 3);
    EXPECT_EQ(owned.At(2), static_cast<double>(high));
    // Every second of the numbers, in the host's memory.
    const Column view = Column::View(std::span<const T>(numbers).first(2), 2 * sizeof(T));
    EXPECT_EQ(view.At(1), static_cast<double>(high));
}

TEST(Column, takes_numbers_of_every_type) {
    ExpectEveryType<double>(-1e300, 1e300);
    ExpectEveryType<float>(-2.5F, 2.5F);
    ExpectEveryType<std::int8_t>(-128, 127);
    ExpectEveryType<std::uint8_t>(0, 255);
    ExpectEveryType<std::int16_t>(-32'768, 32'767);
    ExpectEveryType<std::uint16_t>(0, 65'535);
    ExpectEveryType<std::int32_t>(-5, 2'000'000'000);
    ExpectEveryType<std::uint32_t>(0, 4'000'000'000);
    ExpectEveryType<std::int64_t>(-5, 1LL << 52);
    ExpectEveryType<std::uint64_t>(0, 1ULL << 63);
    EXPECT_TRUE(std::isnan(Column(std::vector<std::int64_t>{kAbsent}).At(0)));
}

TEST(Column, keeps_nanoseconds) {
    // Half a microsecond apart, in the year 2020: doubles of seconds cannot tell these apart.
    const std::int64_t second = 1'600'000'000'000'000'000;
    const Column times = Column::Times({kAbsent, second + 100, second + 600}, 1'000'000'000);
    EXPECT_EQ(times.Origin(), 1'600'000'000);
    EXPECT_TRUE(std::isnan(times.At(0)));
    EXPECT_DOUBLE_EQ(times.At(2) - times.At(1), 500e-9);
    EXPECT_EQ(times.ValuesFrom(1'599'999'999).At(1), 1 + 100e-9);
    EXPECT_THROW(Column::Times({1}, 0), zel::Error);
}

TEST(Column, counts_texts_in_order_of_appearance) {
    const Column texts(std::vector<std::string>{"b", "a", "", "b"});
    EXPECT_EQ(texts.Names(), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(texts.At(0), 0);
    EXPECT_EQ(texts.At(1), 1);
    EXPECT_TRUE(std::isnan(texts.At(2)));
    EXPECT_EQ(texts.At(3), 0);
}

TEST(Column, hands_out_some_of_its_rows) {
    const std::vector<std::size_t> rows{2, 0, 2};
    const Column numbers = Column(std::vector<int>{4, 5, 6}).SetName("n").Rows(rows);
    EXPECT_EQ(numbers.Name(), "n");
    EXPECT_EQ(numbers.At(0) * 100 + numbers.At(1) * 10 + numbers.At(2), 646);
    const Column times = Column::Times({7'000'000'001, 5, 9'000'000'002}, 1'000'000'000).Rows(rows);
    EXPECT_EQ(times.Origin(), 9);
    EXPECT_NEAR(times.At(0), 2e-9, 1e-18) << "to the nanosecond";
    EXPECT_NEAR(times.At(1), -2 + 1e-9, 1e-15);
    const Column texts = Column(std::vector<std::string>{"a", "b", "c"}).Rows(rows);
    EXPECT_EQ(texts.Names()[static_cast<std::size_t>(texts.At(0))], "c");
    EXPECT_EQ(texts.Size(), 3U);
    EXPECT_THROW(numbers.Rows(std::vector<std::size_t>{3}), zel::Error);
}

TEST(Column, comes_back_from_archives) {
    for (Column stored :
         {Column(std::vector<float>{1, 2.5F}),
          Column::Times({kAbsent, 1'600'000'000'000'000'123, std::numeric_limits<std::int64_t>::max()},
                        1'000'000'000),
          Column(std::vector<std::string>{"x", "", "y"}), Column()}) {
        stored.SetName("name").SetUnit("unit");
        CMemFile file;
        {
            CArchive ar(&file, CArchive::store);
            stored.Serialize(ar);
            ar.Close();
        }
        file.Seek(0, CFile::begin);
        CArchive ar(&file, CArchive::load);
        Column loaded;
        loaded.Serialize(ar);
        ASSERT_EQ(loaded.Size(), stored.Size());
        EXPECT_EQ(loaded.GetKind(), stored.GetKind());
        EXPECT_EQ(loaded.Names(), stored.Names());
        EXPECT_EQ(loaded.Origin(), stored.Origin());
        EXPECT_EQ(loaded.Name() + loaded.Unit(), "nameunit");
        for (std::size_t i = 0; i < loaded.Size(); ++i)
            EXPECT_TRUE(loaded.At(i) == stored.At(i) ||
                        (std::isnan(loaded.At(i)) && std::isnan(stored.At(i))))
                << i;
    }
}

}  // namespace
