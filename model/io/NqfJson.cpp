#include "model/io/NqfJson.h"

#include <string_view>
#include <type_traits>

#include "model/io/JsonWriter.h"

namespace model::io {
namespace {

class DocumentJson {
public:
    explicit DocumentJson(std::string& out) : w_(out) {}

    void document(const NqfDocument& d) {
        w_.beginObject();
        w_.key("version");
        w_.value(d.version);
        w_.key("strings");
        w_.beginArray();
        for (const std::string& s : d.strings) {
            w_.value(s);
        }
        w_.endArray();
        w_.key("root");
        root(d.root);
        w_.key("tree");
        w_.beginArray();
        for (std::size_t i = 0; i < d.tree.size(); ++i) {
            w_.beginObject();
            w_.key("index");
            w_.value(static_cast<std::uint64_t>(i));
            w_.key("parent");
            i < d.parents.size() && d.parents[i] != kNoIndex ? w_.value(d.parents[i]) : w_.null();
            node(d.tree[i]);
            w_.endObject();
        }
        w_.endArray();
        w_.key("groups");
        w_.beginArray();
        for (const NqfGroup& g : d.groups) {
            w_.beginObject();
            w_.key("name");
            w_.value(g.name);
            w_.key("nodes");
            w_.beginArray();
            for (const NqfNode& n : g.nodes) {
                w_.beginObject();
                node(n);
                w_.endObject();
            }
            w_.endArray();
            w_.endObject();
        }
        w_.endArray();
        w_.endObject();
    }

