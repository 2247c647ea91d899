// Archives that claim what they do not hold cost no more than their bytes.
#include "RandomDrawing.h"
#include "Support.h"

#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

#include <atomic>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#if defined(__SANITIZE_ADDRESS__)
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*taken)(const volatile void*, std::size_t),
                                                         void (*given)(const volatile void*));
#endif

namespace {

using Bytes = std::vector<std::uint8_t>;
using Dialect = CArchive::Dialect;

std::atomic<std::size_t> allocated;

// Where no sanitizer counts what is allocated, only crashes and time are noticed.
void CountAllocations() {
#if defined(__SANITIZE_ADDRESS__)
    static const int installed = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void*, std::size_t size) { allocated += size; }, [](const volatile void*) {});
    EXPECT_GT(installed, 0);
#endif
}

// Remembers where the 32-bit numbers of an archive lie.
class Places : public zel::ArchiveTrace {
  public:
    void Number(std::uint64_t offset, std::size_t size, bool isFloat, const std::string&) override {
        if (size == 4 && !isFloat) offsets.push_back(static_cast<std::size_t>(offset));
    }
    void Text(std::uint64_t, const std::string&) override {}
    void Block(std::uint64_t, const std::uint8_t*, std::size_t) override {}
    void BeginObject(std::uint64_t, const char*, std::uint32_t, bool) override {}
    void EndObject() override {}
    void Reference(std::uint64_t, std::uint32_t) override {}
    std::vector<std::size_t> offsets;
};

Bytes Stored(Zel2Main& root, Dialect dialect) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(dialect);
    root.Serialize(ar);
    ar.Close();
    return {file.GetData(), file.GetData() + file.GetLength()};
}

std::string MessageOfLoading(const Bytes& bytes, Dialect dialect, zel::ArchiveTrace* trace = nullptr) {
    try {
        CMemFile file(bytes.data(), bytes.size());
        CArchive ar(&file, CArchive::load);
        ar.SetDialect(dialect);
        if (trace) ar.SetTrace(trace);
        Zel2Main root;
        root.Serialize(ar);
    } catch (CException* e) {
        return zel::TakeMessage(e);
    }
    return {};
}

std::unique_ptr<Zel2Main> Nested(int depth) {
    auto root = std::make_unique<Zel2Main>();
    Zel2Set* set = root.get();
    for (int i = 0; i < depth; ++i) {
        auto* inner = new Zel2Set;
        set->Add(inner);
        set = inner;
    }
    return root;
}

class Hostile : public testing::TestWithParam<Dialect> {};

TEST_P(Hostile, CountsCostNoMoreThanTheirBytes) {
    CountAllocations();
    std::size_t loads = 0, refused = 0, most = 0;
    for (unsigned seed = 0; seed < 8; ++seed) {
        const Bytes whole = Stored(*zel::test::RandomDrawing(seed).Make(), GetParam());
        Places places;
        ASSERT_EQ(MessageOfLoading(whole, GetParam(), &places), "");
        for (const std::size_t at : places.offsets) {
            for (const std::uint32_t lie : {0x7FFFFFFFU, 0x10000U, 0xFFFFFFFFU}) {
                Bytes bytes = whole;
                std::memcpy(bytes.data() + at, &lie, sizeof lie);
                allocated = 0;
                const std::string message = MessageOfLoading(bytes, GetParam());
                const std::size_t cost = allocated / bytes.size();
                most = std::max(most, cost);
                EXPECT_LT(cost, 200U) << lie << " at " << at << " of drawing " << seed;
                if (!message.empty()) ++refused;
                ++loads;
            }
        }
    }
    EXPECT_GT(refused, 0U);
    std::printf(
        "%zu archives with a wrong number, %zu refused; at most %zu bytes were allocated for each of "
        "theirs\n",
        loads, refused, most);
}

// Sets in sets, each the only child: deeper than any drawing, and deeper than a stack.
TEST_P(Hostile, NestingEnds) {
    const auto nested = [&](int depth) { return Stored(*Nested(depth), GetParam()); };
    EXPECT_EQ(MessageOfLoading(nested(50), GetParam()), "");
    // The same bytes again and again: what a set of one set begins with.
    const Bytes two = nested(2), three = nested(3);
    const std::size_t step = three.size() - two.size();
    const auto at = std::mismatch(two.rbegin(), two.rend(), three.rbegin()).first - two.rbegin();
    const Bytes piece(three.end() - at - static_cast<std::ptrdiff_t>(step), three.end() - at);
    Bytes endless(three.begin(), three.end() - at);
    while (endless.size() < 20'000'000) endless.insert(endless.end(), piece.begin(), piece.end());
    EXPECT_THAT(MessageOfLoading(endless, GetParam()), testing::HasSubstr("nest"));
}

// The other way round: a drawing too deep to be read again is not saved, and says so.
TEST(Saved, IsReadAgain) {
    const zel::test::TemporaryFolder folder;
    const std::string path = folder / "deep.zel";
    int saved = 0;
    for (int depth = 480; depth < 520; ++depth) {
        const auto drawing = Nested(depth);
        const std::string refusal =
            zel::test::MessageOf<zel::FormatError>([&] { zel::SaveDocument(*drawing, path.c_str()); });
        if (refusal.empty()) {
            ++saved;
            zel::LoadDocument(path.c_str());
        } else {
            EXPECT_THAT(refusal, testing::HasSubstr("nested more than"));
        }
    }
    EXPECT_GT(saved, 0);
    EXPECT_LT(saved, 40);
    Zel2Main columns;
    columns.Add(new Zel2Table(5000, 0));
    columns.Add(new Zel2TextTable(5000, 0));
    columns.Add(new Zel2TextTable(0, 5000));
    zel::SaveDocument(columns, path.c_str());
    EXPECT_EQ(zel::LoadDocument(path.c_str())->GetCount(), 3);
}

INSTANTIATE_TEST_SUITE_P(Dialects, Hostile, testing::Values(Dialect::CLASSIC, Dialect::COMPLETE),
                         [](const auto& dialect) {
                             return dialect.param == Dialect::CLASSIC ? "Classic" : "Complete";
                         });

}  // namespace
