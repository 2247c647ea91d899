#include "Support.h"

#include <zel/tables/Table.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <gmock/gmock.h>
#include <random>
#include <zlib.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zel::tables::Kind;
using zel::tables::ReadOptions;
using zel::tables::Table;

std::string Number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", value);
    return text;
}

// "2020-01-31" or "2020-01-31 10:00:00.5", by the calendar of the standard library.
std::string Moment(double seconds) {
    using namespace std::chrono;
    const double whole = std::floor(seconds);
    const sys_seconds at{std::chrono::seconds(static_cast<std::int64_t>(whole))};
    const auto day = floor<days>(at);
    const year_month_day date(day);
    const auto rest = (at - day).count();
    char text[60];
    int n = std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                          static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    const auto more = [&](auto... arguments) {
        n += std::snprintf(text + n, sizeof text - static_cast<std::size_t>(n), arguments...);
    };
    if (rest != 0 || seconds != whole)
        more(" %02d:%02d", static_cast<int>(rest / 3600), static_cast<int>(rest / 60 % 60));
    if (rest % 60 != 0 || seconds != whole) more(":%g", static_cast<double>(rest % 60) + seconds - whole);
    return text;
}

std::string Value(const zel::Column& column, std::size_t row) {
    const double value = column.At(row);
    if (std::isnan(value)) return "~";
    if (column.GetKind() == zel::Column::Kind::TIMES) return Moment(column.Origin() + value);
    if (column.GetKind() == zel::Column::Kind::TEXTS) return column.Names()[static_cast<std::size_t>(value)];
    return Number(value);
}

// Each column as "name kind[unit]: values", one behind the other.
std::string Described(const Table& table) {
    std::string text;
    for (std::size_t k = 0; k < table.Columns().size(); ++k) {
        const auto& facts = table.Columns()[k];
        text += (k ? "; " : "") + facts.name + " " + NameOf(facts.kind);
        if (!facts.unit.empty()) text += "[" + facts.unit + "]";
        text += ":";
        for (std::size_t row = 0; row < table.RowCount(); ++row) text += " " + Value(table.At(k), row);
    }
    return text;
}

std::string Understood(std::string_view bytes, const ReadOptions& options = {}) {
    return Described(Table::Parse(bytes, "a.csv", options));
}

TEST(Tables, UnderstandDelimitersAndDecimals) {
    EXPECT_EQ(Understood("a,b\n1,2.5\n3,-4e3\n"), "a number: 1 3; b number: 2.5 -4000");
    EXPECT_EQ(Understood("a;b\n1,5;2\n3,25;4\n"), "a number: 1.5 3.25; b number: 2 4");
    EXPECT_EQ(Understood("a\tb c\n1\tx, y\n2\tz\n"), "a number: 1 2; b c text: x, y z");
    EXPECT_EQ(Understood("a|b\n1|2\n"), "a number: 1; b number: 2");
    EXPECT_EQ(Understood("  t   v\n 1.0   2\n 10.5  -3\n"), "t number: 1 10.5; v number: 2 -3");
    EXPECT_EQ(Understood("a,b\r\n\"1,5\",2\r\n\"2,25\",3"), "a number: 1.5 2.25; b number: 2 3");
    EXPECT_EQ(Understood("n;v\nx;1.234,5\ny;12,5\n"), "n text: x y; v number: 1234.5 12.5");
    EXPECT_EQ(Understood("n,v\nx,\"1,234\"\ny,\"12,345,678\"\n"), "n text: x y; v number: 1234 12345678");
    EXPECT_EQ(Understood("n;v\nx;1 234,5\ny;1\u202F234\u202F567\nz;1'234\n"),
              "n text: x y z; v number: 1234.5 1234567 1234");
    EXPECT_EQ(Understood("a,b\n1,\u22122\n+3,(4)\n.5,5e-3\n"), "a number: 1 3 0.5; b number: -2 -4 0.005");
    EXPECT_EQ(Understood("a;b\n1,2;3\n", {.delimiter = ','}), "a;b number: 1")
        << "what is given is not found out";
    EXPECT_EQ(Understood("a;b\n1.234;3\n", {.decimal = ','}), "a number: 1234; b number: 3");
    EXPECT_EQ(Understood("size\n5\"\n6\"\n"), "size number[\"]: 5 6") << "inches are no quotes";
}

