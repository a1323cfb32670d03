#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "io/NqfBytes.h"
#include "model/PropertyCreators.h"
#include "model/io/MaterialWriter10.h"
#include "model/io/MemBinaryFileW.h"

namespace {

using model::MemBinaryFileW;
using model::PropertiesSet;

// Walks a buffer written by MemBinaryFileW, resolving string references through its pool.
struct Cursor {
    const MemBinaryFileW& file;
    std::size_t at = 0;

    std::uint32_t u32() {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i) {
            v |= std::uint32_t(byte(at + i)) << (8 * i);
        }
        at += 4;
        return v;
    }
    std::uint8_t u8() { return byte(at++); }
    // A read past the written bytes throws, so the test fails instead of reading stray memory.
    std::uint8_t byte(std::size_t i) const {
        const auto bytes = file.buffer();
        if (i >= bytes.size()) {
            throw std::out_of_range("read past the written bytes");
        }
        return bytes[i];
    }
    std::string str() { return file.strings().index().at(u32()); }
    void skip(std::size_t n) { at += n; }
};

TEST(MaterialWriter, PlainMaterialHasTenEntriesInTheFixedOrder) {
    MemBinaryFileW file;
    file.write("pre", 3);
    PropertiesSet m;
    m.name = "wall";
    m.materialName = "def_material";
    m.depthBias = 7;
    m.shadowFlagA = 1;
    m.shadowFlagB = 1;
    model::writeMaterial(file, m);
    EXPECT_EQ(file.tell(), file.buffer().size());

    nqftest::NqfBytes expected;
    expected.body = {'p', 'r', 'e'};
    // Any non-zero depth bias is written as 1.
    expected.u32(10).sref("BLENDING").u8(0).sref("DEPTH_BIAS").u32(1).sref("VERTEX_FORMAT").u32(27);
    expected.body.resize(expected.size() + 27);
    expected.sref("TEXTURE_COORDINATES_CHANNELS").u32(13);
    for (int i = 0; i < 13; ++i) {
        expected.u32(0xFFFFFFFFu);
    }
    // Shadow flag A is bit 0, flag B is bit 2.
    expected.sref("MATERIAL_NAME").sref("def_material").sref("NAME").sref("wall").sref("SHADOWS").u8(5);
    expected.sref("TEXTURES").u32(0).sref("UNIFORMS").u32(0).sref("ANIMATED_UNIFORMS").u32(0);
    EXPECT_EQ(std::vector<unsigned char>(file.buffer().begin(), file.buffer().end()), expected.body);
    const auto& table = file.strings().index();
    EXPECT_EQ(std::vector<std::string>(table.begin(), table.end()), expected.strings);
}

TEST(MaterialWriter, BillboardComesBeforeDecalAndBothRaiseTheCount) {
    MemBinaryFileW file;
    PropertiesSet m;
    m.billboard = 1;
    m.billboardType = 3;
    m.decal = 2;
    model::writeMaterial(file, m);
    Cursor c{file, 0};
    EXPECT_EQ(c.u32(), 12u);
    // The last entries: "BILLBOARD" u8 type, u8 mode, then "DECAL" u8.
    std::size_t size = file.buffer().size();
    Cursor tail{file, size - (4 + 2 + 4 + 1)};
    EXPECT_EQ(tail.str(), "BILLBOARD");
    EXPECT_EQ(tail.u8(), 3);
    EXPECT_EQ(tail.u8(), 6);
    EXPECT_EQ(tail.str(), "DECAL");
    EXPECT_EQ(tail.u8(), 2);
}

TEST(MaterialWriter, TexturesAreLoweredInTheFileAndSlotTwoYieldsToThirteen) {
    MemBinaryFileW file;
    PropertiesSet m;
    m.textures[2].name = "Diffuse_A.DDS";
    m.textures[13].name = "Detail\xC3\x84.dds";
    m.textures[13].texCoordChannel = 1;
    m.textures[0].name = "Base.dds";
    model::writeMaterial(file, m);
    EXPECT_TRUE(m.textures[2].name.empty()) << "the normalisation changes the material in place";
    EXPECT_EQ(m.textures[13].name, "Detail\xC3\x84.dds") << "the stored name keeps its case";

    // Everything before TEXTURES has a fixed size: count 4, BLENDING 5, DEPTH_BIAS 8,
    // VERTEX_FORMAT 35, TEXTURE_COORDINATES_CHANNELS 60, MATERIAL_NAME 8, NAME 8, SHADOWS 5.
    Cursor c{file, 133};
    EXPECT_EQ(c.str(), "TEXTURES");
    EXPECT_EQ(c.u32(), 2u);
    EXPECT_EQ(c.u32(), 0u);  // slot
    EXPECT_EQ(c.u32(), 0xFFFFFFFFu);
    EXPECT_EQ(c.str(), "base.dds");
    c.skip(16 + 64);
    EXPECT_EQ(c.u32(), 13u);
    EXPECT_EQ(c.u32(), 1u);
    EXPECT_EQ(c.str(), "detail\xC3\xA4.dds");
}

TEST(MaterialWriter, UniformsSplitByAnimationKeepingOrder) {
    MemBinaryFileW file;
    PropertiesSet m;
    m.uniforms.push_back(model::createFloatProperty("a", 1.0f));
    m.uniforms.push_back(model::createArgumentProperty("b", 3));
    m.uniforms.push_back(model::createUIntProperty("c", 2));
    model::writeMaterial(file, m);
    const auto& strings = file.strings().index();
    auto pos = [&](const char* s) {
        for (std::size_t i = 0; i < strings.size(); ++i) {
            if (std::strcmp(strings[i], s) == 0) {
                return static_cast<int>(i);
            }
        }
        return -1;
    };
    // First use orders the table: the static "a" and "c" come before the animated "b".
    EXPECT_LT(pos("a"), pos("c"));
    EXPECT_LT(pos("c"), pos("b"));
    EXPECT_LT(pos("UNIFORMS"), pos("a"));
    EXPECT_LT(pos("ANIMATED_UNIFORMS"), pos("b"));
}

TEST(MaterialWriter, KeysStandOnceInTheTableForManyMaterials) {
    MemBinaryFileW file;
    for (int i = 0; i < 50; ++i) {
        PropertiesSet m;
        m.name = "shared";
        model::writeMaterial(file, m);
    }
    std::vector<char> table = file.strings().flatten();
    std::string text(table.begin(), table.end());
    EXPECT_EQ(text.find("BLENDING"), text.rfind("BLENDING"));
    // Ten keys, the empty material name and "shared".
    EXPECT_EQ(file.strings().index().size(), 12u);
}

}  // namespace
