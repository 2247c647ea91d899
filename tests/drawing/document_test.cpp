#include "RandomDrawing.h"
#include "Support.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <zlib.h>

namespace {

using zel::test::Content;
using zel::test::MessageOf;
using zel::test::RandomDrawing;
using zel::test::TemporaryFolder;
using Bytes = std::vector<std::uint8_t>;

std::string Drawn(Zel2Main& root) {
    zel::RecordingDevice device(960);
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    root.Draw(&dc);
    dc.Flush();
    return device.Text();
}

// One object of every persistent class, with state that differs from the defaults.
std::unique_ptr<Zel2Main> MakeEverything() {
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    int pattern[20] = {9, 4, 2, 4};
    const int pen =
        root->RegisterPen("dashes", DrawPen::USER_DEFINED, 3, RGB(9, 8, 7), RGB(1, 1, 1), pattern);
    const int color = root->RegisterColor("area", RGB(200, 220, 240), RGB(250, 250, 250));
    const int font = root->RegisterFont("label", "Arial", 95, 1, 1, 0, 0, RGB(3, 3, 3), 0);
    int xs[] = {0, 100, 50}, ys[] = {0, 0, 100};
    const int star = root->RegisterSymbol("star", CSize(60, 60), zel::SYMBOL_CUSTOM, "", 2, 5, 6, 7, 8, 0,
                                          "Arial", 80, 9, 10, xs, ys, 3);
    const int disc = root->RegisterSymbol("disc", CSize(40, 40), zel::SYMBOL_CIRCLE, "A", 1, 0, 0,
                                          RGB(255, 0, 0), 0, 1, "Arial", 60, 0, 0, nullptr, nullptr, 0);
    auto* graph = new Zel2Graph;
    graph->SetGraphSize(CSize(4000, 3000));
    graph->SetMargins(500, 300, 400, 500);
    graph->SetCoord(0, -2, 5, 2);
    graph->SetLabelAngles(450, 0);
    graph->SetYRLabels(0, 0);
    graph->SetFrameStyle(2);
    graph->SetTickLengths(-40, -30);
    graph->SetAuxCS(0, 0, 10, 100, 4, 5);
    root->Add(graph);
    root->Add(nullptr);
    auto* series = new Zel2PointArray;
    series->SetPoints({1, 2, 3, 4}, {-1, 1, NAN, 1.5});
    series->SetPen(pen);
    series->SetColor(color);
    series->SetSymbol(disc, false);
    series->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::RIGHT);
    for (int i = 0; i < 4; ++i) series->AddSymbol(star);
    graph->AddIn(series);
    root->Add(
        new Zel2Text("rule", CRect(100, 3100, 1500, 3400), font, DT_CENTER, 0, pen, color, {pen, 0.5F}));
    root->Add(new Zel2Rect(CRect(2000, 3100, 2500, 3500), pen, color, Zel2Rect::ELLIPSE, -1));
    root->Add(new Zel2Rect(CRect(2600, 3100, 2900, 3500), -1, -1, Zel2Rect::RECTANGLE, disc));
    root->Map()->SetZoom(3, 2);
    return root;
}

TEST(Document, LosesNothing) {
    const TemporaryFolder folder;
    const auto drawing = MakeEverything();
    const std::string before = Drawn(*drawing);
    zel::SaveDocument(*drawing, (folder / "a.zel").c_str());
    const auto loaded = zel::LoadDocument((folder / "a.zel").c_str());
    EXPECT_EQ(Drawn(*loaded), before);
    EXPECT_EQ(loaded->Rules(), ZelRules::EXACT);
    EXPECT_EQ((*loaded)[1], nullptr) << "an empty slot stays one";
    EXPECT_EQ(loaded->Symbols()->Size(), 2) << "two symbols stay two";
    EXPECT_STREQ(loaded->Symbol(0)->GetName(), "star");
    EXPECT_EQ(dynamic_cast<Zel2Graph*>((*loaded)[0])->AuxY(),
              dynamic_cast<Zel2Graph*>((*drawing)[0])->AuxY());
    zel::SaveDocument(*loaded, (folder / "b.zel").c_str());
    zel::SaveDocument(*zel::LoadDocument((folder / "b.zel").c_str()), (folder / "c.zel").c_str());
    EXPECT_EQ(Content(folder / "b.zel"), Content(folder / "c.zel"));
}

