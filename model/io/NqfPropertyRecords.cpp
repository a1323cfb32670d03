// Property, texture, material, vertex and index records.

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "model/io/NqfParser.h"

namespace model::io {
namespace {

struct PropertyClass {
    std::string_view name;
    int components;  // floats per value; 0 for the u32, text and argument classes
    bool animated;
};

constexpr PropertyClass kPropertyClasses[] = {
    {"model::Property<float>", 1, false},
    {"model::Property<unsigned int>", 0, false},
    {"model::Property<osg::Vec2f>", 2, false},
    {"model::Property<osg::Vec3f>", 3, false},
    {"model::Property<osg::Vec4f>", 4, false},
    {"model::Property<const char*>", 0, false},
    {"model::ArgumentProperty", 0, true},
    {"model::AnimatedProperty<float>", 1, true},
    {"model::AnimatedProperty<osg::Vec2f>", 2, true},
    {"model::AnimatedProperty<osg::Vec3f>", 3, true},
    {"model::AnimatedProperty<osg::Vec4f>", 4, true},
};

const PropertyClass* propertyClass(std::string_view name) {
    for (const PropertyClass& c : kPropertyClasses) {
        if (c.name == name) {
            return &c;
        }
    }
    return nullptr;
}

// The smallest property record: class, name and a 4-byte value.
constexpr std::size_t kLeastProperty = 12;
// A texture record: channel, name, four u32 and the 64-byte matrix; with its slot in a material.
constexpr std::size_t kTextureSize = 4 + 4 + 16 + 64;

constexpr std::string_view kMaterialKeys[] = {
    "BLENDING",      "DEPTH_BIAS",
    "VERTEX_FORMAT", "TEXTURE_COORDINATES_CHANNELS",
    "MATERIAL_NAME", "NAME",
    "SHADOWS",       "TEXTURES",
    "UNIFORMS",      "ANIMATED_UNIFORMS",
    "BILLBOARD",     "DECAL",
};

}  // namespace

NqfProperty NqfParser::property(PropertyKind kind) {
    NqfProperty p;
    const std::uint64_t classOffset = cursor_.offset();
    p.className = sref("property class");
    const PropertyClass* c = propertyClass(p.className);
    if (!c) {
        failAt(classOffset, "a property class name", fmt::format("\"{}\"", p.className));
    }
    if (kind != PropertyKind::Any && c->animated != (kind == PropertyKind::Animated)) {
        failAt(classOffset, c->animated ? "a static property class" : "an animated property class",
               fmt::format("\"{}\"", p.className));
    }
    p.name = sref("property name");
    if (p.name == "__VERSION__" && p.className != "model::Property<unsigned int>") {
        failAt(classOffset,
               "the class \"model::Property<unsigned int>\" for the class version \"__VERSION__\"",
               fmt::format("\"{}\"", p.className));
    }
    if (p.className == "model::Property<unsigned int>") {
        p.uintValue = u32("value");
    } else if (p.className == "model::Property<const char*>") {
        p.text = sref("value");
    } else if (!c->animated) {
        for (int i = 0; i < c->components; ++i) {
            p.floats.push_back(f32("value"));
        }
    } else {
        p.argument = u32("argument");
        noteArgument(p.argument);
        if (c->components > 0) {
            const std::uint32_t n = count(8 + 4 * static_cast<std::size_t>(c->components), "key count");
            p.keys.reserve(n);
            for (std::uint32_t k = 0; k < n; ++k) {
                NqfPropertyKey key;
                key.time = f64("key time");
                for (int i = 0; i < c->components; ++i) {
                    key.value.push_back(f32("key value"));
                }
                p.keys.push_back(std::move(key));
            }
        }
    }
    return p;
}

std::vector<NqfProperty> NqfParser::propertyList(std::string_view what, PropertyKind kind) {
    std::optional<Scope> scope;
    if (!what.empty()) {
        scope.emplace(*this, std::string(what));
    }
    const std::uint32_t n = count(kLeastProperty, "property count");
    std::vector<NqfProperty> list;
    list.reserve(n);
    for (std::uint32_t i = 0; i < n; ++i) {
        Scope item(*this, fmt::format("[{}]", i));
        list.push_back(property(kind));
    }
    return list;
}

NqfTexture NqfParser::texture() {
    NqfTexture t;
    t.texCoordChannel = u32("texture coordinate channel");
    t.name = sref("texture name");
    t.wrapU = u32("wrapU");
    t.wrapV = u32("wrapV");
    t.filter = u32("filter");
    t.mipFilter = u32("mipFilter");
    t.matrix = array<float, 16>("texture matrix");
    return t;
}

std::array<std::uint8_t, 27> NqfParser::vertexFormat() {
    if (const std::uint32_t n = u32("vertex format size"); n != 27) {
        fail("a vertex format of 27 entries", std::to_string(n));
    }
    return array<std::uint8_t, 27>("vertex format");
}

NqfMaterial NqfParser::material() {
    NqfMaterial m;
    const std::uint32_t entries = u32("material entry count");
    if (entries < 10 || entries > 12) {
        fail("a material entry count of 10 to 12", std::to_string(entries));
    }
    // The ten entries every material has, then "BILLBOARD" and "DECAL" when set, in that order.
    std::size_t next = 0;
    for (std::uint32_t e = 0; e < entries; ++e) {
        const std::uint64_t keyOffset = cursor_.offset();
        const std::string& key = sref("material key");
        std::size_t k = next;
        if (e == 10 && entries == 11 && key == kMaterialKeys[11]) {
            k = 11;  // a decal without a billboard
        }
        if (key != kMaterialKeys[k]) {
            failAt(keyOffset,
                   e == 10 && entries == 11 ? "the material key \"BILLBOARD\" or \"DECAL\""
                                            : fmt::format("the material key \"{}\"", kMaterialKeys[k]),
                   fmt::format("\"{}\"", key));
        }
        next = k + 1;
        Scope scope(*this, std::string(key));
        switch (k) {
            case 0:
                m.blending = u8("blending");
                break;
            case 1:
                m.depthBias = u32("depth bias");
                if (m.depthBias > 1) {
                    fail("a depth bias of 0 or 1", std::to_string(m.depthBias));
                }
                break;
            case 2:
                m.vertexFormat = vertexFormat();
                break;
            case 3:
                if (const std::uint32_t n = u32("channel count"); n != 13) {
                    fail("13 texture coordinate channels", std::to_string(n));
                }
                m.textureChannels = array<std::uint32_t, 13>("texture coordinate channels");
                break;
            case 4:
                m.materialName = sref("material name");
                break;
            case 5:
                m.name = sref("name");
                break;
            case 6:
                m.shadows = u8("shadow flags");
                if (m.shadows != 0 && m.shadows != 1 && m.shadows != 4 && m.shadows != 5) {
                    fail("shadow flags 0, 1, 4 or 5", std::to_string(m.shadows));
                }
                break;
            case 7: {
                const std::uint32_t n = count(kTextureSize, "texture count");
                if (n > 19) {
                    fail("at most 19 textures", std::to_string(n));
                }
                for (std::uint32_t i = 0; i < n; ++i) {
                    Scope item(*this, fmt::format("[{}]", i));
                    const std::uint32_t slot = u32("texture slot");
                    const std::uint32_t least = m.textures.empty() ? 0 : m.textures.back().slot + 1;
                    if (slot < least || slot > 18) {
                        fail(fmt::format("a texture slot from {} to 18 (slots ascend)", least),
                             std::to_string(slot));
                    }
                    const std::uint64_t slotOffset = fieldOffset_;
                    NqfTexture t = texture();
                    t.slot = slot;
                    if (t.name.empty()) {
                        failAt(slotOffset + 8, "a texture name (slots without one are left out)",
                               "an empty name");
                    }
                    // Slot 13 takes precedence: a material that names both loses slot 2's name.
                    const auto isSlot2 = [](const NqfTexture& other) { return other.slot == 2; };
                    if (slot == 13 && std::any_of(m.textures.begin(), m.textures.end(), isSlot2)) {
                        failAt(slotOffset,
                               "no texture in slot 13 when slot 2 has one (slot 13 clears slot 2)", "both");
                    }
                    m.textures.push_back(std::move(t));
                }
                break;
            }
            case 8:
                m.uniforms = propertyList("", PropertyKind::Static);
                break;
            case 9:
                m.animatedUniforms = propertyList("", PropertyKind::Animated);
                break;
            case 10:
                m.hasBillboard = true;
                m.billboardType = u8("billboard type");
                m.billboardMode = u8("billboard mode");
                break;
            case 11:
                m.decal = u8("decal");
                if (m.decal == 0) {
                    fail("a non-zero decal (a zero decal is left out)", "0");
                }
                break;
        }
    }
    return m;
}

NqfVertices NqfParser::vertices() {
    Scope scope(*this, "vertices");
    NqfVertices v;
    v.count = u32("vertex count");
    v.floatsPerVertex = u32("floats per vertex");
    if ((v.count == 0) != (v.floatsPerVertex == 0)) {
        fail(v.count == 0 ? "0 floats per vertex for no vertices" : "at least one float per vertex", "0");
    }
    const std::uint64_t floats = static_cast<std::uint64_t>(v.count) * v.floatsPerVertex;  // cannot overflow
    if (floats > cursor_.remaining() / 4) {
        failAt(cursor_.offset(), fmt::format("{} vertices of {} floats each", v.count, v.floatsPerVertex),
               fmt::format("only {} bytes left", cursor_.remaining()));
    }
    const std::uint8_t* p = need(static_cast<std::size_t>(floats * 4), "vertex data");
    v.data.resize(static_cast<std::size_t>(floats));
    for (std::size_t i = 0; i < v.data.size(); ++i) {
        v.data[i] = ByteCursor::loadF32(p + 4 * i);
    }
    return v;
}

NqfIndices NqfParser::indices(std::uint32_t vertexCount) {
    Scope scope(*this, "indices");
    NqfIndices ix;
    ix.width = u8("index width");
    const std::uint64_t widthOffset = fieldOffset_;
    if (ix.width > 2) {
        fail("an index width tag of 0, 1 or 2", std::to_string(ix.width));
    }
    const std::size_t bytes = std::size_t{1} << ix.width;
    const std::uint32_t n = count(0, "index count");
    ix.primitive = u32("primitive");
    if (static_cast<std::uint64_t>(n) * bytes > cursor_.remaining()) {
        failAt(cursor_.offset(), fmt::format("{} indices of {} bytes", n, bytes),
               fmt::format("only {} bytes left", cursor_.remaining()));
    }
    ix.values.resize(n);
    std::uint32_t largest = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        const std::uint8_t* p = need(bytes, "an index");
        const std::uint32_t value = bytes == 1   ? p[0]
                                    : bytes == 2 ? ByteCursor::loadU16(p)
                                                 : ByteCursor::loadU32(p);
        if (value >= vertexCount) {
            Scope item(*this, fmt::format("[{}]", i));
            fail(fmt::format("an index below the vertex count {}", vertexCount), std::to_string(value));
        }
        ix.values[i] = value;
        largest = std::max(largest, value);
    }
    // The writer picks the narrowest width that holds the largest index.
    const std::uint8_t narrowest = largest < 256 ? 0 : largest <= 65535 ? 1 : 2;
    if (ix.width != narrowest) {
        failAt(widthOffset,
               fmt::format("index width tag {} (the narrowest for the largest index {})", narrowest, largest),
               std::to_string(ix.width));
    }
    return ix;
}

}  // namespace model::io