TEST(Tables, UnderstandUnitsAndMissingValues) {
    EXPECT_EQ(Understood("t,c,p\n12.5 °C,$ 3,45%\n-3 °C,$ 1200,7 %\n"),
              "t number[°C]: 12.5 -3; c number[$]: 3 1200; p number[%]: 45 7");
    EXPECT_EQ(Understood("c\n\"$ 3,000\"\n\"-$ 1,250.50\"\n($7)\n"), "c number[$]: 3000 -1250.5 -7");
    EXPECT_EQ(Understood("a,b\n1,NA\n,2\nn/a,-\n#N/A,3\nnull,NaN\n"),
              "a number: 1 ~ ~ ~ ~; b number: ~ 2 ~ 3 ~");
    EXPECT_EQ(Understood("a,b\n1,-999\n2,3\n", {.missing = {"-999"}}), "a number: 1 2; b number: ~ 3");
    EXPECT_EQ(Understood("ok,b\ntrue,1\nfalse,2\n"), "ok boolean: true false; b number: 1 2");
    EXPECT_EQ(Understood("code,b\nA12,1\nA13,2\n"), "code text: A12 A13; b number: 1 2");
    EXPECT_EQ(Understood("a,b\n,\n1,\n,\n2,\n"), "a number: 1 2; b value: ~ ~") << "rows of nothing are none";
}

TEST(Tables, UnderstandTimes) {
    const auto times = [](const std::string& cells, const ReadOptions& options = {}) {
        return Understood("when;n\n" + cells, options);
    };
    EXPECT_EQ(times("15.01.2020;1\n3.2.20;2\n"), "when time: 2020-01-15 2020-02-03; n number: 1 2");
    EXPECT_EQ(times("1/15/2020;1\n3/2/2020;2\n"), "when time: 2020-01-15 2020-03-02; n number: 1 2");
    EXPECT_EQ(times("15/1/2020;1\n3/2/2020;2\n"), "when time: 2020-01-15 2020-02-03; n number: 1 2");
    EXPECT_EQ(times("Jan 2020;1\nSept 2021;2\n"), "when time: 2020-01-01 2021-09-01; n number: 1 2");
    EXPECT_EQ(times("31 Jan 2020;1\n1-Feb-99;2\n"), "when time: 2020-01-31 1999-02-01; n number: 1 2");
    EXPECT_EQ(times("March 3, 2020 5:30 PM;1\nApril 1, 2020 12:00 AM;2\n"),
              "when time: 2020-03-03 17:30 2020-04-01; n number: 1 2");
    EXPECT_EQ(times("2020Q1;1\n2021-Q4;2\n"), "when time: 2020-01-01 2021-10-01; n number: 1 2");
    EXPECT_EQ(times("2020-W01;1\n2020-W53-7;2\n"), "when time: 2019-12-30 2021-01-03; n number: 1 2")
        << "the weeks of ISO 8601";
    EXPECT_EQ(times("2020-01;1\n2020-12;2\n"), "when time: 2020-01-01 2020-12-01; n number: 1 2");
    EXPECT_EQ(times("20200131;1\n20200201;2\n20200302;3\n"),
              "when time: 2020-01-31 2020-02-01 2020-03-02; n number: 1 2 3");
    EXPECT_EQ(times("2020-01-31T10:00:00.25Z;1\n2020-01-31 10:00+01:00;2\n"),
              "when time: 2020-01-31 10:00:0.25 2020-01-31 09:00; n number: 1 2");
    EXPECT_EQ(Understood("timestamp,n\n1577836800,1\n1577836801.5,2\n"),
              "timestamp time: 2020-01-01 2020-01-01 00:00:1.5; n number: 1 2");
    EXPECT_EQ(Understood("time,n\n1577836800000,1\n"), "time time: 2020-01-01; n number: 1");
    EXPECT_EQ(times("10:00;1\n1:02:03.5;2\n-0:30;3\n"), "when duration: 36000 3723.5 -1800; n number: 1 2 3");
    EXPECT_EQ(times("31.02.2020;1\n"), "when text: 31.02.2020; n number: 1") << "there is no such day";
    EXPECT_EQ(Understood("year,n\n2019,1\n2020,2\n"), "year number: 2019 2020; n number: 1 2");

    const Table open = Table::Parse("d,n\n3/4/2020,1\n5/6/2020,2\n", "a.csv");
    EXPECT_EQ(Described(open), "d time: 2020-03-04 2020-05-06; n number: 1 2");
    EXPECT_THAT(open.NotesOf(0), ElementsAre(HasSubstr("day or the month first")));
    const Table given =
        Table::Parse("d,n\n3/4/2020,1\n", "a.csv", {.dates = zel::tables::DateOrder::DAY_FIRST});
    EXPECT_EQ(Described(given), "d time: 2020-04-03; n number: 1");
    EXPECT_THAT(given.NotesOf(0), ElementsAre());
}

