#pragma once
// Hand-built .nqf files for the reader's tests: a little-endian byte builder that interns
// strings in order of first use, and one helper per record shape. Offsets in expected messages
// are computed with at(), since the string table in front of the body is complete only at the end.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nqftest {

struct NqfBytes {
    std::vector<std::string> strings;
    std::vector<std::uint8_t> body;  // everything after the string table

    NqfBytes& u8(std::uint8_t v) {
        body.push_back(v);
        return *this;
    }
    NqfBytes& u16(std::uint16_t v) {
        return u8(static_cast<std::uint8_t>(v)).u8(static_cast<std::uint8_t>(v >> 8));
    }
    NqfBytes& u32(std::uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            u8(static_cast<std::uint8_t>(v >> (8 * i)));
        }
        return *this;
    }
    NqfBytes& u64(std::uint64_t v) {
        return u32(static_cast<std::uint32_t>(v)).u32(static_cast<std::uint32_t>(v >> 32));
    }
    NqfBytes& f32(float v) { return u32(std::bit_cast<std::uint32_t>(v)); }
    NqfBytes& f64(double v) { return u64(std::bit_cast<std::uint64_t>(v)); }
    NqfBytes& f32s(std::initializer_list<float> vs) {
        for (float v : vs) {
            f32(v);
        }
        return *this;
    }
    NqfBytes& f64s(std::initializer_list<double> vs) {
        for (double v : vs) {
            f64(v);
        }
        return *this;
    }
    NqfBytes& identity64() {
        for (int i = 0; i < 16; ++i) {
            f64(i % 5 == 0 ? 1.0 : 0.0);
        }
        return *this;
    }
    NqfBytes& identity32() {
        for (int i = 0; i < 16; ++i) {
            f32(i % 5 == 0 ? 1.0f : 0.0f);
        }
        return *this;
    }
    // A string reference: the ordinal of the text, interned on first use.
    NqfBytes& sref(std::string_view text) {
        auto it = std::find(strings.begin(), strings.end(), text);
        if (it == strings.end()) {
            strings.emplace_back(text);
            it = strings.end() - 1;
        }
        return u32(static_cast<std::uint32_t>(it - strings.begin()));
    }
    NqfBytes& text(std::string_view t) {
        u32(static_cast<std::uint32_t>(t.size()));
        body.insert(body.end(), t.begin(), t.end());
        return *this;
    }

    std::size_t size() const { return body.size(); }
    std::size_t tableSize() const {
        std::size_t n = 0;
        for (const auto& s : strings) {
            n += s.size() + 1;
        }
        return n;
    }
    // The file offset of a body offset.
    std::uint64_t at(std::size_t bodyOffset) const { return 9 + tableSize() + bodyOffset; }

    std::vector<std::uint8_t> file() const {
        NqfBytes head;
        head.body = {'N', 'Q', 'F'};
        head.u16(10).u32(static_cast<std::uint32_t>(tableSize()));
        for (const auto& s : strings) {
            head.body.insert(head.body.end(), s.begin(), s.end());
            head.u8(0);
        }
        head.body.insert(head.body.end(), body.begin(), body.end());
        return head.body;
    }
};

using Writer = std::function<void(NqfBytes&)>;

// Head of a record: class, inline name, reserved word, property list. A non-zero version goes
// in as the "__VERSION__" property, after the given properties.
inline void head(NqfBytes& b, std::string_view cls, std::string_view name, std::uint32_t version = 0,
                 int propertyCount = 0, const Writer& properties = {}) {
    b.sref(cls).text(name).u32(0).u32(static_cast<std::uint32_t>(propertyCount + (version ? 1 : 0)));
    if (properties) {
        properties(b);
    }
    if (version) {
        b.sref("model::Property<unsigned int>").sref("__VERSION__").u32(version);
    }
}

inline void animatedFloat(NqfBytes& b, std::string_view name, std::uint32_t argument,
                          std::initializer_list<std::pair<double, float>> keys) {
    b.sref("model::AnimatedProperty<float>")
        .sref(name)
        .u32(argument)
        .u32(static_cast<std::uint32_t>(keys.size()));
    for (auto [t, v] : keys) {
        b.f64(t).f32(v);
    }
}

inline void textureRecord(NqfBytes& b, std::string_view name, std::uint32_t channel = 0) {
    b.u32(channel).sref(name).u32(2).u32(2).u32(10).u32(6).identity32();
}

struct MaterialFields {
    std::string name = "mat";
    std::vector<std::pair<std::uint32_t, std::string>> textures;  // slot, name
    bool billboard = false;
    std::uint8_t decal = 0;
    std::uint8_t shadows = 1;
    std::uint32_t depthBias = 0;
    Writer uniforms;  // count and records
    Writer animatedUniforms;
};

