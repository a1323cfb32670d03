#include <gtest/gtest.h>

#include <stdexcept>

#include "ByteSink.h"
#include "core/ExtException.h"
#include "model/Vertices.h"
#include "model/io/IBinaryFileR.h"

namespace {

using namespace model;
using testing_support::ByteSink;
using testing_support::Expect;

template <class Exception, class F>
std::string failureText(F&& f) {
    try {
        f();
    } catch (const Exception& e) {
        return e.what();
    }
    return "no failure";
}

VertexFormat posNormal(int pos, int normal) {
    VertexFormat f;
    f[POSITION0] = static_cast<std::uint8_t>(pos);
    f[NORMAL0] = static_cast<std::uint8_t>(normal);
    return f;
}

TEST(VertexSemantic, NamesAndUnknownNumbers) {
    EXPECT_EQ(semanticName(POSITION0), "POSITION0");
    EXPECT_EQ(semanticName(TEXCOORD15), "TEXCOORD15");
    EXPECT_EQ(semanticName(texCoordSemantic(2)), "TEXCOORD2");
    EXPECT_EQ(semanticName(COLOR1), "COLOR1");
    EXPECT_EQ(semanticName(POSITION1), "POSITION1");
    EXPECT_EQ(semanticName(26), "COLOR2");
    EXPECT_EQ(semanticName(27), "UnknownSemantic");
    EXPECT_EQ(semanticName(-1), "UnknownSemantic");
}

TEST(VertexFormat, CheckedEntriesSumAndPersistentForm) {
    VertexFormat f = posNormal(4, 3);
    f[COLOR2] = 1;
    EXPECT_EQ(f.sum(), 8u);
    EXPECT_EQ(failureText<std::out_of_range>([&] { f[27] = 1; }), "nq::array: index out of range");
    const VertexFormat& cf = f;
    EXPECT_EQ(failureText<std::out_of_range>([&] { (void)cf[-1]; }), "nq::array: index out of range");

    ByteSink sink;
    f.save(sink);
    Expect expected;
    expected.u32(27).u8(4).u8(3);
    for (int i = 2; i < 26; ++i) {
        expected.u8(0);
    }
    expected.u8(1);
    EXPECT_EQ(sink.bytes, expected.body);
    VertexFormat g;
    io::MemBinaryFileR reader(sink.bytes);
    g.load(reader);
    EXPECT_TRUE(g == f);
    sink.bytes[0] = 26;
    io::MemBinaryFileR badCount(sink.bytes);
    EXPECT_EQ(failureText<nq::ExtException>([&] { g.load(badCount); }),
              "Vertex format of 26 entries, 27 expected.");
    g[TEXCOORD0] = 2;
    EXPECT_FALSE(g == f);
}

TEST(VertexAttribute, ResizeShrinksPerVertexAndGrowsWithTheOffByOnePadding) {
    VertexAttribute a{{1, 2, 3, 4, 5, 6, 7, 8}, 4};
    a.resize(3);
    EXPECT_EQ(a.data, (std::vector<float>{1, 2, 3, 5, 6, 7}));
    EXPECT_EQ(a.size, 3);

    VertexAttribute b{{1, 2, 3, 4, 5, 6}, 2};
    b.resize(3);
    EXPECT_EQ(b.data, (std::vector<float>{1, 2, 3, 0, 4, 5, 0, 6}));
    EXPECT_EQ(b.size, 3);

    b.resize(0);
    EXPECT_TRUE(b.data.empty());
    EXPECT_EQ(b.size, 0);
}

TEST(Vertices, BuildsFromFormatAndInterleavesInSemanticOrder) {
    VertexFormat f = posNormal(3, 0);
    f[TEXCOORD0] = 2;
    Vertices empty(f);
    EXPECT_EQ(empty.attributes.size(), 2u);
    EXPECT_EQ(empty.findAttribute(NORMAL0), nullptr);

    const std::vector<float> data = {1, 2, 3, 10, 11, 4, 5, 6, 12, 13};
    Vertices v(data, 2, f);
    EXPECT_EQ(v.vertexCount(), 2u);
    EXPECT_EQ(v.stride(), 5u);
    EXPECT_EQ(v.attribute(TEXCOORD0).data, (std::vector<float>{10, 11, 12, 13}));
    EXPECT_EQ(v.interleaved(), data);
    EXPECT_TRUE(v.format() == f);

    ByteSink sink;
    v.save(sink);
    Expect expected;
    expected.u32(2).u32(5);
    for (float x : data) {
        expected.f32(x);
    }
    EXPECT_EQ(sink.bytes, expected.body);

    v.assignInterleaved(data, 0);
    EXPECT_EQ(v.vertexCount(), 0u);
    EXPECT_TRUE(v.attribute(POSITION0).data.empty());
}

TEST(Vertices, BoundsChecksOnInterleavingAndAssigning) {
    Vertices v;
    v.setAttribute(POSITION0, 3, {1, 2, 3, 4, 5, 6});
    v.setAttribute(NORMAL0, 3, {0, 0, 1});
    EXPECT_TRUE(v.isValid());
    EXPECT_EQ(failureText<std::out_of_range>([&] { v.interleaved(); }), "invalid vector subscript");
    ByteSink sink;
    EXPECT_EQ(failureText<std::out_of_range>([&] { v.save(sink); }), "invalid vector subscript");
    EXPECT_TRUE(sink.bytes.empty());

    // A later attribute with more vertices than the lowest loses its tail.
    v.setAttribute(POSITION0, 3, {1, 2, 3});
    v.setAttribute(NORMAL0, 3, {0, 0, 1, 9, 9, 9});
    EXPECT_EQ(v.interleaved(), (std::vector<float>{1, 2, 3, 0, 0, 1}));

    const Vertices before = v;
    const std::vector<float> shortData = {1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(failureText<std::out_of_range>([&] { v.assignInterleaved(shortData, 2); }),
              "invalid vector subscript");
    EXPECT_TRUE(v == before);
}

// Saving interleaves through a small buffer; the bytes must be those of the whole interleaved
// array however the vertices fall into pieces: meshes longer than the buffer, a vertex wider than
// it, and a lone attribute that is written as it stands.
TEST(Vertices, SaveWritesTheInterleavedArrayWhateverItsShape) {
    auto check = [](const Vertices& v) {
        ByteSink sink;
        v.save(sink);
        // Floats per vertex are counted from the data: none without vertices.
        const std::vector<float> data = v.interleaved();
        const std::size_t count = v.vertexCount();
        Expect expected;
        expected.u32(static_cast<std::uint32_t>(count))
            .u32(count == 0 ? 0u : std::uint32_t(data.size() / count));
        for (float x : data) {
            expected.f32(x);
        }
        EXPECT_EQ(sink.bytes, expected.body);
    };
    auto ramp = [](std::size_t n, float from) {
        std::vector<float> data(n);
        for (std::size_t i = 0; i < n; ++i) {
            data[i] = from + float(i);
        }
        return data;
    };
    Vertices longMesh;
    longMesh.setAttribute(POSITION0, 3, ramp(3 * 5001, 0));
    longMesh.setAttribute(NORMAL0, 3, ramp(3 * 5001, 1e6f));
    longMesh.setAttribute(TEXCOORD0, 2, ramp(2 * 5001 + 4, 2e6f));  // a longer attribute loses its tail
    check(longMesh);

    Vertices wide;
    wide.setAttribute(POSITION0, 4500, ramp(4500 * 3, 0));
    wide.setAttribute(NORMAL0, 1, ramp(3, -5));
    check(wide);

    Vertices lone;
    lone.setAttribute(POSITION0, 0, {});
    lone.setAttribute(NORMAL0, 3, ramp(9, 7));  // the lowest attribute is empty: no vertices
    check(lone);
    lone.setAttribute(POSITION0, 3, ramp(9, 7));
    lone.setAttribute(NORMAL0, 0, {});
    check(lone);
}

TEST(Vertices, InvalidDataFailsToSaveBeforeWritingAnything) {
    Vertices v;
    v.setAttribute(POSITION0, 3, {1, 2, 3});
    v.setAttribute(NORMAL0, 0, {1});
    EXPECT_FALSE(v.isValid());
    ByteSink sink;
    EXPECT_EQ(failureText<nq::ExtException>([&] { v.save(sink); }), "Vertex data is invalid.");
    EXPECT_TRUE(sink.bytes.empty());

    v.setAttribute(NORMAL0, 3, {1, 2});
    EXPECT_FALSE(v.isValid());
    v.setAttribute(NORMAL0, 0, {});
    EXPECT_TRUE(v.isValid());
}

TEST(Vertices, MissingAttributeNamesTheSemantic) {
    Vertices v(posNormal(3, 0));
    EXPECT_EQ(failureText<nq::ExtException>([&] { v.attribute(NORMAL0); }),
              "Vertices don't have NORMAL0 attribute.");
    const Vertices& cv = v;
    EXPECT_EQ(failureText<nq::ExtException>([&] { cv.attribute(TEXCOORD3); }),
              "Vertices don't have TEXCOORD3 attribute.");
}

TEST(Vertices, AppendNeedsTheSameSemanticsAndSizes) {
    Vertices a;
    a.setAttribute(POSITION0, 2, {1, 2});
    a.setAttribute(NORMAL0, 1, {9});
    Vertices b;
    b.setAttribute(POSITION0, 2, {3, 4, 5, 6});
    b.setAttribute(NORMAL0, 2, {7, 7, 8, 8});
    const Vertices before = a;
    EXPECT_FALSE(a.append(b));
    EXPECT_TRUE(a == before);

    b.setAttribute(NORMAL0, 1, {7, 8});
    Vertices extra = b;
    extra.setAttribute(COLOR0, 4, {});
    EXPECT_FALSE(a.append(extra));
    EXPECT_TRUE(a == before);

    EXPECT_TRUE(a.append(b));
    EXPECT_EQ(a.vertexCount(), 3u);
    EXPECT_EQ(a.interleaved(), (std::vector<float>{1, 2, 9, 3, 4, 7, 5, 6, 8}));
}

TEST(Vertices, SelectFormatWalksAnUnbrokenRunFromPosition) {
    Vertices v;
    v.setAttribute(POSITION0, 4, {1, 2, 3, 4});
    v.setAttribute(NORMAL0, 3, {5, 6, 7});
    v.setAttribute(TEXCOORD0, 2, {8, 9});
    auto picked = v.selectFormat(posNormal(4, 3));
    ASSERT_TRUE(picked.has_value());
    EXPECT_EQ(picked->attributes.size(), 2u);
    EXPECT_EQ(picked->interleaved(), (std::vector<float>{1, 2, 3, 4, 5, 6, 7}));

    v.attribute(POSITION0).resize(3);
    EXPECT_FALSE(v.selectFormat(posNormal(4, 3)).has_value());

    // The running number, not the entry's own semantic, picks the attribute: a format that
    // skips semantic 0 looks at POSITION0 first.
    VertexFormat texOnly;
    texOnly[TEXCOORD0] = 2;
    EXPECT_FALSE(v.selectFormat(texOnly).has_value());
}

TEST(Vertices, MatchesFormatTreatsSizeZeroAsAbsent) {
    Vertices v;
    v.setAttribute(POSITION0, 3, {});
    v.setAttribute(COLOR0, 0, {});
    EXPECT_TRUE(v.matchesFormat(posNormal(3, 0)));
    EXPECT_FALSE(v.matchesFormat(posNormal(3, 3)));
    EXPECT_FALSE(v.matchesFormat(posNormal(4, 0)));
}

}  // namespace
