#include "model/io/NodeWriter10.h"

#include <fmt/format.h>

#include <cstring>
#include <optional>

#include "core/ExtException.h"
#include "model/AnimatedFakeLights.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/BillboardNode.h"
#include "model/Bone.h"
#include "model/Connector.h"
#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLights3Node.h"
#include "model/FakeSpotLightsNode.h"
#include "model/LightNode.h"
#include "model/LodNode.h"
#include "model/NumberNode.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/SegmentsNode.h"
#include "model/ShellNode.h"
#include "model/ShellSkinNode.h"
#include "model/SkinNode.h"
#include "model/TransformNode.h"
#include "model/io/MaterialWriter10.h"
#include "model/io/TreeNodeIndex.h"

namespace model {

namespace {

constexpr std::uint32_t kInvalidArgument = 0xFFFFFFFFu;

// Names of the light record's properties, in record order.
constexpr const char* kLightPropertyNames[10] = {
    "Color",          "Brightness", "Phi",          "Theta",         "Distance",
    "SpecularAmount", "Softness",   "RadiusFactor", "DensityFactor", "NearDistance"};

void writeVec3(io::IBinaryFileW& file, const osg::Vec3f& v) {
    file.writeBlock(v);
}

}  // namespace

// ---- heads -------------------------------------------------------------------------------------

void NodeWriter10::writeName(const std::string& name) {
    // A node's own name stands inline, not in the string table.
    file_.writeU32(static_cast<std::uint32_t>(name.size()));
    file_.write(name.data(), name.size());
}

void NodeWriter10::writeNameAndProperties(const std::string& name, const PropertyList& properties) {
    // The name, the reserved word and the property count follow each other in every node record.
    writeName(name);
    file_.writeU32(0);
    writePropertyList(file_, properties);
}

void NodeWriter10::writeBase(const BaseNode& node) {
    file_.writeString(nodeTypeName(node.nodeType()));
    // The class version travels in a copy of the list, so the node itself is not changed.
    PropertyList properties = node.properties;
    if (node.version != 0) {
        setProperty(properties, createUIntProperty("__VERSION__", node.version));
    }
    writeNameAndProperties(node.name, properties);
}

void NodeWriter10::writeNodeHead(const Node& node) {
    file_.writeString(nodeTypeName(node.fileNodeType()));
    writeNameAndProperties(node.name, node.properties);
}

void NodeWriter10::writeRender(const BaseRenderNode& node) {
    writeBase(node);
    file_.writeU32(0);
    int index = node.root ? node.root->materialIndex(node.material.get()) : -1;
    if (index < 0) {
        throw nq::ExtException("Unknown properties set. Node: " + node.name + ".");
    }
    file_.writeU32(static_cast<std::uint32_t>(index));
}

void NodeWriter10::writeShell(const BaseShellNode& node) {
    writeBase(node);
    if (!node.controlNode) {
        throw nq::ExtException("Control node isn't set. BaseShellNode: " + node.name + ".");
    }
    writeNodeIndex(node.controlNode);
}

void NodeWriter10::writeNodeIndex(const Ptr<Node>& node) {
    std::optional<std::uint32_t> index;
    if (treeIndex_) {
        index = treeIndex_->find(node.get());
    } else if (auto it = nodeIndices_->find(node.get()); it != nodeIndices_->end()) {
        index = it->second;
    }
    if (!index) {
        // A link to a node that is not in the tree being written.
        throw nq::ExtException("invalid unordered_map<K, T> key");
    }
    file_.writeU32(*index);
}

void NodeWriter10::writeSkinBones(const SkinData& skin) {
    file_.writeU32(static_cast<std::uint32_t>(skin.bones.size()));
    for (const Ptr<Node>& bone : skin.bones) {
        writeNodeIndex(bone);
    }
    file_.writeU32(skin.argument);
    writeBox(skin.box);
}

void NodeWriter10::writeBox(const Box& box) {
    // Only a valid box is written; a reader tells from the class version whether one is there.
    if (box.isValid()) {
        writeVec3(file_, box.min);
        writeVec3(file_, box.max);
    }
}

// ---- tree nodes --------------------------------------------------------------------------------

void NodeWriter10::visit(const Node& node) {
    writeNodeHead(node);
}

void NodeWriter10::writeTransformRecord(const TransformNode& node) {
    writeNodeHead(node);
    file_.writeBlock(node.matrix);
}

void NodeWriter10::visit(const TransformNode& node) {
    writeTransformRecord(node);
}

void NodeWriter10::visit(const BillboardNode& node) {
    writeNodeHead(node);
    file_.writeU8(static_cast<std::uint8_t>(node.billboardType));
    file_.writeU8(static_cast<std::uint8_t>(node.billboardAxis));
    file_.writeBlock(node.matrix);
    file_.writeBlock(node.billboardOffset);
}

void NodeWriter10::visit(const Bone& node) {
    writeTransformRecord(node);
    file_.writeBlock(node.boneMatrix);
}

void NodeWriter10::visit(const LodNode& node) {
    writeNodeHead(node);
    file_.writeU32(static_cast<std::uint32_t>(node.ranges.size()));
    for (const auto& [nearDistance, farDistance] : node.ranges) {
        file_.writeF64(nearDistance);
        file_.writeF64(farDistance);
    }
}

void NodeWriter10::visit(const ArgVisibilityNode& node) {
    writeNodeHead(node);
    file_.writeU32(static_cast<std::uint32_t>(node.entries.size()));
    for (const VisibilityEntry& entry : node.entries) {
        file_.writeU32(entry.argument);
        file_.writeU32(static_cast<std::uint32_t>(entry.ranges.size()));
        for (const auto& [start, end] : entry.ranges) {
            file_.writeF64(start);
            file_.writeF64(end);
        }
    }
}

void NodeWriter10::writeAnimationRecord(const ArgAnimationNode& node) {
    writeTransformRecord(node);
    file_.writeBlock(node.basePosition);
    file_.writeBlock(node.baseRotationA);
    file_.writeBlock(node.baseRotationB);
    file_.writeBlock(node.baseScale);

    file_.writeU32(static_cast<std::uint32_t>(node.positionChannels.size()));
    for (const PositionChannel& channel : node.positionChannels) {
        if (channel.argument == kInvalidArgument) {
            throw nq::ExtException("Node '" + node.name + "' has invalid position handle.");
        }
        file_.writeU32(channel.argument);
        file_.writeU32(static_cast<std::uint32_t>(channel.keys.size()));
        for (const PositionKey& key : channel.keys) {
            file_.writeF64(key.time);
            file_.writeBlock(key.value);
        }
    }
    file_.writeU32(static_cast<std::uint32_t>(node.rotationChannels.size()));
    for (const RotationChannel& channel : node.rotationChannels) {
        if (channel.argument == kInvalidArgument) {
            throw nq::ExtException("Node '" + node.name + "' has invalid rotation handle.");
        }
        file_.writeU32(channel.argument);
        file_.writeU32(static_cast<std::uint32_t>(channel.keys.size()));
        for (const RotationKey& key : channel.keys) {
            file_.writeF64(key.time);
            file_.writeBlock(key.value);
        }
    }
    file_.writeU32(static_cast<std::uint32_t>(node.scaleChannels.size()));
    for (const ScaleChannel& channel : node.scaleChannels) {
        if (channel.argument == kInvalidArgument) {
            throw nq::ExtException("Node '" + node.name + "' has invalid scale handle.");
        }
        file_.writeU32(channel.argument);
        file_.writeU32(static_cast<std::uint32_t>(channel.rotationKeys.size()));
        for (const RotationKey& key : channel.rotationKeys) {
            file_.writeF64(key.time);
            file_.writeBlock(key.value);
        }
        file_.writeU32(static_cast<std::uint32_t>(channel.scaleKeys.size()));
        for (const ScaleKey& key : channel.scaleKeys) {
            file_.writeF64(key.time);
            file_.writeBlock(key.value);
        }
    }
}

void NodeWriter10::visit(const ArgAnimationNode& node) {
    writeAnimationRecord(node);
}

void NodeWriter10::visit(const ArgAnimatedBone& node) {
    writeAnimationRecord(node);
    file_.writeBlock(node.boneMatrix);
}

// ---- list nodes --------------------------------------------------------------------------------

void NodeWriter10::visit(const RootNode& node) {
    writeBase(node);
    for (const Box* box : {&node.boundingBox, &node.userBox, &node.lightBox}) {
        // Each float is widened to a double.
        file_.writeBlock(nq::Vec3d{{box->min[0], box->min[1], box->min[2]}});
        file_.writeBlock(nq::Vec3d{{box->max[0], box->max[1], box->max[2]}});
    }
    RootNode& root = const_cast<RootNode&>(node);
    root.collectMaterials();
    file_.writeU32(static_cast<std::uint32_t>(root.materials.size()));
    for (const MaterialPtr& material : root.materials) {
        auto* set = dynamic_cast<PropertiesSet*>(material.get());
        if (!set) {
            throw nq::ExtException("Unknown properties set. Node: " + node.name + ".");
        }
        writeMaterial(file_, *set);
    }
    file_.writeU32(0);
    file_.writeU32(countHandlesLater_ ? 0 : root.calcNumHandles());
}

void NodeWriter10::visit(const Connector& node) {
    writeBase(node);
    writeNodeIndex(node.controlNode);
    file_.writeU32(0);
}

void NodeWriter10::visit(const LightNode& node) {
    writeBase(node);
    writeNodeIndex(node.controlNode);
    file_.writeU8(node.lightFlag);
    const bool volume = node.version == 3;
    const Ptr<IProperty>* properties[] = {
        &node.color,          &node.brightness, &node.phi,          &node.theta,         &node.distance,
        &node.specularAmount, &node.softness,   &node.radiusFactor, &node.densityFactor, &node.nearDistance};
    const std::uint32_t count = volume ? 10 : 7;
    file_.writeU32(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (*properties[i]) {
            (*properties[i])->save(file_);
        } else {
            // A field the scene left unset (an omni light has no cone angles, a light without user
            // text no specular amount) still takes its place in the record, as a neutral constant.
            createFloatProperty(kLightPropertyNames[i], i == 8 ? 1.0f : 0.0f)->save(file_);
        }
    }
    if (volume) {
        file_.writeU8(node.lightKind);
    }
    file_.writeU8(node.hasTexture() ? 1 : 0);
    if (node.hasTexture()) {
        writeTexture(file_, node.texture);
    }
}

void NodeWriter10::writeRenderBody(const RenderNode& node) {
    writeRender(node);
    file_.writeU32(static_cast<std::uint32_t>(node.links.size()));
    if (node.links.size() == 1) {
        writeNodeIndex(node.links[0].node);
        file_.writeU32(node.links[0].argument);
    } else {
        for (const RenderLink& link : node.links) {
            writeNodeIndex(link.node);
            file_.writeU32(0);
            file_.writeU32(link.argument);
        }
    }
    node.vertices.save(file_);
    node.indices.write(file_);
    if (node.version != 0) {
        file_.writeU32(node.renderOption);
    }
}

void NodeWriter10::visit(const RenderNode& node) {
    writeRenderBody(node);
}

void NodeWriter10::visit(const NumberNode& node) {
    writeRenderBody(node);
    for (std::size_t link = 0; link < node.links.size(); ++link) {
        static const std::vector<NumberEntry> kNone;
        const std::vector<NumberEntry>& entries = link < node.entries.size() ? node.entries[link] : kNone;
        file_.writeU32(static_cast<std::uint32_t>(entries.size()));
        for (const NumberEntry& entry : entries) {
            for (std::uint32_t word : entry.words) {
                file_.writeU32(word);
            }
        }
    }
}

void NodeWriter10::visit(const SkinNode& node) {
    writeRender(node);
    writeSkinBones(node);
    node.vertices.save(file_);
    node.indices.write(file_);
}

void NodeWriter10::visit(const ShellNode& node) {
    writeShell(node);
    node.vertices.format().save(file_);
    node.vertices.save(file_);
    node.indices.write(file_);
}

void NodeWriter10::visit(const ShellSkinNode& node) {
    // Unlike the other shells, no control node: the bones are its links.
    writeBase(node);
    writeSkinBones(node);
    node.vertices.format().save(file_);
    node.vertices.save(file_);
    node.indices.write(file_);
}

void NodeWriter10::visit(const SegmentsNode& node) {
    writeShell(node);
    file_.writeU32(static_cast<std::uint32_t>(node.segments.size()));
    for (const Segment& segment : node.segments) {
        writeVec3(file_, segment.a);
        writeVec3(file_, segment.b);
    }
}

void NodeWriter10::writeOmniBody(const FakeOmniLightsNode& node) {
    writeRender(node);
    file_.writeU32(static_cast<std::uint32_t>(node.links.size()));
    for (const Ptr<Node>& link : node.links) {
        writeNodeIndex(link);
        file_.writeU32(0);
    }
    file_.writeU32(static_cast<std::uint32_t>(node.lights.size()));
    for (const FakeOmniLight& light : node.lights) {
        file_.writeBlock(light.position);
        file_.writeBlock(light.texLB);
        file_.writeBlock(light.texRT);
        file_.writeF32(light.size);
        file_.writeU32(light.parent);
    }
}

void NodeWriter10::writeSpotBody(const FakeSpotLightsNode& node) {
    writeRender(node);
    file_.writeU32(static_cast<std::uint32_t>(node.links.size()));
    for (const FakeSpotLink& link : node.links) {
        writeNodeIndex(link.node);
        file_.writeU32(0);
        writeVec3(file_, link.direction);
    }
    file_.writeU32(static_cast<std::uint32_t>(node.lights.size()));
    for (const FakeSpotLight& light : node.lights) {
        file_.writeBlock(light.position);
        file_.writeBlock(light.texLB);
        file_.writeBlock(light.texRT);
        file_.writeF32(light.size);
        file_.writeU32(light.parent);
        file_.writeBlock(light.backTexLB);
        file_.writeBlock(light.backTexRT);
        file_.writeU8(light.flags);
    }
    if (node.version == 2) {
        if (node.directions.size() != node.lights.size()) {
            throw nq::ExtException(
                fmt::format("FakeSpotLightsNode's directions array != the number of lights. Node id: {}.",
                            nodeTypeName(node.nodeType())));
        }
        for (const osg::Vec3f& direction : node.directions) {
            writeVec3(file_, direction);
        }
    }
}

void NodeWriter10::visit(const FakeOmniLightsNode& node) {
    writeOmniBody(node);
}
void NodeWriter10::visit(const FakeSpotLightsNode& node) {
    writeSpotBody(node);
}
void NodeWriter10::visit(const FakeSpotLights3Node& node) {
    writeRender(node);
    file_.writeU32(static_cast<std::uint32_t>(node.links.size()));
    for (const Ptr<Node>& link : node.links) {
        writeNodeIndex(link);
    }
    node.lightData.save(file_);
}

template <class T>
void NodeWriter10::writeAnimatedTail(const AnimatedFakeLights<T>& node, const char* className) {
    if (node.argument == kInvalidArgument) {
        // The omni wording serves spot lights too.
        throw nq::ExtException(
            fmt::format("Argument of animated fake omni lights must be valid. Node id: {}.", className));
    }
    if (node.animationData.size() != 128 * node.lights.size()) {
        throw nq::ExtException("Invalid data size. Node id: %s.");
    }
    file_.writeU32(node.argument);
    file_.writeU32(128);
    file_.writeU32(static_cast<std::uint32_t>(node.animationData.size()));
    for (float value : node.animationData) {
        file_.writeF32(value);
    }
}

void NodeWriter10::visit(const AnimatedFakeOmniLightsNode& node) {
    writeOmniBody(node);
    writeAnimatedTail(node, nodeTypeName(node.nodeType()));
}

void NodeWriter10::visit(const AnimatedFakeSpotLightsNode& node) {
    writeSpotBody(node);
    writeAnimatedTail(node, nodeTypeName(node.nodeType()));
}

}  // namespace model