TEST(Document, RefusesEveryDamage) {
    const TemporaryFolder folder;
    const auto drawing = MakeEverything();
    const std::string path = folder / "a.zel";
    zel::SaveDocument(*drawing, path.c_str());
    const std::string whole = Content(path);
    const auto messageOf = [](const std::string& bytes) {
        return MessageOf<zel::FormatError>([&] { zel::LoadDocument(bytes.data(), bytes.size(), "a.zel"); });
    };
    for (std::size_t at = 0; at < whole.size(); at += at < 64 ? 1 : 37) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x10);
        EXPECT_THAT(messageOf(flipped), testing::HasSubstr("a.zel")) << "bit flipped in byte " << at;
        EXPECT_NE(messageOf(whole.substr(0, at)), "") << "cut at " << at;
    }
    EXPECT_NE(messageOf(whole + "x"), "");
    EXPECT_THAT(messageOf("%PDF-1.4 and so on, which is no drawing at all"),
                testing::HasSubstr("no drawing document"));
    std::string newer = whole;
    newer[8] = 99;
    EXPECT_THAT(messageOf(newer),
                testing::AllOf(testing::HasSubstr("version 99"),
                               testing::HasSubstr("version " + std::to_string(zel::kDocumentVersion))));
    // With right checksums, but values that no version knows.
    for (const std::size_t at : {std::size_t{8}, std::size_t{12}, std::size_t{28}}) {
        std::string strange = whole;
        strange[at] = at == 8 ? 0 : 2;
        const auto sum = crc32_z(0, reinterpret_cast<const Bytef*>(strange.data()), 36);
        for (std::size_t i = 0; i < 4; ++i) strange[36 + i] = static_cast<char>(sum >> 8 * i);
        EXPECT_THAT(messageOf(strange), testing::AnyOf(testing::HasSubstr("there is no format version"),
                                                       testing::HasSubstr("dialect 2")))
            << at;
    }
    EXPECT_THAT(MessageOf<zel::FileError>([&] { zel::LoadDocument("/no/such.zel"); }),
                testing::HasSubstr("/no/such.zel"));
}

TEST(Document, CopiesDeeply) {
    const auto drawing = MakeEverything();
    const std::string before = Drawn(*drawing);
    const auto copy = zel::DeepCopy(*drawing);
    auto* root = dynamic_cast<Zel2Main*>(copy.get());
    ASSERT_NE(root, nullptr);
    drawing->Pen("dashes")->Width(20);
    root->SetRules(ZelRules::EXACT);
    EXPECT_EQ(Drawn(*root), before);
}

TEST(Document, DrawsAnyTreeAsBefore) {
    const TemporaryFolder folder;
    const std::string first = folder / "first.zel", second = folder / "second.zel";
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        const auto drawing = RandomDrawing(seed, RandomDrawing::Charts::WITH).Make();
        for (const char* state : {"never drawn", "drawn before"}) {
            zel::SaveDocument(*drawing, first.c_str());
            const auto loaded = zel::LoadDocument(first.c_str());
            zel::SaveDocument(*loaded, second.c_str());
            EXPECT_EQ(Content(first), Content(second)) << state;
            EXPECT_EQ(Drawn(*loaded), Drawn(*drawing)) << state;
        }
    }
}

// Were a class missing in the random drawings, the test above would not speak for it.
TEST(Document, HoldsEveryClass) {
    class Collector : public zel::ArchiveTrace {
      public:
        void Number(std::uint64_t, std::size_t, bool, const std::string&) override {}
        void Text(std::uint64_t, const std::string&) override {}
        void Block(std::uint64_t, const std::uint8_t*, std::size_t) override {}
        void BeginObject(std::uint64_t, const char* name, std::uint32_t, bool) override {
            names.insert(name);
        }
        void EndObject() override {}
        void Reference(std::uint64_t, std::uint32_t) override {}
        std::set<std::string> names;
    };
    const TemporaryFolder folder;
    Collector collector;
    for (unsigned seed = 0; seed < 150; ++seed) {
        zel::SaveDocument(*RandomDrawing(seed).Make(), (folder / "a.zel").c_str());
        zel::TraceDrawing((folder / "a.zel").c_str(), collector);
    }
    EXPECT_THAT(collector.names,
                testing::UnorderedElementsAre(
                    "DrawColor", "DrawFont", "DrawPen", "DrawSymbol", "Zel2", "Zel2Axis", "Zel2Column",
                    "Zel2CoordSys", "Zel2DaoPointSet", "Zel2DataField", "Zel2Graph", "Zel2GraphTable",
                    "Zel2HAxis", "Zel2Main", "Zel2PointArray", "Zel2PointSet", "Zel2Pol", "Zel2PolGraph",
                    "Zel2Rect", "Zel2Report", "Zel2Row", "Zel2Set", "Zel2StackGraph", "Zel2TRect",
                    "Zel2Table", "Zel2Text", "Zel2TextColumn", "Zel2TextTable", "Zel2Tools", "Zel2VAxis"));
}