TEST(Tables, UnderstandHeadersAndWhatStandsAbove) {
    EXPECT_EQ(Understood("1,2\n3,4\n"), "column 1 number: 1 3; column 2 number: 2 4");
    EXPECT_EQ(Understood("x,1\ny,2\n"), "column 1 text: x y; column 2 number: 1 2");
    EXPECT_EQ(Understood("country,2001,2002,2003\nA,1,2,3\n"),
              "country text: A; 2001 number: 1; 2002 number: 2; 2003 number: 3");
    EXPECT_EQ(Understood("name,town\nAnn,Ulm\n"), "name text: Ann; town text: Ulm");
    EXPECT_EQ(Understood("Weather of a year\nmade yesterday\n\na,b,c\n1,2,3\n4,5,6\n"),
              "a number: 1 4; b number: 2 5; c number: 3 6");
    EXPECT_EQ(Understood("# a comment, with commas\n#\na,b\n1,2\n"), "a number: 1; b number: 2");
    EXPECT_EQ(Understood("a,a,\n1,2,3\n"), "a number: 1; a (2) number: 2; column 3 number: 3");
    EXPECT_EQ(Understood("junk\n1,2\n", {.header = false, .skip = 1}),
              "column 1 number: 1; column 2 number: 2");
    EXPECT_EQ(Understood("a,b\n1\n2,3\n"), "a number: 1 2; b number: ~ 3");
    const Table wide = Table::Parse("a,b\n1,2,3\n4,5,\n", "a.csv");
    EXPECT_EQ(Described(wide), "a number: 1 4; b number: 2 5");
    EXPECT_THAT(wide.Notes(), ElementsAre(HasSubstr("1 of 2 rows")));
}

TEST(Tables, UnderstandEncodings) {
    EXPECT_EQ(Understood("\xEF\xBB\xBF"
                         "ä,b\n1,2\n"),
              "ä number: 1; b number: 2");
    EXPECT_EQ(Understood("\xE4,b\n1,5 \x80\n2,6 \x80\n"), "ä number: 1 2; b number[€]: 5 6");
    const auto wide = [](std::u16string text, bool swapped) {
        std::string bytes;
        for (const char16_t c : text) {
            const char low = static_cast<char>(c & 0xFF), high = static_cast<char>(c >> 8);
            bytes += swapped ? high : low;
            bytes += swapped ? low : high;
        }
        return bytes;
    };
    EXPECT_EQ(Understood(wide(u"\uFEFFä;b\r\n1,5;2\r\n", false)), "ä number: 1.5; b number: 2");
    EXPECT_EQ(Understood(wide(u"\uFEFFä;b\r\n1,5;2\r\n", true)), "ä number: 1.5; b number: 2");
    EXPECT_EQ(Understood(wide(u"abc,b\n1,2\n", false)), "abc number: 1; b number: 2") << "without a mark";
    EXPECT_EQ(Understood("\xE4,b\n1,2\n", {.encoding = "ISO-8859-2"}), "ä number: 1; b number: 2");
    EXPECT_THROW(Understood("a,b\n1,2\n", {.encoding = "no such"}), zel::Error);
}

TEST(Times, AreReadAlone) {
    for (const auto& [text, moment] :
         {std::pair("2013", "2013-01-01"), std::pair(" 31.1.2013", "2013-01-31"),
          std::pair("2013-02-01 10:00", "2013-02-01 10:00"), std::pair("Feb 2013", "2013-02-01"),
          std::pair("2013Q2", "2013-04-01")})
        EXPECT_EQ(Moment(zel::tables::TimeOf(text).value_or(0)), moment);
    EXPECT_EQ(zel::tables::TimeOf("x"), std::nullopt);
    EXPECT_EQ(Moment(*zel::tables::TimeOf("3/4/2013", zel::tables::DateOrder::MONTH_FIRST)), "2013-03-04");
}

// What the beginning shows is not what the rest is.
TEST(Tables, LookAtTheWholeColumn) {
    std::string text = "date,id\n";
    for (int i = 0; i < 200000; ++i) text += "3/4/2020,1\n";
    const std::size_t rows = 200000;
    Table table = Table::Parse(text + "31/12/2020,A7\n", "a.csv");
    EXPECT_EQ(Moment(table.At(0).Origin() + table.At(0).At(0)), "2020-04-03") << "one day decides for all";
    EXPECT_EQ(table.Columns()[0].unread, 0U);
    EXPECT_EQ(table.Columns()[1].kind, Kind::NUMBER);
    ASSERT_EQ(table.Columns()[1].unread, 1U);
    EXPECT_EQ(table.Columns()[1].examples[0].text, "A7");
    EXPECT_EQ(table.Columns()[1].examples[0].row, rows + 1);
    EXPECT_THAT(table.NotesOf(1), ElementsAre(HasSubstr("\"A7\" in row 200001")));

    for (int i = 0; i < 300000; ++i) text += "5/6/2020,B\n";
    table = Table::Parse(text, "a.csv");
    EXPECT_EQ(table.Columns()[1].kind, Kind::TEXT);
    EXPECT_EQ(Value(table.At(1), 0), "1");
    EXPECT_EQ(Value(table.At(1), 499999), "B");
}

