#pragma once
// Everything a version 10 .nqf file holds, as plain values: what the reader produces and what a
// round trip compares. Reserved words are not kept (the reader checks that they are 0), nor are
// counts that the containers' sizes already say. String references are resolved to their text.

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace model::io {

using Vec2f = std::array<float, 2>;
using Vec3f = std::array<float, 3>;
using Vec3d = std::array<double, 3>;
using Vec4d = std::array<double, 4>;
using Matrixf = std::array<float, 16>;
using Matrixd = std::array<double, 16>;

inline constexpr std::uint32_t kNoIndex = 0xFFFFFFFF;

struct NqfPropertyKey {
    double time = 0;
    std::vector<float> value;  // 1 to 4 components, by the property's class
    bool operator==(const NqfPropertyKey&) const = default;
};

// One property record. Which fields carry the value depends on `className`: `floats` for the
// static float and vector classes, `uintValue`, `text`, and for the animated classes `argument`
// and `keys` ("model::ArgumentProperty" has the argument alone).
struct NqfProperty {
    std::string className;
    std::string name;
    std::vector<float> floats;
    std::uint32_t uintValue = 0;
    std::string text;
    std::uint32_t argument = kNoIndex;
    std::vector<NqfPropertyKey> keys;
    bool operator==(const NqfProperty&) const = default;
};

struct NqfTexture {
    std::uint32_t slot = 0;  // 0 to 18; a node's projector texture has slot 0
    std::uint32_t texCoordChannel = kNoIndex;
    std::string name;
    std::uint32_t wrapU = 0, wrapV = 0, filter = 0, mipFilter = 0;
    Matrixf matrix{};
    bool operator==(const NqfTexture&) const = default;
};

struct NqfMaterial {
    std::uint8_t blending = 0;
    std::uint32_t depthBias = 0;
    std::array<std::uint8_t, 27> vertexFormat{};
    std::array<std::uint32_t, 13> textureChannels{};
    std::string materialName;
    std::string name;
    std::uint8_t shadows = 0;
    std::vector<NqfTexture> textures;
    std::vector<NqfProperty> uniforms;
    std::vector<NqfProperty> animatedUniforms;
    bool hasBillboard = false;
    std::uint8_t billboardType = 0, billboardMode = 0;
    std::uint8_t decal = 0;  // 0 when the record has no "DECAL" entry
    bool operator==(const NqfMaterial&) const = default;
};

struct NqfVertices {
    std::uint32_t count = 0;
    std::uint32_t floatsPerVertex = 0;
    std::vector<float> data;  // interleaved, count x floatsPerVertex
    bool operator==(const NqfVertices&) const = default;
};

struct NqfIndices {
    std::uint8_t width = 0;  // the width tag: 0, 1 or 2 for 1-, 2- or 4-byte indices
    std::uint32_t primitive = 0;
    std::vector<std::uint32_t> values;
    bool operator==(const NqfIndices&) const = default;
};

// The head that every record starts with.
struct NqfHead {
    std::string className;
    std::string name;
    std::vector<NqfProperty> properties;
    std::uint32_t version = 0;  // the "__VERSION__" property's value, 0 without one
    bool operator==(const NqfHead&) const = default;
};

// Tree node bodies, by class.
struct NqfPlainBody {  // "model::Node", "model::TmpNumberRoot"
    bool operator==(const NqfPlainBody&) const = default;
};
struct NqfTransformBody {  // "model::TransformNode", "model::Bone"
    Matrixd matrix{};
    bool isBone = false;
    Matrixd boneMatrix{};
    bool operator==(const NqfTransformBody&) const = default;
};
struct NqfBillboardBody {
    std::uint8_t billboardType = 0, billboardAxis = 0;
    Matrixd matrix{};
    Vec3d offset{};
    bool operator==(const NqfBillboardBody&) const = default;
};
struct NqfRange {
    double first = 0, second = 0;
    bool operator==(const NqfRange&) const = default;
};
struct NqfLodBody {
    std::vector<NqfRange> ranges;  // near, far
    bool operator==(const NqfLodBody&) const = default;
};
struct NqfVisibilityEntry {
    std::uint32_t argument = 0;
    std::vector<NqfRange> ranges;  // start, end
    bool operator==(const NqfVisibilityEntry&) const = default;
};
struct NqfVisibilityBody {
    std::vector<NqfVisibilityEntry> entries;
    bool operator==(const NqfVisibilityBody&) const = default;
};
template <class V>
struct NqfKey {
    double time = 0;
    V value{};
    bool operator==(const NqfKey&) const = default;
};
template <class V>
struct NqfChannel {
    std::uint32_t argument = 0;
    std::vector<NqfKey<V>> keys;
    bool operator==(const NqfChannel&) const = default;
};
struct NqfScaleChannel {
    std::uint32_t argument = 0;
    std::vector<NqfKey<Vec4d>> keys;
    std::vector<NqfKey<Vec3d>> secondKeys;
    bool operator==(const NqfScaleChannel&) const = default;
};
// "model::ArgAnimationNode", "model::ArgPositionNode", "model::ArgRotationNode",
// "model::ArgScaleNode", "model::ArgAnimatedBone" (which adds the bone matrix).
struct NqfAnimationBody {
    Matrixd matrix{};
    Vec3d basePosition{};
    Vec4d baseRotationA{}, baseRotationB{};
    Vec3d baseScale{};
    std::vector<NqfChannel<Vec3d>> position;
    std::vector<NqfChannel<Vec4d>> rotation;
    std::vector<NqfScaleChannel> scale;
    bool isBone = false;
    Matrixd boneMatrix{};
    bool operator==(const NqfAnimationBody&) const = default;
};

// List node bodies, by class. Links are indices into the tree, materials into the root's list.
struct NqfConnectorBody {
    std::uint32_t controlNode = 0;
    bool operator==(const NqfConnectorBody&) const = default;
};
struct NqfLightBody {
    std::uint32_t link = 0;
    std::uint8_t lightFlag = 0;
    std::vector<NqfProperty> properties;  // 7, or 10 at class version 3
    bool hasLightKind = false;            // class version 3
    std::uint8_t lightKind = 0;
    bool hasTexture = false;
    NqfTexture texture;
    bool operator==(const NqfLightBody&) const = default;
};
struct NqfRenderLink {
    std::uint32_t node = 0;
    std::uint32_t argument = 0;
    bool operator==(const NqfRenderLink&) const = default;
};
struct NqfRenderBody {  // "model::RenderNode", "model::NumberNode"
    std::uint32_t material = 0;
    std::vector<NqfRenderLink> links;
    NqfVertices vertices;
    NqfIndices indices;
    bool hasRenderOption = false;  // class version not 0
    std::uint32_t renderOption = 0;
    // NumberNode only: per link, its 16-byte entries.
    std::vector<std::vector<std::array<std::uint8_t, 16>>> digits;
    bool operator==(const NqfRenderBody&) const = default;
};
struct NqfBox {
    Vec3f min{}, max{};
    bool operator==(const NqfBox&) const = default;
};
struct NqfSkinBody {             // "model::SkinNode", "model::ShellSkinNode"
    std::uint32_t material = 0;  // SkinNode only
    std::vector<std::uint32_t> bones;
    std::uint32_t argument = 0;
    bool hasBox = false;  // class version 1 and up
    NqfBox box;
    std::array<std::uint8_t, 27> format{};  // ShellSkinNode only
    NqfVertices vertices;
    NqfIndices indices;
    bool operator==(const NqfSkinBody&) const = default;
};
struct NqfShellBody {
    std::uint32_t controlNode = 0;
    std::array<std::uint8_t, 27> format{};
    NqfVertices vertices;
    NqfIndices indices;
    bool operator==(const NqfShellBody&) const = default;
};
struct NqfSegment {
    Vec3f a{}, b{};
    bool operator==(const NqfSegment&) const = default;
};
struct NqfSegmentsBody {
    std::uint32_t controlNode = 0;
    std::vector<NqfSegment> segments;
    bool operator==(const NqfSegmentsBody&) const = default;
};
struct NqfFakeLight {
    Vec3d position{};
    Vec2f windowLow{}, windowHigh{};
    float size = 0;
    std::uint32_t parent = 0;
    // Spot lights only.
    Vec2f backWindowLow{}, backWindowHigh{};
    std::uint8_t spotFlag = 0;
    bool operator==(const NqfFakeLight&) const = default;
};
// "model::FakeOmniLightsNode", "model::FakeSpotLightsNode" and their animated forms.
struct NqfFakeLightsBody {
    std::uint32_t material = 0;
    std::vector<std::uint32_t> links;
    std::vector<Vec3f> linkDirections;  // spot only, one per link
    std::vector<NqfFakeLight> lights;
    std::vector<Vec3f> directions;  // spot at class version 2, one per light
    bool animated = false;
    std::uint32_t argument = kNoIndex;
    std::vector<float> animationData;  // 128 per light
    bool operator==(const NqfFakeLightsBody&) const = default;
};
struct NqfFakeSpots3Body {  // "model::FakeSpotLights3Node"
    std::uint32_t material = 0;
    std::vector<std::uint32_t> links;
    NqfVertices lights;
    bool operator==(const NqfFakeSpots3Body&) const = default;
};

using NqfBody = std::variant<NqfPlainBody, NqfTransformBody, NqfBillboardBody, NqfLodBody, NqfVisibilityBody,
                             NqfAnimationBody, NqfConnectorBody, NqfLightBody, NqfRenderBody, NqfSkinBody,
                             NqfShellBody, NqfSegmentsBody, NqfFakeLightsBody, NqfFakeSpots3Body>;

struct NqfNode {
    NqfHead head;
    NqfBody body;
    bool operator==(const NqfNode&) const = default;
};

struct NqfRoot {
    NqfHead head;
    NqfBox boundingBox, userBox, lightBox;  // stored widened to doubles, read back as floats
    std::vector<NqfMaterial> materials;
    std::uint32_t numHandles = 0;
    bool operator==(const NqfRoot&) const = default;
};

struct NqfGroup {
    std::string name;  // "CONNECTORS", "SHELL_NODES", "LIGHT_NODES" or "RENDER_NODES"
    std::vector<NqfNode> nodes;
    bool operator==(const NqfGroup&) const = default;
};

struct NqfDocument {
    std::uint16_t version = 10;
    std::vector<std::string> strings;  // the string table, in order
    NqfRoot root;
    std::vector<NqfNode> tree;           // pre-order
    std::vector<std::uint32_t> parents;  // one per tree node, kNoIndex for the tree's root
    std::vector<NqfGroup> groups;        // the non-empty groups, in file order
    bool operator==(const NqfDocument&) const = default;
};

}  // namespace model::io
