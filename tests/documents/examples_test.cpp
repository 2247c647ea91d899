// Every example comes back from its document, and from its classic archive as far as that promises it.
#include "Examples.h"

#include "Archives.h"

namespace {

using zel::test::ClassicBytes;
using zel::test::Content;
using zel::test::Drawn;
using zel::test::FromClassicBytes;

class Examples : public testing::TestWithParam<Example> {
  protected:
    const zel::test::TemporaryFolder folder;
    const std::string first = folder / "first.zel", second = folder / "second.zel";
    const std::unique_ptr<Zel2Main> drawing = zel::test::MakeExample(GetParam(), ZEL_DATA);
};

TEST_P(Examples, DrawTheSameFromTheirDocuments) {
    zel::SaveDocument(*drawing, first.c_str());
    const auto loaded = zel::LoadDocument(first.c_str());
    zel::SaveDocument(*loaded, second.c_str());
    EXPECT_EQ(Content(first), Content(second)) << "never drawn";
    EXPECT_EQ(Drawn(*loaded), Drawn(*drawing));
    // Drawing completes what was left to defaults; that comes back too.
    zel::SaveDocument(*drawing, first.c_str());
    zel::SaveDocument(*zel::LoadDocument(first.c_str()), second.c_str());
    EXPECT_EQ(Content(first), Content(second)) << "drawn before";
    EXPECT_EQ(Drawn(*zel::LoadDocument(second.c_str())), Drawn(*drawing));
}

// An archive keeps what it can keep in the first round and then loses nothing more.
TEST_P(Examples, SettleInClassicArchives) {
    const std::string once = ClassicBytes(*FromClassicBytes(ClassicBytes(*drawing)));
    const auto loaded = FromClassicBytes(once);
    EXPECT_EQ(ClassicBytes(*loaded), once);
    EXPECT_EQ(Drawn(*loaded), Drawn(*FromClassicBytes(once)));
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(AllExamples()), [](const auto& example) {
    std::string name = example.param.name;
    std::erase(name, '-');
    return name;
});

}  // namespace
