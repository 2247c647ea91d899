// The page that describes the formats, against the bytes: a reader that knows nothing but the page reads what
// the library writes, and both must see the same.
#include "Archives.h"
#include "Examples.h"
#include "KnownDrawing.h"
#include "RandomDrawing.h"
#include "apps/zel/Dump.h"

#include <gmock/gmock.h>
#include <sstream>

namespace {

using zel::test::ClassicBytes;
using zel::test::Content;
using zel::test::RandomDrawing;
using zel::test::TemporaryFolder;

// Files for the reader, each with what the library reads in it.
class Format : public testing::Test {
  protected:
    // A document and a classic archive.
    void Write(Zel2Main& drawing, const std::string& name) {
        WriteDocument(drawing, name);
        WriteBytes(ClassicBytes(drawing), name + ".arc");
        Add(folder / name + ".arc");
    }
    void WriteDocument(Zel2Main& drawing, const std::string& name) {
        zel::SaveDocument(drawing, (folder / name + ".zel").c_str());
        Add(folder / name + ".zel");
    }
    void WriteBytes(const std::string& bytes, const std::string& name) const {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }
    void Add(const std::string& path) {
        std::ofstream dump(path + ".dump");
        zel::cli::PrintDump(path.c_str(), dump);
        files += " " + path;
    }
    zel::test::Output Read(const std::string& paths) const {
        return zel::test::RunProgram("(" ZEL_READER " " + page + paths + " >" + (folder / "read") + ")");
    }
    void ExpectThatAllIsRead() const {
        const auto output = Read(files);
        EXPECT_EQ(output.code, 0) << output.text;
    }
    // What the reader says about a file that it refuses.
    std::string Complaint(const std::string& bytes) const {
        WriteBytes(bytes, "bad");
        const auto output = Read(" " + (folder / "bad"));
        EXPECT_EQ(output.code, 1);
        return output.text;
    }