// A document of each format version lies in the source tree for ever: it loads, and draws what it drew when
// it was written.
TEST(Document, ReadsEveryVersion) {
    for (int version = 1; version <= zel::kDocumentVersion; ++version) {
        const std::string base = std::string(ZEL_DOCUMENTS) + "/version-" + std::to_string(version);
        const auto drawing = zel::LoadDocument((base + ".zel").c_str());
        EXPECT_EQ(Drawn(*drawing), Content(base + ".txt")) << "version " << version;
        if (version < zel::kDocumentVersion) continue;
        const TemporaryFolder folder;
        zel::SaveDocument(*zel::LoadDocument((base + ".zel").c_str()), (folder / "again.zel").c_str());
        EXPECT_EQ(Content(folder / "again.zel"), Content(base + ".zel"));
    }
}

TEST(Document, TellsWhatIsReadWithItsPlace) {
    class Listener : public zel::ArchiveTrace {
      public:
        void Number(std::uint64_t offset, std::size_t size, bool, const std::string& value) override {
            told += std::to_string(offset) + ":" + value + "/" + std::to_string(size) + " ";
        }
        void Text(std::uint64_t offset, const std::string& text) override {
            told += std::to_string(offset) + ":'" + text + "' ";
        }
        void Block(std::uint64_t offset, const std::uint8_t*, std::size_t count) override {
            told += std::to_string(offset) + ":[" + std::to_string(count) + "] ";
        }
        void BeginObject(std::uint64_t offset, const char* name, std::uint32_t number, bool) override {
            told += std::to_string(offset) + ":" + name + "#" + std::to_string(number) + "{ ";
        }
        void EndObject() override { told += "} "; }
        void Reference(std::uint64_t offset, std::uint32_t number) override {
            told += std::to_string(offset) + ":@" + std::to_string(number) + " ";
        }
        std::string told;
    };
    const TemporaryFolder folder;
    const std::string path = folder / "a.zel";
    Zel2Main drawing;
    drawing.Add(new Zel2Text("abc", CPoint(7, 8), -1, 0, 0, -1, -1, {-1, 0.5F}));
    zel::SaveDocument(drawing, path.c_str());
    Listener whole;
    zel::TraceDrawing(path.c_str(), whole);
    EXPECT_THAT(whole.told, testing::StartsWith("0:Zel2Main#2{ 14:0/4 18:0/4 "));
    EXPECT_THAT(whole.told, testing::HasSubstr("{ 61:7/4 65:8/4 69:0/4 73:'abc' 77:0/4 "));
    EXPECT_THAT(whole.told, testing::HasSubstr(":0.5/4 } "));
    std::filesystem::resize_file(path, 40 + 76);
    Listener broken;
    EXPECT_THAT(MessageOf<zel::FormatError>([&] { zel::TraceDrawing(path.c_str(), broken); }),
                testing::HasSubstr("Zel2Text"));
    EXPECT_THAT(broken.told, testing::EndsWith("69:0/4 ")) << "as far as it goes";
}

Bytes Stored(CObject& object) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    object.Serialize(ar);
    ar.Close();
    return Bytes(file.GetData(), file.GetData() + file.GetLength());
}

void Append(Bytes& bytes, std::initializer_list<int> values) {
    for (const int value : values) {
        for (int i = 0; i < 4; ++i)
            bytes.push_back(static_cast<std::uint8_t>(static_cast<unsigned>(value) >> 8 * i));
    }
}

void AppendClass(Bytes& bytes, const std::string& name) {
    bytes.insert(bytes.end(), {0xFF, 0xFF, 0, 0, static_cast<std::uint8_t>(name.size()), 0});
    bytes.insert(bytes.end(), name.begin(), name.end());
}

