#include "Support.h"

#include <zel/platform/DC.h>
#include <zel/platform/Metafile.h>
#include <zel/platform/RecordingDevice.h>

#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using zel::test::MessageOf;

namespace {

struct Record {
    WORD function;
    std::vector<std::int16_t> words;
    friend bool operator==(const Record&, const Record&) = default;
};

std::vector<Record> RecordsOf(const std::vector<std::uint8_t>& bytes) {
    std::vector<std::int16_t> words(bytes.size() / 2);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    std::vector<Record> records;
    for (std::size_t at = 9; at < words.size();) {
        const std::size_t size =
            static_cast<WORD>(words[at]) | static_cast<std::size_t>(static_cast<WORD>(words[at + 1])) << 16;
        records.push_back({static_cast<WORD>(words[at + 2]),
                           {words.begin() + static_cast<std::ptrdiff_t>(at) + 3,
                            words.begin() + static_cast<std::ptrdiff_t>(at + size)}});
        at += size;
    }
    return records;
}

template <class Draw>
std::vector<std::uint8_t> Recorded(Draw draw) {
    zel::MetricsDevice attributes;
    CDC attributeDc(attributes);
    CMetaFileDC dc;
    dc.Create();
    dc.SetAttribDC(attributeDc.m_hDC);
    draw(dc);
    const HMETAFILE metafile = dc.Close();
    const std::vector<std::uint8_t> bytes = GetMetaFileBits(metafile);
    DeleteMetaFile(metafile);
    return bytes;
}

TEST(Metafile, WritesRecordsWithReversedParameters) {
    const auto bytes = Recorded([](CDC& dc) {
        dc.SetMapMode(MM_ANISOTROPIC);
        dc.SetWindowExt(300, 200);
        CPen pen(PS_SOLID, 2, RGB(1, 2, 3));
        CPen* previous = dc.SelectObject(&pen);
        dc.MoveTo(1, 2);
        dc.LineTo(3, 4);
        dc.LineTo(40'000, 4);
        dc.SelectObject(previous);
    });
    const std::vector<Record> records = RecordsOf(bytes);
    EXPECT_THAT(records,
                testing::ElementsAre(Record{0x0103, {8}}, Record{0x020B, {0, 0}}, Record{0x020C, {200, 300}},
                                     Record{0x02FA, {0, 2, 0, 0x0201, 3}}, Record{0x012D, {0}},
                                     Record{0x0325, {3, 1, 2, 3, 4, 32767, 4}}, Record{0, {}}));
    const WORD header[] = {1, 9, 0x0300, static_cast<WORD>(bytes.size() / 2), 0, 1, 10, 0, 0};
    EXPECT_EQ(std::memcmp(bytes.data(), header, sizeof header), 0);
}

TEST(Metafile, KeepsWordsWholeAndUsesObjectsAgain) {
    const auto records = RecordsOf(Recorded([](CDC& dc) {
        const zel::TextSpan run[] = {{"1", {10, 5}}, {"\xC2\xB0", {19, 5}}, {"C", {25, 5}}};
        dc.TextRun(run);
        const zel::TextSpan stair[] = {{"a", {10, 5}}, {"b", {19, 9}}};
        dc.TextRun(stair);
    }));
    EXPECT_THAT(records, testing::Contains(Record{
                             0x0A32, {5, 10, 3, 0, static_cast<std::int16_t>(0xB031), 0x43, 9, 6, 10}}));
    EXPECT_THAT(records, testing::Contains(Record{0x0521, {1, 'a', 5, 10}}));
    EXPECT_THAT(records, testing::Contains(Record{0x0521, {1, 'b', 9, 19}}));
    EXPECT_EQ(
        std::count_if(records.begin(), records.end(), [](const Record& r) { return r.function == 0x02FB; }),
        1);
}

TEST(Metafile, BracketsClips) {
    const auto records = RecordsOf(Recorded([](CDC& dc) {
        dc.SaveDC();
        dc.IntersectClipRect(1, 2, 30, 40);
        dc.Rectangle(5, 6, 7, 8);
        dc.RestoreDC(-1);
        dc.Rectangle(9, 10, 11, 12);
    }));
    std::vector<WORD> functions;
    for (const Record& record : records) functions.push_back(record.function);
    EXPECT_THAT(functions, testing::ElementsAre(0x001E, 0x0416, 0x02FA, 0x012D, 0x02FC, 0x012D, 0x041B,  //
                                                0x0127, 0x012D, 0x012D, 0x041B, 0));
    EXPECT_EQ(records[1].words, (std::vector<std::int16_t>{40, 30, 2, 1}));
}

// The records whose function is one of `wanted`.
std::vector<Record> Only(std::vector<Record> records, std::initializer_list<WORD> wanted) {
    std::erase_if(records, [&](const Record& r) {
        return std::find(wanted.begin(), wanted.end(), r.function) == wanted.end();
    });
    return records;
}

constexpr std::initializer_list<WORD> kMapping = {0x0103, 0x020B, 0x020C, 0x020D, 0x020E};

TEST(Metafile, RecordsTheMappingOfEveryMode) {
    const auto shifted = Only(RecordsOf(Recorded([](CDC& dc) {
                                  dc.SetWindowOrg(100, 50);
                                  dc.Rectangle(100, 50, 200, 150);
                                  dc.SetWindowOrg(0, 0);
                                  dc.Rectangle(0, 0, 10, 10);
                              })),
                              kMapping);
    EXPECT_THAT(shifted, testing::ElementsAre(Record{0x020B, {50, 100}}, Record{0x020B, {0, 0}}));
    const auto metric = Only(RecordsOf(Recorded([](CDC& dc) {
                                 dc.SetMapMode(MM_LOMETRIC);
                                 dc.Rectangle(0, 0, 100, -100);
                             })),
                             kMapping);
    EXPECT_THAT(metric, testing::ElementsAre(Record{0x0103, {2}})) << "the mode says it all";
    const auto zoomed = Only(RecordsOf(Recorded([](CDC& dc) {
                                 dc.SetMapMode(MM_ANISOTROPIC);
                                 dc.SetWindowExt(100, 100);
                                 dc.SetViewportExt(200, 200);
                                 dc.Rectangle(0, 0, 10, 10);
                                 dc.SetViewportExt(100, 100);
                                 dc.Rectangle(0, 0, 10, 10);
                             })),
                             {0x020E});
    EXPECT_THAT(zoomed, testing::ElementsAre(Record{0x020E, {200, 200}}, Record{0x020E, {100, 100}}));
}

TEST(Metafile, KeepsTheShapeOfAClip) {
    const auto records = Only(RecordsOf(Recorded([](CDC& dc) {
                                  dc.SetMapMode(MM_LOMETRIC);
                                  dc.IntersectClipRect(0, 0, 1000, -1000);
                                  dc.ExcludeClipRect(200, -200, 400, -400);
                                  dc.Rectangle(0, 0, 1000, -1000);
                              })),
                              {0x0416, 0x0415});
    ASSERT_EQ(records.size(), 2U);
    const auto near = [](std::int16_t a, std::int16_t b) { return std::abs(a - b) <= 3; };  // a device unit
    EXPECT_EQ(records[0].function, 0x0416);
    EXPECT_THAT(records[0].words,
                testing::Pointwise(testing::Truly([&](const auto& p) { return near(get<0>(p), get<1>(p)); }),
                                   std::vector<std::int16_t>{-1000, 1000, 0, 0}));
    EXPECT_EQ(records[1].function, 0x0415);
    EXPECT_THAT(records[1].words,
                testing::Pointwise(testing::Truly([&](const auto& p) { return near(get<0>(p), get<1>(p)); }),
                                   std::vector<std::int16_t>{-400, 400, -200, 200}));
}

TEST(Metafile, GivesHatchedFillsTheirGround) {
    const auto records = Only(RecordsOf(Recorded([](CDC& dc) {
                                  CBrush hatch(HS_CROSS, RGB(1, 2, 3));
                                  dc.SetBkMode(TRANSPARENT);
                                  const CRect box(0, 0, 10, 10);
                                  dc.FillRect(&box, &hatch);
                              })),
                              {0x0102});
    EXPECT_THAT(records, testing::ElementsAre(Record{0x0102, {TRANSPARENT}}));
}

TEST(Metafile, ClosesOnlyRecorders) {
    zel::RecordingDevice device;
    CDC dc(device);
    EXPECT_EQ(CloseMetaFile(dc.m_hDC), nullptr);
    dc.Rectangle(1, 2, 3, 4);
    EXPECT_THAT(device.Text(), testing::HasSubstr("rectangle 1,2 3,4")) << "the context lives on";
}

TEST(Metafile, ReplacesObjectsWhenThereAreVeryMany) {
    const auto records = RecordsOf(Recorded([](CDC& dc) {
        for (int i = 0; i < 500; ++i) {
            CPen pen(PS_SOLID, 1, static_cast<COLORREF>(i));
            CPen* previous = dc.SelectObject(&pen);
            dc.MoveTo(0, 0);
            dc.LineTo(i + 1, 1);
            dc.SelectObject(previous);
        }
    }));
    int alive = 0, most = 0;
    for (const Record& record : records) {
        if (record.function == 0x02FA) most = std::max(most, ++alive);
        if (record.function == 0x01F0) --alive;
    }
    EXPECT_LE(most, 64);
}

TEST(Metafile, HasThePublishedPlaceableHeader) {
    const auto header = zel::PlaceableHeader(CRect(0, 0, 1200, 800), 1440);
    const std::array<std::uint8_t, 22> expected{0xD7, 0xCD, 0xC6, 0x9A, 0,    0, 0, 0, 0, 0,    0xB0,
                                                0x04, 0x20, 0x03, 0xA0, 0x05, 0, 0, 0, 0, 0x21, 0x55};
    EXPECT_EQ(header, expected);
}

TEST(Metafile, IsReadByAnotherProgram) {
    const zel::test::TemporaryFolder folder;
    const auto bytes = Recorded([](CDC& dc) {
        dc.SetMapMode(MM_ANISOTROPIC);
        dc.SetWindowExt(1000, 1000);
        dc.SetViewportExt(1000, 1000);
        CBrush red(RGB(255, 0, 0));
        CBrush* previous = dc.SelectObject(&red);
        dc.Rectangle(100, 100, 500, 400);
        dc.SelectObject(previous);
        dc.Ellipse(CRect(500, 500, 900, 900));
        dc.TextOut(200, 600, "Anomaly", 7);
    });
    const auto header = zel::PlaceableHeader(CRect(0, 0, 1000, 1000), 1000);
    std::ofstream(folder / "drawing.wmf", std::ios::binary)
        .write(reinterpret_cast<const char*>(header.data()), header.size())
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    const auto reader =
        zel::test::RunProgram("wmf2svg -o " + (folder / "drawing.svg") + " " + (folder / "drawing.wmf"));
    ASSERT_EQ(reader.code, 0) << reader.text;
    const std::string svg = zel::test::Content(folder / "drawing.svg");
    EXPECT_THAT(svg, testing::HasSubstr("Anomaly"));
    EXPECT_THAT(svg, testing::HasSubstr("<ellipse"));
    EXPECT_THAT(svg, testing::HasSubstr("<rect"));
}

TEST(Metafile, SaysWhereItCannotBeWritten) {
    CMetaFileDC dc;
    dc.Create("/no/such/folder/drawing.wmf");
    EXPECT_THAT(MessageOf<CFileException>([&] { dc.Close(); }),
                testing::HasSubstr("/no/such/folder/drawing.wmf"));
}

// A quarter of red on white paper: 255 * 1/4 + 255 * 3/4 and 0 * 1/4 + 255 * 3/4, rounded.
TEST(Metafile, MixesTransparentInkWithWhitePaper) {
    const auto records = RecordsOf(Recorded([](CDC& dc) {
        CBrush brush;
        brush.CreateSolidBrush(RGB(255, 0, 0), 64);
        const CRect box(0, 0, 9, 9);
        dc.FillRect(&box, &brush);
    }));
    constexpr WORD kCreateBrush = 0x02FC;
    EXPECT_THAT(records,
                testing::Contains(Record{kCreateBrush, {0, static_cast<std::int16_t>(0xBFFF), 0x00BF, 0}}));
}

constexpr WORD kCreateFont = 0x02FB, kTextOut = 0x0521, kExtTextOut = 0x0A32;

// Bytes by the code pages 1252, 1253, 1251 and the encoding of the font Symbol.
TEST(Metafile, WritesEachAlphabetInItsCharacterSet) {
    const auto records = RecordsOf(Recorded([](CDC& dc) {
        CFont font;
        font.CreateFont(-2048, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        CFont* previous = dc.SelectObject(&font);
        const zel::TextSpan line[] = {
            {"x", {0, 5}}, {"\u0394", {9, 5}}, {"\u0436", {19, 5}}, {"\u221A", {30, 5}}, {"y", {42, 5}}};
        dc.TextRun(line);
        dc.SelectObject(previous);
    }));
    std::vector<int> sets;
    for (const Record& font : Only(records, {kCreateFont}))
        sets.push_back(static_cast<WORD>(font.words[6]) >> 8);
    EXPECT_THAT(sets, testing::ElementsAre(0, 161, 204, 2)) << "Western, Greek, Cyrillic, Symbol";
    EXPECT_THAT(Only(records, {kExtTextOut}),
                testing::ElementsAre(Record{kExtTextOut, {5, 0, 1, 0, 'x', 9}},
                                     Record{kExtTextOut, {5, 9, 1, 0, 0xC4, 10}},
                                     Record{kExtTextOut, {5, 19, 1, 0, 0xE6, 11}},
                                     Record{kExtTextOut, {5, 30, 1, 0, 0xD6, 12}},
                                     Record{kExtTextOut, {5, 42, 1, 0, 'y', 1024}}));
    // Exponents are smaller letters at the height of the line's top.
    const auto raised = RecordsOf(Recorded([](CDC& dc) {
        const zel::TextSpan power[] = {
            {"x", {0, 5}}, {"\u207B", {9, 5}}, {"\u00B9", {12, 5}}, {"\u2074", {15, 5}}};
        dc.TextRun(power);
    }));
    const auto fonts = Only(raised, {kCreateFont});
    ASSERT_EQ(fonts.size(), 2U);
    EXPECT_EQ(fonts[1].words[0], fonts[0].words[0] * 3 / 5);
    const auto texts = Only(raised, {kExtTextOut});
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[1].words[4], '-' | '1' << 8);
    EXPECT_EQ(texts[1].words[5], '4');
    // Players order Hebrew by themselves (code page 1255), and draw the lines under blanks.
    const auto others = RecordsOf(Recorded([](CDC& dc) {
        const zel::TextSpan hebrew[] = {{"\u05E9", {0, 5}}, {"\u05DC", {9, 5}}};
        dc.TextRun(hebrew);
        CFont font;
        font.CreateFont(-10, 0, 900, 900, 0, 0, 1, 0, 0, 0, 0, 0, 0, "Arial");
        CFont* previous = dc.SelectObject(&font);
        const zel::TextSpan turned[] = {{"a", {0, 5}}, {" ", {0, 9}}, {"\t", {0, 12}}};
        dc.TextRun(turned);
        dc.SelectObject(previous);
    }));
    EXPECT_THAT(Only(others, {kTextOut}),
                testing::ElementsAre(Record{kTextOut, {2, static_cast<std::int16_t>(0xECF9), 5, 0}},
                                     Record{kTextOut, {1, 'a', 5, 0}}, Record{kTextOut, {1, ' ', 9, 0}},
                                     Record{kTextOut, {1, ' ', 12, 0}}));
}

// A hundred thousand teeth on a base line, one of them high.
TEST(Metafile, KeepsTheShapeOfLargeAreas) {
    const auto records = Only(RecordsOf(Recorded([](CDC& dc) {
                                  std::vector<CPoint> area{{0, 0}};
                                  for (int i = 0; i < 100'000; ++i)
                                      area.push_back({i / 10, i == 51'234 ? 9000 : 100 + i % 2});
                                  area.push_back({9999, 0});
                                  dc.Polygon(area.data(), static_cast<int>(area.size()));
                              })),
                              {0x0324});
    ASSERT_EQ(records.size(), 1U);
    const std::vector<std::int16_t>& words = records[0].words;
    const auto has = [&](std::int16_t x, std::int16_t y) {
        for (std::size_t i = 1; i + 1 < words.size(); i += 2)
            if (words[i] == x && words[i + 1] == y) return true;
        return false;
    };
    EXPECT_LE(words[0], 0x7000);
    EXPECT_TRUE(has(0, 0) && has(9999, 0)) << "its corners";
    EXPECT_TRUE(has(5123, 9000)) << "its highest tooth";
}

}  // namespace