    void operator()(const NqfPlainBody&) {}
    void operator()(const NqfTransformBody& b) {
        field("matrix", b.matrix);
        if (b.isBone) {
            field("boneMatrix", b.boneMatrix);
        }
    }
    void operator()(const NqfBillboardBody& b) {
        field("billboardType", b.billboardType);
        field("billboardAxis", b.billboardAxis);
        field("matrix", b.matrix);
        field("offset", b.offset);
    }
    void operator()(const NqfLodBody& b) {
        w_.key("ranges");
        ranges(b.ranges);
    }
    void operator()(const NqfVisibilityBody& b) {
        w_.key("entries");
        w_.beginArray();
        for (const NqfVisibilityEntry& e : b.entries) {
            w_.beginObject();
            field("argument", e.argument);
            w_.key("ranges");
            ranges(e.ranges);
            w_.endObject();
        }
        w_.endArray();
    }
    void operator()(const NqfAnimationBody& b) {
        field("matrix", b.matrix);
        field("basePosition", b.basePosition);
        field("baseRotationA", b.baseRotationA);
        field("baseRotationB", b.baseRotationB);
        field("baseScale", b.baseScale);
        channels("position", b.position);
        channels("rotation", b.rotation);
        w_.key("scale");
        w_.beginArray();
        for (const NqfScaleChannel& c : b.scale) {
            w_.beginObject();
            field("argument", c.argument);
            keys("keys", c.keys);
            keys("secondKeys", c.secondKeys);
            w_.endObject();
        }
        w_.endArray();
        if (b.isBone) {
            field("boneMatrix", b.boneMatrix);
        }
    }
    void operator()(const NqfConnectorBody& b) { field("controlNode", b.controlNode); }
    void operator()(const NqfLightBody& b) {
        field("link", b.link);
        field("lightFlag", b.lightFlag);
        properties("lightProperties", b.properties);
        if (b.hasLightKind) {
            field("lightKind", b.lightKind);
        }
        w_.key("texture");
        b.hasTexture ? texture(b.texture, false) : w_.null();
    }
    void operator()(const NqfRenderBody& b) {
        field("material", b.material);
        w_.key("links");
        w_.beginArray();
        for (const NqfRenderLink& l : b.links) {
            w_.beginObject();
            field("node", l.node);
            field("argument", l.argument);
            w_.endObject();
        }
        w_.endArray();
        geometry(b.vertices, &b.indices);
        if (b.hasRenderOption) {
            field("renderOption", b.renderOption);
        }
        if (!b.digits.empty()) {
            w_.key("digits");
            w_.beginArray();
            for (const auto& entries : b.digits) {
                w_.beginArray();
                for (const auto& entry : entries) {
                    w_.array(entry);
                }
                w_.endArray();
            }
            w_.endArray();
        }
    }
    void operator()(const NqfSkinBody& b) {
        field("material", b.material);
        field("bones", b.bones);
        field("argument", b.argument);
        w_.key("box");
        b.hasBox ? box(b.box) : w_.null();
        field("format", b.format);
        geometry(b.vertices, &b.indices);
    }
    void operator()(const NqfShellBody& b) {
        field("controlNode", b.controlNode);
        field("format", b.format);
        geometry(b.vertices, &b.indices);
    }
    void operator()(const NqfSegmentsBody& b) {
        field("controlNode", b.controlNode);
        w_.key("segments");
        w_.beginArray();
        for (const NqfSegment& s : b.segments) {
            w_.beginArray(true);
            w_.array(s.a);
            w_.array(s.b);
            w_.endArray();
        }
        w_.endArray();
    }
    void operator()(const NqfFakeLightsBody& b) {
        field("material", b.material);
        field("links", b.links);
        const bool spot = className_.find("Spot") != std::string::npos;
        if (spot) {
            vectors("linkDirections", b.linkDirections);
        }
        w_.key("lights");
        w_.beginArray();
        for (const NqfFakeLight& l : b.lights) {
            w_.beginObject();
            field("position", l.position);
            field("windowLow", l.windowLow);
            field("windowHigh", l.windowHigh);
            field("size", l.size);
            field("parent", l.parent);
            if (spot) {
                field("backWindowLow", l.backWindowLow);
                field("backWindowHigh", l.backWindowHigh);
                field("spotFlag", l.spotFlag);
            }
            w_.endObject();
        }
        w_.endArray();
        if (!b.directions.empty()) {
            vectors("directions", b.directions);
        }
        if (b.animated) {
            field("argument", b.argument);
            field("animationData", b.animationData);
        }
    }
    void operator()(const NqfFakeSpots3Body& b) {
        field("material", b.material);
        field("links", b.links);
        w_.key("lights");
        vertices(b.lights);
    }

private:
    template <class T>
    void field(std::string_view name, const T& v) {
        w_.key(name);
        if constexpr (std::is_convertible_v<T, std::string_view>) {
            w_.value(std::string_view(v));
        } else if constexpr (requires { v.begin(); }) {
            w_.array(v);
        } else {
            w_.value(v);
        }
    }
    template <class V>
    void vectors(std::string_view name, const std::vector<V>& vs) {
        w_.key(name);
        w_.beginArray();
        for (const V& v : vs) {
            w_.array(v);
        }
        w_.endArray();
    }
    void ranges(const std::vector<NqfRange>& rs) {
        w_.beginArray(true);
        for (const NqfRange& r : rs) {
            w_.beginArray(true);
            w_.value(r.first);
            w_.value(r.second);
            w_.endArray();
        }
        w_.endArray();
    }
    template <class V>
    void keys(std::string_view name, const std::vector<NqfKey<V>>& ks) {
        w_.key(name);
        w_.beginArray();
        for (const NqfKey<V>& k : ks) {
            w_.beginArray(true);
            w_.value(k.time);
            w_.array(k.value);
            w_.endArray();
        }
        w_.endArray();
    }
    template <class C>
    void channels(std::string_view name, const std::vector<C>& cs) {
        w_.key(name);
        w_.beginArray();
        for (const C& c : cs) {
            w_.beginObject();
            field("argument", c.argument);
            keys("keys", c.keys);
            w_.endObject();
        }
        w_.endArray();
    }
    void box(const NqfBox& b) {
        w_.beginObject();
        field("min", b.min);
        field("max", b.max);
        w_.endObject();
    }
    void vertices(const NqfVertices& v) {
        w_.beginObject();
        field("count", v.count);
        field("floatsPerVertex", v.floatsPerVertex);
        field("data", v.data);
        w_.endObject();
    }
    void geometry(const NqfVertices& v, const NqfIndices* ix) {
        w_.key("vertices");
        vertices(v);
        w_.key("indices");
        w_.beginObject();
        field("width", ix->width);
        field("primitive", ix->primitive);
        field("values", ix->values);
        w_.endObject();
    }
    void property(const NqfProperty& p) {
        w_.beginObject();
        field("class", p.className);
        field("name", p.name);
        if (p.className == "model::Property<unsigned int>") {
            field("value", p.uintValue);
        } else if (p.className == "model::Property<const char*>") {
            field("value", p.text);
        } else if (p.className == "model::Property<float>") {
            field("value", p.floats.empty() ? 0.0f : p.floats[0]);
        } else if (!p.floats.empty()) {
            field("value", p.floats);
        } else {
            field("argument", p.argument);
            if (p.className != "model::ArgumentProperty") {
                w_.key("keys");
                w_.beginArray();
                for (const NqfPropertyKey& k : p.keys) {
                    w_.beginArray(true);
                    w_.value(k.time);
                    k.value.size() == 1 ? w_.value(k.value[0]) : w_.array(k.value);
                    w_.endArray();
                }
                w_.endArray();
            }
        }
        w_.endObject();
    }
    void properties(std::string_view name, const std::vector<NqfProperty>& ps) {
        w_.key(name);
        w_.beginArray();
        for (const NqfProperty& p : ps) {
            property(p);
        }
        w_.endArray();
    }
    void texture(const NqfTexture& t, bool withSlot) {
        w_.beginObject();
        if (withSlot) {
            field("slot", t.slot);
        }
        field("texCoordChannel", t.texCoordChannel);
        field("name", t.name);
        field("wrapU", t.wrapU);
        field("wrapV", t.wrapV);
        field("filter", t.filter);
        field("mipFilter", t.mipFilter);
        field("matrix", t.matrix);
        w_.endObject();
    }
    void material(const NqfMaterial& m) {
        w_.beginObject();
        field("name", m.name);
        field("materialName", m.materialName);
        field("blending", m.blending);
        field("depthBias", m.depthBias);
        field("vertexFormat", m.vertexFormat);
        field("textureChannels", m.textureChannels);
        field("shadows", m.shadows);
        w_.key("textures");
        w_.beginArray();
        for (const NqfTexture& t : m.textures) {
            texture(t, true);
        }
        w_.endArray();
        properties("uniforms", m.uniforms);
        properties("animatedUniforms", m.animatedUniforms);
        w_.key("billboard");
        if (m.hasBillboard) {
            w_.beginObject();
            field("type", m.billboardType);
            field("mode", m.billboardMode);
            w_.endObject();
        } else {
            w_.null();
        }
        w_.key("decal");
        m.decal ? w_.value(m.decal) : w_.null();
        w_.endObject();
    }
    void head(const NqfHead& h) {
        field("class", h.className);
        field("name", h.name);
        field("version", h.version);
        properties("properties", h.properties);
    }
    void node(const NqfNode& n) {
        head(n.head);
        className_ = n.head.className;
        std::visit(*this, n.body);
    }
    void root(const NqfRoot& r) {
        w_.beginObject();
        head(r.head);
        w_.key("boundingBox");
        box(r.boundingBox);
        w_.key("userBox");
        box(r.userBox);
        w_.key("lightBox");
        box(r.lightBox);
        w_.key("materials");
        w_.beginArray();
        for (const NqfMaterial& m : r.materials) {
            material(m);
        }
        w_.endArray();
        field("numHandles", r.numHandles);
        w_.endObject();
    }

    JsonWriter w_;
    std::string className_;
};

}  // namespace

std::string toJson(const NqfDocument& document) {
    std::string out;
    DocumentJson(out).document(document);
    out += '\n';
    return out;
}

}  // namespace model::io
