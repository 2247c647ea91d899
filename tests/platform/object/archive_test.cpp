#include "Support.h"

#include <zel/platform/Archive.h>
#include <zel/platform/Collections.h>
#include <zel/platform/File.h>

#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using zel::test::MessageOf;

// A small persistent class that may hold one more of its kind, and counts how many there are.
class Node : public CObject {
    DECLARE_SERIAL(Node)
  public:
    Node() { ++count; }
    explicit Node(BYTE v) : value(v) { ++count; }
    ~Node() override { --count; }
    void Serialize(CArchive& ar) override {
        if (ar.IsStoring()) {
            ar << value;
            ar.WriteObject(next.get());
        } else {
            ar >> value;
            if (CObject* read = ar.ReadObject(RUNTIME_CLASS(Node))) next.reset(static_cast<Node*>(read));
        }
    }
    BYTE value = 0;
    std::unique_ptr<Node> next;
    static inline int count = 0;
};
IMPLEMENT_SERIAL(Node, CObject, 3)

class Unstorable : public CObject {
    DECLARE_DYNAMIC(Unstorable)
};
IMPLEMENT_DYNAMIC(Unstorable, CObject)

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Stored(const std::function<void(CArchive&)>& store) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    store(ar);
    ar.Close();
    return Bytes(file.GetData(), file.GetData() + file.GetLength());
}

template <class Load>
void Loaded(const Bytes& bytes, Load load) {
    CMemFile file(bytes.data(), bytes.size());
    CArchive ar(&file, CArchive::load);
    load(ar);
}

TEST(Archive, WritesTagsClassesAndBackReferences) {
    Node first(1), second(2);
    const Bytes bytes = Stored([&](CArchive& ar) {
        ar.WriteObject(&first);
        ar.WriteObject(&second);
        ar.WriteObject(&first);
        ar.WriteObject(nullptr);
    });
    // A new class takes number 1 and its first object 2; the second object, of class 1, takes 3.
    EXPECT_EQ(bytes, (Bytes{0xFF, 0xFF, 3, 0, 4, 0, 'N', 'o', 'd', 'e', 1, 0, 0,  //
                            0x01, 0x80, 2, 0, 0,                                  //
                            2,    0,                                              //
                            0,    0}));
}

TEST(Archive, WritesValuesLittleEndian) {
    const Bytes bytes = Stored([](CArchive& ar) {
        ar << static_cast<BYTE>(1) << static_cast<WORD>(0x0203) << 0x04050607 << -1.5;
        ar << CPoint(1, -1) << CString("ab");
    });
    EXPECT_EQ(bytes, (Bytes{1, 3, 2, 7, 6,    5,    4,    0,    0, 0,   0,  0, 0, 0xF8, 0xBF,  //
                            1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 2, 'a', 'b'}));
}

TEST(Archive, EncodesStringLengthsInThreeWays) {
    for (const int length : {0, 254, 255, 65533, 65534, 70000}) {
        const CString text('x', length);
        const Bytes bytes = Stored([&](CArchive& ar) { ar << text; });
        const std::size_t prefix = length < 255 ? 1 : length < 0xFFFE ? 3 : 7;
        EXPECT_EQ(bytes.size(), prefix + static_cast<std::size_t>(length));
        Loaded(bytes, [&](CArchive& ar) {
            CString read;
            ar >> read;
            EXPECT_TRUE(read == text);
        });
    }
    Loaded({0xFF, 0xFE, 0xFF, 3, 'g', 0, 0xB0, 0, 0x3D, 0xD8}, [](CArchive& ar) {  // UTF-16, its end cut off
        CString read;
        ar >> read;
        EXPECT_STREQ(read, "g°\xEF\xBF\xBD");
    });
}

TEST(Archive, TakesBigTagsWhenNumbersAreUsedUp) {
    constexpr int kMany = 0x8010;
    std::vector<std::unique_ptr<Node>> nodes;
    for (int i = 0; i < kMany; ++i) nodes.push_back(std::make_unique<Node>(static_cast<BYTE>(i)));
    const Bytes bytes = Stored([&](CArchive& ar) {
        for (const auto& node : nodes) ar.WriteObject(node.get());
        ar.WriteObject(nodes.back().get());  // number kMany + 1
    });
    const std::uint8_t big[] = {0xFF, 0x7F, 0x11, 0x80, 0, 0};
    EXPECT_EQ(std::memcmp(bytes.data() + bytes.size() - 6, big, 6), 0);
    Loaded(bytes, [&](CArchive& ar) {
        std::unique_ptr<CObject> last;
        for (int i = 0; i < kMany; ++i) last.reset(ar.ReadObject(nullptr));
        EXPECT_EQ(ar.ReadObject(nullptr), last.get());
    });
}

TEST(Archive, RefusesWhatIsCutShortAtEveryByte) {
    Node chain(1);
    chain.next = std::make_unique<Node>(2);
    const Bytes whole = Stored([&](CArchive& ar) { ar.WriteObject(&chain); });
    const int before = Node::count;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::string message = MessageOf<CArchiveException>(
            [&] { Loaded(cut, [](CArchive& ar) { delete ar.ReadObject(nullptr); }); });
        EXPECT_NE(message, "") << length << " bytes";
        EXPECT_EQ(Node::count, before) << "an object leaked";
    }
}

