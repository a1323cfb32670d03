// MeshCreator: where each attribute lands in the interleaved vertex, and every failure text.

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <vector>

#include "exporter/ErrorTexts.h"
#include "exporter/MeshCreator.h"
#include "exporter/MeshExport.h"
#include "exporter/ReportError.h"

namespace {

using exporter::MeshCreator;
using exporter::VertexRecord;
using exporter::test::errorTexts;
using exporter::test::failureOf;

TEST(MeshCreator, InterleavesInSemanticOrderWithTheBoneWordInThePosition) {
    model::VertexFormat format;
    format[model::POSITION0] = 4;
    format[model::NORMAL0] = 3;
    format[model::TEXCOORD0] = 2;
    format[model::TEXCOORD1] = 1;
    format[model::COLOR1] = 4;
    MeshCreator creator(format, 2);
    VertexRecord r;
    r.position = {1, 2, 3};
    r.normal = {0, 0, 1};
    r.texCoords = {{0.25f, 0.75f}, {0.5f, 9.0f}};
    r.boneWeights = {0.5f, 0.5f, 0, 0};
    r.boneIndices = 0x04030201u;
    creator.addVertex(1, r);
    const std::vector<float> out = creator.build().interleaved();
    ASSERT_EQ(out.size(), 2u * 14u);
    // Vertex 0 was never added and stays zero.
    for (int i = 0; i < 14; ++i) {
        EXPECT_EQ(out[static_cast<std::size_t>(i)], 0.0f);
    }
    const float* v = out.data() + 14;
    EXPECT_EQ(std::vector<float>(v, v + 3), (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(v[3]), 0x04030201u);
    EXPECT_EQ(std::vector<float>(v + 4, v + 14),
              (std::vector<float>{0, 0, 1, 0.25f, 0.75f, 0.5f, 0.5f, 0.5f, 0, 0}));
}

TEST(MeshCreator, TextureChannelsNeedOneOrTwoFloats) {
    model::VertexFormat format;
    format[model::POSITION0] = 3;
    format[model::TEXCOORD0] = 2;
    format[model::TEXCOORD1] = 3;
    VertexRecord one;
    one.texCoords = {{0, 0}};
    VertexRecord two = one;
    two.texCoords.push_back({0, 0});
    VertexRecord three = two;
    three.texCoords.push_back({0, 0});
    MeshCreator creator(format, 1);
    EXPECT_EQ(failureOf([&] { creator.addVertex(0, one); }), "no failure");
    EXPECT_EQ(failureOf([&] { creator.addVertex(0, two); }), "Empty texture channel.");
    format[model::TEXCOORD1] = 1;
    MeshCreator narrow(format, 1);
    EXPECT_EQ(failureOf([&] { narrow.addVertex(0, two); }), "no failure");
    EXPECT_EQ(failureOf([&] { narrow.addVertex(0, three); }), "Empty texture channel.");
}

TEST(MeshCreator, BuildNamesTheFirstBrokenArray) {
    model::VertexFormat format;
    for (int s = 0; s < model::kVertexSemanticCount; ++s) {
        format[s] = 1;
    }
    const std::vector<std::pair<int, std::string>> expected{
        {model::POSITION0, "Broken vertices array."},
        {model::NORMAL0, "Broken normals array."},
        {model::TANGENT0, "Broken tangent array."},
        {model::BINORMAL0, "Broken binormal array."},
        {model::TANGENT1, "Broken damage tangent array."},
        {model::BINORMAL1, "Broken damage binormal array."},
        {model::TEXCOORD0, "Broken texture array."},
        {model::TEXCOORD12, "Broken texture array."},
        {model::COLOR0, "Broken color array."},
        {model::COLOR1, "Broken bone wheights array."},
        {model::POSITION1, "Broken morphing vertices array."},
        {model::NORMAL1, "Broken morphing normals array."},
    };
    for (const auto& [semantic, message] : expected) {
        MeshCreator creator(format, 3);
        creator.array(semantic).pop_back();
        EXPECT_EQ(failureOf([&] { creator.build(); }), message) << semantic;
    }
    // With two arrays broken, the earlier in the checking order is named, not the lower semantic.
    MeshCreator creator(format, 3);
    creator.array(model::TEXCOORD0).push_back(0);
    creator.array(model::TANGENT1).push_back(0);
    EXPECT_EQ(failureOf([&] { creator.build(); }), "Broken damage tangent array.");
}

TEST(MeshCreator, BoneNamesMustBeShorterThan32Bytes) {
    exporter::clearErrors();
    EXPECT_TRUE(exporter::checkBoneName(std::string(31, 'b')));
    EXPECT_TRUE(exporter::errorList().empty());
    EXPECT_FALSE(exporter::checkBoneName(std::string(32, 'b')));
    EXPECT_EQ(errorTexts(), std::vector<std::string>{"Node '" + std::string(32, 'b') +
                                                     "' has tool long name for bone (32 vs. 32)! \t"});
    exporter::clearErrors();
}

}  // namespace