TEST(Tables, ComeFromFilesThatAreCompressedToo) {
    const zel::test::TemporaryFolder folder;
    const std::string path = folder / "a.csv.gz";
    const std::string text = "a,b\n1,\"x\ny\"\n2,\"say \"\"so\"\"\"\n";
    gzFile file = gzopen(path.c_str(), "wb");
    gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    gzclose(file);
    const Table table = Table::Read(path, {.keepTexts = true});
    EXPECT_EQ(Described(table), "a number: 1 2; b text: x\ny say \"so\"");
    EXPECT_EQ(table.Text(1, 1), "say \"so\"");
    EXPECT_EQ(table.Text(1, 2), "");
    const std::string whole = zel::test::Content(path);
    std::ofstream(path, std::ios::binary) << whole.substr(0, whole.size() - 12);
    EXPECT_THAT(zel::test::MessageOf<zel::FormatError>([&] { Table::Read(path); }), HasSubstr("a.csv.gz"));
}

// Whatever the bytes, a table has as many values in each column as rows, or there is an error.
TEST(Tables, TakeAnyBytes) {
    const std::string seeds[] = {"a,b\n1,\"x\ny\"\n2,\"say \"\"so\"\"\"\n",
                                 "when;v\n15.01.2020;1.234,5 \u20AC\n3/4/20;(7)\n",
                                 "# c\nt  v\n10:00 5\n1d 02:03 -\n", "2020-W53-7\t2020Q1\tJan 2020\n\t\t\n"};
    using namespace std::string_literals;
    const std::string bytes = "\"\n\r,;\t |#0129.-+:/ \xC3\xFF\x00WQaZ'$%("s;
    std::mt19937 random(7);
    for (int i = 0; i < 4000; ++i) {
        std::string text = seeds[random() % 4];
        for (unsigned k = 0; k <= random() % 12; ++k) {
            const std::size_t at = random() % text.size();
            switch (random() % 3) {
                case 0:
                    text[at] = bytes[random() % bytes.size()];
                    break;
                case 1:
                    text.insert(at, 1, bytes[random() % bytes.size()]);
                    break;
                default:
                    text.insert(at, text.substr(random() % text.size(), random() % 20));
                    break;
            }
        }
        try {
            const Table table = Table::Parse(text, "any", {.keepTexts = true});
            for (std::size_t c = 0; c < table.Columns().size(); ++c) {
                const auto& facts = table.Columns()[c];
                ASSERT_EQ(table.At(c).Size(), table.RowCount()) << text;
                ASSERT_EQ(facts.present + facts.missing + facts.unread, table.RowCount()) << text;
            }
        } catch (const zel::FormatError& e) {
            EXPECT_THAT(e.what(), HasSubstr("any"));
        }
    }
}

TEST(Tables, FailWithAReason) {
    const auto message = [](const std::string& bytes) {
        return zel::test::MessageOf<zel::FormatError>([&] { Table::Parse(bytes, "a.csv"); });
    };
    EXPECT_THAT(message(""), HasSubstr("header"));
    EXPECT_THAT(message("\n\n"), HasSubstr("header"));
    EXPECT_THAT(message(std::string("a,b\n1,\0\n", 8)), HasSubstr("no text has"));
    EXPECT_THAT(message("a,b\n1,\"x\n"), testing::AllOf(HasSubstr("row 2"), HasSubstr("quote")));
    EXPECT_THAT(zel::test::MessageOf<zel::FileError>([] { Table::Read("/no/such.csv"); }),
                HasSubstr("No such file"));
    EXPECT_THAT(zel::test::MessageOf<zel::FileError>([] { Table::Read("/tmp"); }), HasSubstr("directory"));
    const Table table = Table::Parse("a,b\n1,2\n", "a.csv");
    EXPECT_EQ(table.IndexOf("b"), 1U);
    EXPECT_EQ(table.IndexOf("2"), 1U);
    EXPECT_THAT(zel::test::MessageOf<zel::Error>([&] { table.IndexOf("c"); }), HasSubstr("a, b"));
}

}  // namespace