TEST(Archive, SaysWhatIsWrongWithForeignObjects) {
    const auto messageFor = [](const Bytes& bytes, const CRuntimeClass* expected = nullptr) {
        return MessageOf<CArchiveException>(
            [&] { Loaded(bytes, [&](CArchive& ar) { delete ar.ReadObject(expected); }); });
    };
    EXPECT_THAT(messageFor({0xFF, 0xFF, 0, 0, 3, 0, 'X', 'Y', 'Z'}), testing::HasSubstr("no class \"XYZ\""));
    EXPECT_THAT(messageFor({0xFF, 0xFF, 4, 0, 4, 0, 'N', 'o', 'd', 'e'}), testing::HasSubstr("schema 4"));
    EXPECT_THAT(messageFor({0xFF, 0xFF, 0xFF, 0xFF, 10, 0, 'U', 'n', 's', 't', 'o', 'r', 'a', 'b', 'l', 'e'}),
                testing::HasSubstr("cannot be stored"));
    EXPECT_THAT(messageFor({0x07, 0x00}), testing::HasSubstr("number 7"));
    EXPECT_THAT(messageFor({0x07, 0x80}), testing::HasSubstr("number 7"));
    EXPECT_THAT(
        messageFor({0xFF, 0xFF, 3, 0, 4, 0, 'N', 'o', 'd', 'e', 1, 0, 0}, RUNTIME_CLASS(CStringArray)),
        testing::HasSubstr("class CStringArray should be"));
    // The second node announces the first as what it holds: the offset and the class are named.
    EXPECT_THAT(messageFor({0xFF, 0xFF, 3, 0, 4, 0, 'N', 'o', 'd', 'e', 1, 9, 0}),
                testing::AllOf(testing::HasSubstr("class Node"), testing::HasSubstr("byte 13")));
    Unstorable object;
    EXPECT_THAT(MessageOf<CArchiveException>([&] { Stored([&](CArchive& ar) { ar.WriteObject(&object); }); }),
                testing::HasSubstr("Unstorable"));
}

TEST(Archive, OwnsNoObjectTwice) {
    const Bytes twice{0xFF, 0xFF, 3, 0, 4, 0, 'N', 'o', 'd', 'e', 1, 0, 0, 2, 0};
    Loaded(twice, [](CArchive& ar) {
        const auto first = ar.ReadNewObject(nullptr);
        EXPECT_THAT(MessageOf<CArchiveException>([&] { ar.ReadNewObject(nullptr); }),
                    testing::HasSubstr("a second time"));
    });
}

TEST(Archive, BoundsNestingAndCounts) {
    Bytes deep{0xFF, 0xFF, 3, 0, 4, 0, 'N', 'o', 'd', 'e'};
    for (int i = 0; i < 100'000; ++i) deep.insert(deep.end(), {7, 0x01, 0x80});
    EXPECT_THAT(MessageOf<CArchiveException>(
                    [&] { Loaded(deep, [](CArchive& ar) { delete ar.ReadObject(nullptr); }); }),
                testing::HasSubstr("deep"));
    EXPECT_EQ(Node::count, 0);
    Loaded({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}, [](CArchive& ar) {  // an array of 2^31 elements in no bytes
        CUIntArray array;
        EXPECT_THAT(MessageOf<CArchiveException>([&] { array.Serialize(ar); }),
                    testing::HasSubstr("2147483647 elements"));
    });
}

TEST(Archive, PassesLargeBlocksAndKnowsItsOffset) {
    const std::vector<double> values(300'000, 1.25);
    const Bytes bytes = Stored([&](CArchive& ar) {
        ar << static_cast<BYTE>(7);
        ar.Write(values.data(), values.size() * sizeof(double));
        EXPECT_EQ(ar.Offset(), 1 + values.size() * 8);
    });
    Loaded(bytes, [&](CArchive& ar) {
        BYTE byte = 0;
        std::vector<double> read(values.size());
        ar >> byte;
        ar.ReadExact(read.data(), read.size() * sizeof(double));
        EXPECT_EQ(read, values);
        EXPECT_EQ(ar.BytesLeft(), 0U);
        EXPECT_NE(MessageOf<CArchiveException>([&] { ar >> byte; }), "");
        EXPECT_NE(MessageOf<CArchiveException>([&] { ar << byte; }), "") << "storing while loading";
    });
}

TEST(Collections, CheckTheirIndexesAndArchiveThemselves) {
    CUIntArray numbers;
    numbers.Add(5);
    numbers.SetAtGrow(3, 9);
    EXPECT_EQ(numbers.GetSize(), 4);
    EXPECT_NE(MessageOf<CInvalidArgException>([&] { numbers.GetAt(4); }), "");
    EXPECT_NE(MessageOf<CInvalidArgException>([&] { numbers.RemoveAt(2, 3); }), "");
    numbers.InsertAt(1, 7);
    numbers.RemoveAt(0);
    const Bytes bytes = Stored([&](CArchive& ar) { numbers.Serialize(ar); });
    Loaded(bytes, [&](CArchive& ar) {
        CUIntArray read;
        read.Serialize(ar);
        ASSERT_EQ(read.GetSize(), 4);
        EXPECT_EQ(read[0], 7U);
        EXPECT_EQ(read[3], 9U);
    });
}

}  // namespace