    TemporaryFolder folder;
    std::string page = ZEL_FORMAT_PAGE;
    std::string files;
};

TEST_F(Format, NamesEveryFieldOfEveryClass) {
    const auto known = zel::test::MakeKnownDrawing();
    Write(*known.drawing, "known");
    std::ofstream(folder / "known.zel.facts") << known.facts;
    ExpectThatAllIsRead();
}

TEST_F(Format, HoldsForAnyTree) {
    for (unsigned seed = 0; seed < 60; ++seed)
        Write(*RandomDrawing(seed).Make(), "random" + std::to_string(seed));
    for (unsigned seed = 0; seed < 60; ++seed)
        WriteDocument(*RandomDrawing(seed, RandomDrawing::Charts::WITH).Make(),
                      "chart" + std::to_string(seed));
    ExpectThatAllIsRead();
}

TEST_F(Format, HoldsForEveryVersion) {
    for (int version = 1; version <= zel::kDocumentVersion; ++version) {
        const std::string name = "version-" + std::to_string(version) + ".zel";
        WriteBytes(Content(std::string(ZEL_DOCUMENTS) + "/" + name), name);
        Add(folder / name);
    }
    ExpectThatAllIsRead();
}

TEST_F(Format, HoldsForEveryExample) {
    for (const Example& example : AllExamples()) {
        const auto drawing = zel::test::MakeExample(example, ZEL_DATA);
        // Classic archives cannot hold charts.
        IsChart(*drawing) ? WriteDocument(*drawing, example.name) : Write(*drawing, example.name);
    }
    const auto smallest =
        zel::test::RunProgram("cd " + (folder / ".") + " && QT_QPA_PLATFORM=offscreen " ZEL_SMALLEST);
    ASSERT_EQ(smallest.code, 0) << smallest.text;
    Add(folder / "extremes.zel");
    ExpectThatAllIsRead();
}

TEST_F(Format, HoldsForLongTextsAndManyClasses) {
    Zel2Main drawing;
    for (const std::size_t length : {254U, 255U, 256U, 65533U, 65534U, 70000U}) {
        auto* text = new Zel2Text;
        text->SetPlainText(std::string(length, 'x').c_str());
        drawing.Add(text);
    }
    auto* points = new Zel2PointArray;
    for (int i = 0; i < 70000; ++i) points->AddSymbol(i);
    drawing.Add(points);
    for (int i = 0; i < 33000; ++i) drawing.Add(new Zel2);
    drawing.Add(new Zel2Row);
    for (int i = 0; i < 10; ++i) drawing.Add(new Zel2Row);
    Write(drawing, "large");
    ExpectThatAllIsRead();
}

// Were the reader blind, all of the above would hold for any page.
TEST_F(Format, IsFoundOutWhenItIsWrong) {
    const auto known = zel::test::MakeKnownDrawing();
    Write(*known.drawing, "known");
    std::ofstream(folder / "known.zel.facts") << known.facts;
    const auto complaintAbout = [&](const std::string& line, const std::string& instead) {
        std::string text = Content(ZEL_FORMAT_PAGE);
        const std::size_t at = text.find(line);
        EXPECT_NE(at, std::string::npos) << line;
        page = folder / "page.md";
        std::ofstream(page) << text.replace(at, line.size(), instead);
        return Read(files).text;
    };
    EXPECT_THAT(complaintAbout("  screen          dword\n  printer ", "  printer         dword\n  screen "),
                testing::HasSubstr("colors.tools[0].screen"));
    EXPECT_THAT(complaintAbout("  status          dword", "  status          word"),
                testing::HasSubstr("offset"));
    EXPECT_THAT(complaintAbout("  origin          point", "  origin          double"),
                testing::HasSubstr("read another size"));
    EXPECT_THAT(complaintAbout("- auxiliaryXAgain doubles\n", ""), testing::HasSubstr("known.arc"));
}

// A broken document is shown as far as it can be read, beginning with what is wrong.
TEST_F(Format, IsShownOfBrokenDocuments) {
    Zel2Main drawing;
    drawing.Add(new Zel2Rect);
    zel::SaveDocument(drawing, (folder / "a.zel").c_str());
    const std::string whole = Content(folder / "a.zel");
    const auto shown = [&](const std::string& bytes) {
        WriteBytes(bytes, "broken.zel");
        std::ostringstream out;
        try {
            zel::cli::PrintDump((folder / "broken.zel").c_str(), out);
        } catch (const zel::FormatError& e) {
            out << e.what();
        }
        return out.str();
    };
    EXPECT_THAT(shown(whole), testing::StartsWith("document of version 2, classic rules, "));
    std::string wrong = whole;
    wrong[whole.size() - 1] = 1;
    EXPECT_THAT(shown(wrong),
                testing::AllOf(testing::HasSubstr("the checksum differs"), testing::HasSubstr("Zel2Rect")));
    wrong = whole;
    wrong[8] = 7;
    EXPECT_THAT(shown(wrong),
                testing::AllOf(testing::HasSubstr("version 7"), testing::HasSubstr("Zel2Rect")));
    EXPECT_THAT(shown(whole.substr(0, whole.size() - 50)),
                testing::AllOf(testing::HasSubstr("bytes of content, and"), testing::HasSubstr("Zel2Rect")));
}

TEST_F(Format, IsNotThatOfADamagedFile) {
    const auto known = zel::test::MakeKnownDrawing();
    Write(*known.drawing, "known");
    const std::string document = Content(folder / "known.zel");
    std::string wrong = document;
    wrong[document.size() / 2] = static_cast<char>(wrong[document.size() / 2] ^ 1);
    EXPECT_THAT(Complaint(wrong), testing::HasSubstr("contentChecksum is"));
    wrong = document;
    wrong[13] = 1;
    EXPECT_THAT(Complaint(wrong), testing::HasSubstr("headerChecksum is"));
    EXPECT_THAT(Complaint(document + "x"), testing::HasSubstr("contentLength is"));
    const std::string archive = ClassicBytes(*known.drawing);
    EXPECT_THAT(Complaint(archive + "x"), testing::HasSubstr("1 bytes follow the drawing"));
    EXPECT_THAT(Complaint(archive.substr(0, archive.size() - 1)),
                testing::HasSubstr("needs 4 bytes, and 3 are left"));
}

}  // namespace