inline void material(NqfBytes& b, const MaterialFields& m = {}) {
    b.u32(10 + (m.billboard ? 1 : 0) + (m.decal ? 1 : 0));
    b.sref("BLENDING").u8(1);
    b.sref("DEPTH_BIAS").u32(m.depthBias);
    b.sref("VERTEX_FORMAT").u32(27);
    for (int i = 0; i < 27; ++i) {
        b.u8(i == 0 ? 3 : i == 1 ? 3 : 0);
    }
    b.sref("TEXTURE_COORDINATES_CHANNELS").u32(13);
    for (int i = 0; i < 13; ++i) {
        b.u32(i == 0 ? 0 : 0xFFFFFFFF);
    }
    b.sref("MATERIAL_NAME").sref("default");
    b.sref("NAME").sref(m.name);
    b.sref("SHADOWS").u8(m.shadows);
    b.sref("TEXTURES").u32(static_cast<std::uint32_t>(m.textures.size()));
    for (const auto& [slot, name] : m.textures) {
        b.u32(slot);
        textureRecord(b, name);
    }
    b.sref("UNIFORMS");
    m.uniforms ? m.uniforms(b) : void(b.u32(0));
    b.sref("ANIMATED_UNIFORMS");
    m.animatedUniforms ? m.animatedUniforms(b) : void(b.u32(0));
    if (m.billboard) {
        b.sref("BILLBOARD").u8(1).u8(6);
    }
    if (m.decal) {
        b.sref("DECAL").u8(m.decal);
    }
}

// The reserved word after the table and the root record.
inline void root(NqfBytes& b, std::uint32_t numHandles = 0,
                 const std::vector<MaterialFields>& materials = {{}}) {
    b.u64(0);
    head(b, "model::RootNode", "", 3);
    b.f64s({-1, -2, -3, 1, 2, 3});  // bounding box
    b.f64s({0, 0, 0, 0.5, 0.5, 0.5});
    b.f64s({3.4028234663852886e38, 3.4028234663852886e38, 3.4028234663852886e38, -3.4028234663852886e38,
            -3.4028234663852886e38, -3.4028234663852886e38});  // the empty box
    b.u32(static_cast<std::uint32_t>(materials.size()));
    for (const auto& m : materials) {
        material(b, m);
    }
    b.u32(0).u32(numHandles);
}

inline void vertices(NqfBytes& b, std::uint32_t count, std::uint32_t floatsPerVertex) {
    b.u32(count).u32(floatsPerVertex);
    for (std::uint32_t i = 0; i < count * floatsPerVertex; ++i) {
        b.f32(static_cast<float>(i) * 0.5f);
    }
}

inline void indices(NqfBytes& b, std::uint8_t tag, const std::vector<std::uint32_t>& values,
                    std::uint32_t primitive = 5) {
    b.u8(tag).u32(static_cast<std::uint32_t>(values.size())).u32(primitive);
    for (std::uint32_t v : values) {
        tag == 0   ? void(b.u8(static_cast<std::uint8_t>(v)))
        : tag == 1 ? void(b.u16(static_cast<std::uint16_t>(v)))
                   : void(b.u32(v));
    }
}

// A whole file: root, a tree of a plain node with a transform child, then the groups, each a
// name and its records. Tests that need other trees write them with treeFile.
struct Group {
    std::string name;
    std::vector<Writer> records;
};

inline NqfBytes treeFile(const std::vector<Writer>& treeNodes, const std::vector<std::uint32_t>& parents,
                         const std::vector<Group>& groups, std::uint32_t numHandles = 0,
                         const std::vector<MaterialFields>& materials = {{}}) {
    NqfBytes b;
    root(b, numHandles, materials);
    b.u32(static_cast<std::uint32_t>(treeNodes.size()));
    for (const auto& w : treeNodes) {
        w(b);
    }
    for (std::uint32_t p : parents) {
        b.u32(p);
    }
    b.u32(static_cast<std::uint32_t>(groups.size()));
    for (const auto& g : groups) {
        b.sref(g.name).u32(static_cast<std::uint32_t>(g.records.size()));
        for (const auto& w : g.records) {
            w(b);
        }
    }
    return b;
}

inline void plainNode(NqfBytes& b) {
    head(b, "model::Node", "root");
}
inline void transformNode(NqfBytes& b) {
    head(b, "model::TransformNode", "t");
    b.identity64();
}

inline NqfBytes groupFile(const std::vector<Group>& groups, std::uint32_t numHandles = 0,
                          const std::vector<MaterialFields>& materials = {{}}) {
    return treeFile({plainNode, transformNode}, {0xFFFFFFFF, 0}, groups, numHandles, materials);
}

}  // namespace nqftest