// A drawing of one colour and one box, written out by hand.
TEST(ClassicArchive, HasTheBytesThatHostsKnow) {
    Zel2Main root;
    root.RegisterColor("Red", 0x0000FF, 0x808080);
    auto* rect = new Zel2Rect(CRect(10, 20, 109, 69), -1, 0, Zel2Rect::RECTANGLE, -1);
    root.Add(rect);
    root.Add(nullptr);
    Bytes expected;
    Append(expected, {1});               // colours
    AppendClass(expected, "DrawColor");  // number 1, the colour is number 2
    expected.insert(expected.end(), {3, 'R', 'e', 'd'});
    Append(expected, {0x0000FF, 0x808080, 0});
    Append(expected, {0, 0, 0});     // fonts, pens, symbols
    Append(expected, {0, 0, 0, 2});  // position, status, slots
    expected.push_back(1);
    AppendClass(expected, "Zel2Rect");
    Append(expected, {10, 20, 0, 100, 50, -1, 0});
    expected.push_back(0);  // the empty slot
    expected.push_back(1);  // the mapping
    for (int i = 0; i < 3; ++i) Append(expected, {0, 0, 2000, 2000});
    Append(expected, {0, 0, 1, 1});
    EXPECT_EQ(Stored(root), expected);
}

TEST(ClassicArchive, DropsWhatItAlwaysDropped) {
    const auto drawing = MakeEverything();
    const Bytes bytes = Stored(*drawing);
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    Zel2Main loaded;
    loaded.Serialize(ar);
    EXPECT_EQ(ar.BytesLeft(), 0U);
    EXPECT_EQ(loaded.Symbols()->Size(), 1) << "all symbols come back under one name";
    EXPECT_STREQ(loaded.Symbol(0)->GetName(), "<Unknown>");
    auto* graph = dynamic_cast<Zel2Graph*>(loaded[0]);
    ASSERT_NE(graph, nullptr);
    EXPECT_TRUE(graph->AuxY().empty());
    EXPECT_EQ(graph->AuxX(), dynamic_cast<Zel2Graph*>((*drawing)[0])->AuxX());
    auto* series = dynamic_cast<Zel2PointArray*>(graph->Inner()[0]);
    ASSERT_NE(series, nullptr);
    EXPECT_EQ(series->GetParentClass(4), graph);
    EXPECT_EQ(series->NPoints(), 4U);
    EXPECT_EQ(dynamic_cast<Zel2Rect*>(loaded[3])->Type(), Zel2Rect::RECTANGLE);
}

// What is dropped is dropped in the first round; then nothing more is lost, and the picture stays.
TEST(ClassicArchive, SettlesForAnyTree) {
    const auto loaded = [](const Bytes& bytes) {
        CMemFile file(bytes.data(), bytes.size());
        CArchive ar(&file, CArchive::load);
        auto root = std::make_unique<Zel2Main>();
        root->Serialize(ar);
        EXPECT_EQ(ar.BytesLeft(), 0U);
        return root;
    };
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        const Bytes once = Stored(*loaded(Stored(*RandomDrawing(seed).Make())));
        const auto again = loaded(once);
        EXPECT_EQ(Stored(*again), once);
        EXPECT_EQ(Drawn(*again), Drawn(*loaded(once)));
    }
}

TEST(ClassicArchive, TakesNoMemoryThatItsBytesDoNotJustify) {
    Zel2PointArray points;
    points.SetPoints({1, 2}, {3, 4});
    Bytes bytes = Stored(points);
    bytes[32] = 0xFF, bytes[33] = 0xFF, bytes[34] = 0xFF, bytes[35] = 0x7F;  // the number of x values
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    Zel2PointArray loaded;
    EXPECT_THAT(MessageOf<CArchiveException>([&] { loaded.Serialize(ar); }),
                testing::HasSubstr("2147483647"));
}

TEST(ClassicArchive, RestoresAMappingWhereNoneWasStored) {
    Zel2Main root;
    delete root.Map();
    root.SetMapping(nullptr);
    const Bytes bytes = Stored(root);
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    Zel2Main loaded;
    loaded.Serialize(ar);
    ASSERT_NE(loaded.Map(), nullptr);
    EXPECT_EQ(loaded.Map()->ToDevice(CPoint(7, 8)), CPoint(7, 8));
}

}  // namespace
