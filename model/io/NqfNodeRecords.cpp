// Node records: the root, the tree nodes and the list nodes of the four groups.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "model/io/NqfParser.h"

namespace model::io {
namespace {

constexpr std::string_view kRootClasses[] = {"model::RootNode"};
constexpr std::string_view kTreeClasses[] = {
    "model::Node",
    "model::TmpNumberRoot",
    "model::TransformNode",
    "model::Bone",
    "model::BillboardNode",
    "model::LodNode",
    "model::ArgVisibilityNode",
    "model::ArgAnimationNode",
    "model::ArgPositionNode",
    "model::ArgRotationNode",
    "model::ArgScaleNode",
    "model::ArgAnimatedBone",
};
constexpr std::string_view kConnectorClasses[] = {"model::Connector"};
constexpr std::string_view kShellClasses[] = {"model::ShellNode", "model::ShellSkinNode",
                                              "model::SegmentsNode"};
constexpr std::string_view kLightClasses[] = {"model::LightNode"};
constexpr std::string_view kRenderClasses[] = {
    "model::RenderNode",
    "model::NumberNode",
    "model::SkinNode",
    "model::FakeOmniLightsNode",
    "model::FakeSpotLightsNode",
    "model::FakeSpotLights3Node",
    "model::AnimatedFakeOmniLightsNode",
    "model::AnimatedFakeSpotLightsNode",
};
struct GroupClasses {
    std::span<const std::string_view> classes;
    std::string_view kind;
};
const GroupClasses kGroupClasses[] = {
    {kConnectorClasses, "a connector"},
    {kShellClasses, "a shell node"},
    {kLightClasses, "a light node"},
    {kRenderClasses, "a render node"},
};

// The smallest material record: the count, ten keys and the ten smallest values.
constexpr std::size_t kLeastMaterial = 4 + 10 * 4 + 1 + 4 + 31 + 56 + 4 + 4 + 1 + 4 + 4 + 4;
constexpr std::size_t kOmniLightSize = 24 + 8 + 8 + 4 + 4;
constexpr std::size_t kSpotLightSize = kOmniLightSize + 8 + 8 + 1;

// The root's boxes are floats widened to doubles: each double must hold a float exactly.
bool holdsFloat(double d) {
    if (std::isnan(d) || std::isinf(d)) {
        return true;
    }
    return std::fabs(d) <= FLT_MAX && static_cast<double>(static_cast<float>(d)) == d;
}

// The class name under which an animation node is saved follows which kinds of channel hold keys.
template <class C>
bool anyKeys(const std::vector<C>& channels) {
    return std::any_of(channels.begin(), channels.end(), [](const C& c) {
        if constexpr (requires { c.secondKeys; }) {
            return !c.keys.empty() || !c.secondKeys.empty();
        } else {
            return !c.keys.empty();
        }
    });
}

struct KeyedChannels {
    bool position, rotation, scale;
};

std::string_view animationClass(KeyedChannels k) {
    if (k.position && !k.rotation && !k.scale) {
        return "model::ArgPositionNode";
    }
    if (k.rotation && !k.position && !k.scale) {
        return "model::ArgRotationNode";
    }
    if (!k.position && !k.rotation) {
        return "model::ArgScaleNode";
    }
    return "model::ArgAnimationNode";
}

std::string describe(KeyedChannels k) {
    std::vector<std::string_view> kinds;
    for (auto [has, kind] :
         {std::pair{k.position, "position"}, {k.rotation, "rotation"}, {k.scale, "scale"}}) {
        if (has) {
            kinds.push_back(kind);
        }
    }
    return kinds.empty() ? "no keys" : fmt::format("keys in {} channels", fmt::join(kinds, " and "));
}

}  // namespace

NqfHead NqfParser::head(std::span<const std::string_view> classes, std::string_view kind) {
    NqfHead h;
    const std::uint64_t classOffset = cursor_.offset();
    h.className = sref("class name");
    if (std::find(classes.begin(), classes.end(), h.className) == classes.end()) {
        failAt(classOffset, fmt::format("the class name of {}", kind), fmt::format("\"{}\"", h.className));
    }
    h.name = inlineText("name");
    reserved32("reserved word");
    h.properties = propertyList("properties");
    // The class version travels as a property; add-or-replace keeps the first of the name.
    for (const NqfProperty& p : h.properties) {
        if (p.name == "__VERSION__") {
            h.version = p.uintValue;
            break;
        }
    }
    return h;
}

NqfBox NqfParser::box(std::string_view what) {
    NqfBox b;
    b.min = array<float, 3>(what);
    b.max = array<float, 3>(what);
    for (int i = 0; i < 3; ++i) {
        if (!(b.max[i] >= b.min[i])) {
            fail(fmt::format("a valid {} (each maximum at least its minimum)", what),
                 fmt::format("minimum {} and maximum {} on axis {}", b.min[i], b.max[i], i));
        }
    }
    return b;
}

NqfRoot NqfParser::root() {
    Scope scope(*this, "root");
    NqfRoot r;
    // Arguments of the root and of materials do not count toward the handle count.
    countArguments_ = false;
    r.head = head(kRootClasses, "the root record");
    for (NqfBox* b : {&r.boundingBox, &r.userBox, &r.lightBox}) {
        for (Vec3f* corner : {&b->min, &b->max}) {
            const Vec3d wide = array<double, 3>("box corner");
            for (int i = 0; i < 3; ++i) {
                if (!holdsFloat(wide[i])) {
                    fail("box corners of float values widened to doubles", fmt::format("{}", wide[i]));
                }
                (*corner)[i] = static_cast<float>(wide[i]);
            }
        }
    }
    materialCount_ = count(kLeastMaterial, "material count");
    r.materials.reserve(materialCount_);
    for (std::size_t i = 0; i < materialCount_; ++i) {
        Scope item(*this, fmt::format("materials[{}]", i));
        r.materials.push_back(material());
    }
    reserved32("reserved word");
    r.numHandles = u32("handle count");
    numHandlesOffset_ = fieldOffset_;
    countArguments_ = true;
    return r;
}

NqfNode NqfParser::treeNode() {
    const std::uint64_t classOffset = cursor_.offset();
    NqfNode n;
    n.head = head(kTreeClasses, "a tree node");
    const std::string& c = n.head.className;
    if (c == "model::Node" || c == "model::TmpNumberRoot") {
        n.body = NqfPlainBody{};
    } else if (c == "model::TransformNode" || c == "model::Bone") {
        NqfTransformBody b;
        b.matrix = array<double, 16>("matrix");
        if (c == "model::Bone") {
            b.isBone = true;
            b.boneMatrix = array<double, 16>("bone matrix");
        }
        n.body = b;
    } else if (c == "model::BillboardNode") {
        NqfBillboardBody b;
        b.billboardType = u8("billboard type");
        b.billboardAxis = u8("billboard axis");
        b.matrix = array<double, 16>("matrix");
        b.offset = array<double, 3>("billboard offset");
        n.body = b;
    } else if (c == "model::LodNode") {
        NqfLodBody b;
        const std::uint32_t count_ = count(16, "range count");
        b.ranges.reserve(count_);
        for (std::uint32_t i = 0; i < count_; ++i) {
            const auto r = array<double, 2>("range");
            b.ranges.push_back({r[0], r[1]});
        }
        n.body = b;
    } else if (c == "model::ArgVisibilityNode") {
        NqfVisibilityBody b;
        const std::uint32_t entries = count(8, "entry count");
        b.entries.reserve(entries);
        for (std::uint32_t i = 0; i < entries; ++i) {
            Scope item(*this, fmt::format("entries[{}]", i));
            NqfVisibilityEntry e;
            e.argument = u32("argument");
            noteArgument(e.argument);
            const std::uint32_t ranges = count(16, "range count");
            e.ranges.reserve(ranges);
            for (std::uint32_t k = 0; k < ranges; ++k) {
                const auto r = array<double, 2>("range");
                e.ranges.push_back({r[0], r[1]});
            }
            b.entries.push_back(std::move(e));
        }
        n.body = b;
    } else {
        n.body = animation(n.head, classOffset);
    }
    return n;
}

NqfAnimationBody NqfParser::animation(const NqfHead& head, std::uint64_t classOffset) {
    NqfAnimationBody b;
    b.matrix = array<double, 16>("matrix");
    b.basePosition = array<double, 3>("base position");
    b.baseRotationA = array<double, 4>("base rotation");
    b.baseRotationB = array<double, 4>("base rotation");
    b.baseScale = array<double, 3>("base scale");

    auto argument = [&](std::string_view kind) {
        const std::uint32_t a = u32("argument");
        if (a == kNoIndex) {
            fail(fmt::format("a valid {} handle", kind), "0xFFFFFFFF");
        }
        noteArgument(a);
        return a;
    };
    auto keys = [&]<class V>(std::vector<NqfKey<V>>& out, std::string_view what) {
        const std::uint32_t n = count(8 + sizeof(V), what);
        out.reserve(n);
        for (std::uint32_t k = 0; k < n; ++k) {
            NqfKey<V> key;
            key.time = f64("key time");
            key.value = array<double, std::tuple_size_v<V>>("key value");
            out.push_back(key);
        }
    };
    auto channels = [&]<class C>(std::vector<C>& out, std::string_view kind) {
        constexpr bool scale = std::is_same_v<C, NqfScaleChannel>;
        const std::uint32_t n = count(scale ? 12 : 8, fmt::format("{} channel count", kind));
        out.reserve(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            Scope item(*this, fmt::format("{}[{}]", kind, i));
            C& ch = out.emplace_back();
            ch.argument = argument(kind);
            keys(ch.keys, "key count");
            if constexpr (scale) {
                keys(ch.secondKeys, "second key count");
            }
        }
    };
    channels(b.position, "position");
    channels(b.rotation, "rotation");
    channels(b.scale, "scale");
    if (head.className == "model::ArgAnimatedBone") {
        b.isBone = true;
        b.boneMatrix = array<double, 16>("bone matrix");
        return b;
    }
    const KeyedChannels keyed{anyKeys(b.position), anyKeys(b.rotation), anyKeys(b.scale)};
    if (const std::string_view expected = animationClass(keyed); expected != head.className) {
        failAt(classOffset, fmt::format("the class name \"{}\" for {}", expected, describe(keyed)),
               fmt::format("\"{}\"", head.className));
    }
    return b;
}

std::vector<std::uint32_t> NqfParser::links(std::string_view what) {
    const std::uint32_t n = count(4, what);
    std::vector<std::uint32_t> out;
    out.reserve(n);
    for (std::uint32_t i = 0; i < n; ++i) {
        out.push_back(nodeIndex("link"));
    }
    return out;
}

NqfNode NqfParser::listNode(std::size_t group) {
    NqfNode n;
    n.head = head(kGroupClasses[group].classes, kGroupClasses[group].kind);
    const std::string& c = n.head.className;
    if (c == "model::Connector") {
        NqfConnectorBody b;
        b.controlNode = nodeIndex("control node");
        reserved32("reserved word");
        n.body = b;
    } else if (c == "model::LightNode") {
        n.body = light(n.head);
    } else if (c == "model::ShellNode") {
        n.body = shell();
    } else if (c == "model::SegmentsNode") {
        n.body = segments();
    } else if (c == "model::ShellSkinNode" || c == "model::SkinNode") {
        n.body = skin(n.head, c == "model::ShellSkinNode");
    } else if (c == "model::RenderNode" || c == "model::NumberNode") {
        n.body = render(n.head);
    } else if (c == "model::FakeSpotLights3Node") {
        n.body = fakeSpots3();
    } else {
        const bool spot = c.find("Spot") != std::string::npos;
        const bool animated = c.starts_with("model::Animated");
        n.body = fakeLights(n.head, spot, animated);
    }
    return n;
}

NqfLightBody NqfParser::light(const NqfHead& head) {
    NqfLightBody b;
    b.link = nodeIndex("link");
    b.lightFlag = u8("light flag");
    const std::uint32_t expected = head.version == 3 ? 10 : 7;
    if (const std::uint32_t n = u32("light property count"); n != expected) {
        fail(fmt::format("{} light properties at class version {}", expected, head.version),
             std::to_string(n));
    }
    for (std::uint32_t i = 0; i < expected; ++i) {
        Scope item(*this, fmt::format("light properties[{}]", i));
        b.properties.push_back(property());
    }
    if (head.version == 3) {
        b.hasLightKind = true;
        b.lightKind = u8("light kind");
    }
    const std::uint8_t hasTexture = u8("texture flag");
    if (hasTexture > 1) {
        fail("a texture flag of 0 or 1", std::to_string(hasTexture));
    }
    if (hasTexture == 1) {
        Scope item(*this, "texture");
        b.hasTexture = true;
        b.texture = texture();
    }
    return b;
}

NqfRenderBody NqfParser::render(const NqfHead& head) {
    NqfRenderBody b;
    reserved32("reserved word");
    b.material = materialIndex();
    // One link is stored as (node, argument); two or more as (node, 0, argument) each.
    const std::uint32_t n = count(8, "link count");
    for (std::uint32_t i = 0; i < n; ++i) {
        Scope item(*this, fmt::format("links[{}]", i));
        NqfRenderLink& link = b.links.emplace_back();
        link.node = nodeIndex("link");
        if (n >= 2) {
            reserved32("reserved word");
        }
        link.argument = u32("argument");
        noteArgument(link.argument);
    }
    b.vertices = vertices();
    b.indices = indices(b.vertices.count);
    if (head.version != 0) {
        b.hasRenderOption = true;
        b.renderOption = u32("render option");
    }
    if (head.className == "model::NumberNode") {
        for (std::uint32_t i = 0; i < n; ++i) {
            Scope item(*this, fmt::format("digits[{}]", i));
            const std::uint32_t entries = count(16, "entry count");
            auto& list = b.digits.emplace_back();
            list.reserve(entries);
            for (std::uint32_t k = 0; k < entries; ++k) {
                list.push_back(array<std::uint8_t, 16>("entry"));
            }
        }
    }
    return b;
}

NqfSkinBody NqfParser::skin(const NqfHead& head, bool shell) {
    NqfSkinBody b;
    if (!shell) {
        reserved32("reserved word");
        b.material = materialIndex();
    }
    {
        Scope item(*this, "bones");
        b.bones = links("bone count");
    }
    b.argument = u32("argument");
    noteArgument(b.argument);
    // The box is written only when valid, and nothing in the record says so: a skin of class
    // version 1 or more has it, one of version 0 does not.
    if (head.version >= 1) {
        b.hasBox = true;
        b.box = box("box");
    }
    if (shell) {
        b.format = vertexFormat();
    }
    b.vertices = vertices();
    b.indices = indices(b.vertices.count);
    return b;
}

NqfShellBody NqfParser::shell() {
    NqfShellBody b;
    b.controlNode = nodeIndex("control node");
    b.format = vertexFormat();
    b.vertices = vertices();
    b.indices = indices(b.vertices.count);
    return b;
}

NqfSegmentsBody NqfParser::segments() {
    NqfSegmentsBody b;
    b.controlNode = nodeIndex("control node");
    const std::uint32_t n = count(24, "segment count");
    b.segments.reserve(n);
    for (std::uint32_t i = 0; i < n; ++i) {
        NqfSegment s;
        s.a = array<float, 3>("segment point");
        s.b = array<float, 3>("segment point");
        b.segments.push_back(s);
    }
    return b;
}

NqfFakeLightsBody NqfParser::fakeLights(const NqfHead& head, bool spot, bool animated) {
    NqfFakeLightsBody b;
    reserved32("reserved word");
    b.material = materialIndex();
    const std::uint32_t linkCount = count(spot ? 20 : 8, "link count");
    for (std::uint32_t i = 0; i < linkCount; ++i) {
        Scope item(*this, fmt::format("links[{}]", i));
        b.links.push_back(nodeIndex("link"));
        reserved32("reserved word");
        if (spot) {
            b.linkDirections.push_back(array<float, 3>("direction"));
        }
    }
    const std::uint32_t lightCount = count(spot ? kSpotLightSize : kOmniLightSize, "light count");
    b.lights.reserve(lightCount);
    for (std::uint32_t i = 0; i < lightCount; ++i) {
        Scope item(*this, fmt::format("lights[{}]", i));
        NqfFakeLight& l = b.lights.emplace_back();
        l.position = array<double, 3>("position");
        l.windowLow = array<float, 2>("texture window");
        l.windowHigh = array<float, 2>("texture window");
        l.size = f32("size");
        l.parent = u32("parent");
        if (spot) {
            l.backWindowLow = array<float, 2>("back texture window");
            l.backWindowHigh = array<float, 2>("back texture window");
            l.spotFlag = u8("spot flag");
        }
    }
    if (spot && head.version == 2) {
        Scope item(*this, "directions");
        if (std::uint64_t{lightCount} * 12 > cursor_.remaining()) {
            failAt(cursor_.offset(), fmt::format("{} directions, one per light", lightCount),
                   fmt::format("only {} bytes left", cursor_.remaining()));
        }
        for (std::uint32_t i = 0; i < lightCount; ++i) {
            b.directions.push_back(array<float, 3>("direction"));
        }
    }
    if (animated) {
        Scope item(*this, "animation");
        b.animated = true;
        b.argument = u32("argument");
        if (b.argument == kNoIndex) {
            fail("a valid argument", "0xFFFFFFFF");
        }
        noteArgument(b.argument);
        if (const std::uint32_t stride = u32("values per light"); stride != 128) {
            fail("128 values per light", std::to_string(stride));
        }
        const std::uint32_t n = count(4, "value count");
        if (n != std::uint64_t{lightCount} * 128) {
            fail(fmt::format("{} values, 128 for each of {} lights", std::uint64_t{lightCount} * 128,
                             lightCount),
                 std::to_string(n));
        }
        const std::uint8_t* p = need(std::size_t{n} * 4, "animation data");
        b.animationData.resize(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            b.animationData[i] = ByteCursor::loadF32(p + 4 * i);
        }
    }
    return b;
}

NqfFakeSpots3Body NqfParser::fakeSpots3() {
    NqfFakeSpots3Body b;
    reserved32("reserved word");
    b.material = materialIndex();
    b.links = links("link count");
    b.lights = vertices();
    return b;
}

}  // namespace model::io
