#include "scene/MaterialLoader.h"

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "host/Constants.h"
#include "scene/ControllerLoader.h"
#include "scene/SceneMaterialAttrib.h"

namespace scene {
namespace {

using element = simdjson::dom::element;
using Step = DocumentReader::Step;

// The map slots of a standard material, in the host's order.
constexpr std::array<const char*, 12> standardMapSlots{
    "Ambient Color", "Diffuse Color", "Specular Color", "Glossiness", "Specular Level", "Self-Illumination",
    "Opacity",       "Filter Color",  "Bump",           "Reflection", "Refraction",     "Displacement"};

// The parameters of a standard material's shader, under "Shader Basic Parameters/Parameters".
constexpr std::array<const char*, 5> shaderParameters{"Ambient Color", "Diffuse Color", "Specular Level",
                                                      "Glossiness", "Self-Illum Color"};

bool isStandardClass(host::Class_ID id) {
    return id == host::Class_ID(host::DMTL_CLASS_ID, 0) || id == host::Class_ID(3, 0);
}

class MaterialReader {
public:
    MaterialReader(DocumentReader& reader, Scene& scene) : r_(reader), scene_(scene) {}

    void readMaterials(element value);
    std::optional<std::size_t> readMaterialIndex(element value);

private:
    struct Given {
        bool shader = false, mapSlots = false, paramBlocks = false;
    };

    void readMaterial(element value, SceneMtl& material, std::vector<std::optional<std::size_t>>& subs);
    void addStandardDefaults(SceneMtl& material, const Given& given);
    void readAttribute(element value, SceneMtl& material);
    std::optional<SceneMtl::ShaderValues> readShader(element value);
    host::Color readColor(element value);
    std::uint8_t readByte(element value);
    SceneMtl::MapSlot readMapSlot(element value);
    std::unique_ptr<SceneTexmap> readMap(element value);
    std::unique_ptr<SceneParamBlock> readParamBlock(element value);
    SceneParamBlock::Param readParam(element value);
    host::TextureSlotDesc readTextureSlot(element value);
    void checkMaterialCycles();

    DocumentReader& r_;
    Scene& scene_;
    // Sub-material indices by material, resolved once all materials exist.
    std::vector<std::vector<std::optional<std::size_t>>> subMaterialIndices_;
};

std::optional<std::size_t> MaterialReader::readMaterialIndex(element value) {
    if (value.is_null()) {
        return std::nullopt;
    }
    const auto& materials = scene_.materials();
    std::size_t count = materials.size();
    if (value.is_string()) {
        std::string name = r_.readString(value);
        std::optional<std::size_t> found;
        for (std::size_t i = 0; i < count; ++i) {
            if (materials[i]->name != name) {
                continue;
            }
            if (found) {
                r_.fail(fmt::format("the name \"{}\" is given to materials {} and {}: refer by index", name,
                                    *found, i));
            }
            found = i;
        }
        if (!found) {
            r_.fail(fmt::format("no material is named \"{}\"", name));
        }
        return found;
    }
    auto index = static_cast<std::size_t>(r_.readInteger(value, 0, std::numeric_limits<std::int32_t>::max()));
    if (index >= count) {
        r_.fail(fmt::format("no material {}: the document has {} material{}", index, count,
                            count == 1 ? "" : "s"));
    }
    return index;
}

void MaterialReader::readMaterials(element value) {
    // All materials exist before any is read, so that sub-materials may refer forwards. Names are
    // read first, so that references by name see every material.
    r_.readArray(value, [&](std::size_t, element item) {
        std::string name;
        if (element field; item.is_object() && !item.at_key("name").get(field) && field.is_string()) {
            name = std::string(field.get_string().value_unsafe());
        }
        scene_.addMaterial(std::make_unique<SceneMtl>(host::Class_ID(host::DMTL_CLASS_ID, 0), name));
    });
    subMaterialIndices_.resize(scene_.materials().size());
    r_.readArray(value, [&](std::size_t i, element material) {
        readMaterial(material, *scene_.materials()[i], subMaterialIndices_[i]);
    });
    checkMaterialCycles();
}

void MaterialReader::readMaterial(element value, SceneMtl& material,
                                  std::vector<std::optional<std::size_t>>& subs) {
    Given given;
    std::optional<element> controllers;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "name") {
            material.name = r_.readString(field);
        } else if (key == "class") {
            material.classId = r_.readClassId(field);
        } else if (key == "subMaterials") {
            r_.readArray(field, [&](std::size_t, element slot) {
                std::optional<std::size_t> index = readMaterialIndex(slot);
                subs.push_back(index);
                material.subMaterials.push_back(index ? scene_.materials()[*index].get() : nullptr);
            });
        } else if (key == "attributes") {
            r_.readArray(field, [&](std::size_t, element attribute) { readAttribute(attribute, material); });
        } else if (key == "twoSided") {
            material.twoSided = r_.readBool(field);
        } else if (key == "ambient") {
            material.ambient = readColor(field);
        } else if (key == "diffuse") {
            material.diffuse = readColor(field);
        } else if (key == "shader") {
            given.shader = true;
            material.shader = readShader(field);
        } else if (key == "mapSlots") {
            given.mapSlots = true;
            r_.readArray(field,
                         [&](std::size_t, element slot) { material.mapSlots.push_back(readMapSlot(slot)); });
        } else if (key == "paramBlocks") {
            given.paramBlocks = true;
            r_.readArray(field, [&](std::size_t, element block) {
                material.paramBlocks.push_back(readParamBlock(block));
            });
        } else if (key == "controllers") {
            controllers = field;
        } else {
            return false;
        }
        return true;
    });
    if (isStandardClass(material.classId)) {
        addStandardDefaults(material, given);
    }
    // Read last, so that a path replaces what the defaults put there.
    if (controllers) {
        Step step(r_, {"controllers"});
        readControllerPaths(r_, *controllers, material.subAnims);
    }
}

// What the host gives every standard material: a shader, the twelve map slots, the map amounts
// (all 100 %) and a controller under each shader parameter.
void MaterialReader::addStandardDefaults(SceneMtl& material, const Given& given) {
    if (!given.shader) {
        material.shader = SceneMtl::ShaderValues{};
    }
    if (!given.mapSlots) {
        for (const char* slot : standardMapSlots) {
            material.mapSlots.push_back({slot, true, nullptr});
        }
    }
    if (!given.paramBlocks) {
        auto block = std::make_unique<SceneParamBlock>();
        block->desc.int_name = "maps";
        SceneParamBlock::Param amounts;
        amounts.def.int_name = "mapAmounts";
        amounts.localName = "Amount";
        amounts.floats.assign(standardMapSlots.size(), 1.0f);
        block->params.push_back(std::move(amounts));
        material.paramBlocks.push_back(std::move(block));
    }
    for (const char* parameter : shaderParameters) {
        auto control = std::make_unique<SceneControl>();
        if (std::string_view(parameter).find("Color") != std::string_view::npos) {
            control->classId = host::Class_ID(0x2009, 0);  // the keyframe point controller
            control->superClass = host::CTRL_POINT3_CLASS_ID;
        }
        material.subAnims.put({"Shader Basic Parameters", "Parameters", parameter}, std::move(control));
    }
}

void MaterialReader::readAttribute(element value, SceneMtl& material) {
    std::optional<host::Class_ID> classId;
    auto description = std::make_unique<SceneMaterialAttrib>();
    std::string firstDescriptionKey;
    r_.readFields(value, [&](std::string_view key, element field) {
        SceneMaterialAttrib& d = *description;
        if (key == "class") {
            classId = r_.readClassId(field);
            return true;
        }
        if (key == "name") {
            d.name = r_.readString(field);
            return true;
        }
        if (key == "materialName") {
            d.materialName_ = r_.readString(field);
        } else if (key == "depthBias") {
            d.depthBias_ = readByte(field);
        } else if (key == "decal") {
            d.decal_ = readByte(field);
        } else if (key == "uniformScript") {
            d.uniformScript_ = r_.readString(field);
        } else if (key == "overrideScript") {
            d.overrideScript_ = r_.readString(field);
        } else if (key == "textureSlots") {
            r_.readArray(field,
                         [&](std::size_t, element slot) { d.textureSlots.push_back(readTextureSlot(slot)); });
        } else if (key == "hasNormals") {
            d.hasNormals_ = readByte(field);
        } else if (key == "blending") {
            d.blending_ = static_cast<std::uint32_t>(r_.readInteger(field, 0, 0xFFFFFFFF));
        } else if (key == "shadowFlagA") {
            d.shadowFlagA_ = readByte(field);
        } else if (key == "shadowFlagB") {
            d.shadowFlagB_ = readByte(field);
        } else if (key == "nodeIds") {
            d.nodeIds.emplace();
            r_.readArray(field, [&](std::size_t, element id) { d.nodeIds->push_back(r_.readString(id)); });
        } else if (key == "nodeKinds") {
            d.nodeKinds.emplace();
            r_.readArray(field, [&](std::size_t, element kind) {
                d.nodeKinds->push_back(
                    static_cast<int>(r_.readInteger(kind, std::numeric_limits<std::int32_t>::min(),
                                                    std::numeric_limits<std::int32_t>::max())));
            });
        } else {
            return false;
        }
        if (firstDescriptionKey.empty()) {
            firstDescriptionKey = std::string(key);
        }
        return true;
    });
    if (!classId) {
        Step step(r_, {"class"});
        r_.fail("required: a custom attribute is known by its class");
    }
    if (*classId == host::MATERIAL_ATTRIB_CLASS_ID) {
        material.attributes.push_back(std::move(description));
        return;
    }
    if (!firstDescriptionKey.empty()) {
        Step step(r_, {firstDescriptionKey});
        r_.fail(fmt::format("only the material description attribute {} has this field",
                            classText(host::MATERIAL_ATTRIB_CLASS_ID)));
    }
    material.attributes.push_back(std::make_unique<SceneCustAttrib>(*classId, description->name));
}

host::TextureSlotDesc MaterialReader::readTextureSlot(element value) {
    host::TextureSlotDesc slot;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "slotName") {
            slot.slotName = r_.readString(field);
        } else if (key == "mapName") {
            slot.mapName = r_.readString(field);
        } else if (key == "layer") {
            slot.layer = static_cast<std::int32_t>(r_.readInteger(
                field, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
        } else if (key == "uniformText") {
            slot.uniformText = r_.readString(field);
        } else {
            return false;
        }
        return true;
    });
    return slot;
}

// An 8-bit value: an integer from 0 to 255, or true and false for 1 and 0.
std::uint8_t MaterialReader::readByte(element value) {
    if (value.is_bool()) {
        return r_.readBool(value) ? 1 : 0;
    }
    return static_cast<std::uint8_t>(r_.readInteger(value, 0, 255));
}

host::Color MaterialReader::readColor(element value) {
    host::Point3 p = r_.readPoint(value);
    return {p.x, p.y, p.z};
}

std::optional<SceneMtl::ShaderValues> MaterialReader::readShader(element value) {
    if (value.is_null()) {
        return std::nullopt;
    }
    SceneMtl::ShaderValues shader;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "specularLevel") {
            shader.specularLevel = r_.readFloat(field);
        } else if (key == "glossiness") {
            shader.glossiness = r_.readFloat(field);
        } else if (key == "selfIllumColor") {
            shader.selfIllumColor = readColor(field);
        } else {
            return false;
        }
        return true;
    });
    return shader;
}

SceneMtl::MapSlot MaterialReader::readMapSlot(element value) {
    SceneMtl::MapSlot slot;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "name") {
            slot.name = r_.readString(field);
        } else if (key == "on") {
            slot.on = r_.readBool(field);
        } else if (key == "map") {
            slot.map = field.is_null() ? nullptr : readMap(field);
        } else {
            return false;
        }
        return true;
    });
    return slot;
}

std::unique_ptr<SceneTexmap> MaterialReader::readMap(element value) {
    auto map = std::make_unique<SceneTexmap>();
    std::optional<element> controllers;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "class") {
            map->classId = r_.readClassId(field);
        } else if (key == "name") {
            map->name = r_.readString(field);
        } else if (key == "fileName") {
            map->fileName = r_.readString(field);
        } else if (key == "mapChannel") {
            map->mapChannel = static_cast<int>(r_.readInteger(field, 0, 99));
        } else if (key == "tiling") {
            map->tiling = static_cast<int>(r_.readInteger(field, 0, 15));
        } else if (key == "uvTransform") {
            map->uvTransform = r_.readMatrix(field);
        } else if (key == "uOffset") {
            map->uOffset = r_.readFloat(field);
        } else if (key == "vOffset") {
            map->vOffset = r_.readFloat(field);
        } else if (key == "subMaps") {
            r_.readArray(field, [&](std::size_t, element sub) {
                map->subMaps.push_back(sub.is_null() ? nullptr : readMap(sub));
            });
        } else if (key == "controllers") {
            controllers = field;
        } else {
            return false;
        }
        return true;
    });
    if (controllers) {
        Step step(r_, {"controllers"});
        readControllerPaths(r_, *controllers, map->subAnims);
    }
    return map;
}

std::unique_ptr<SceneParamBlock> MaterialReader::readParamBlock(element value) {
    auto block = std::make_unique<SceneParamBlock>();
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "internalName") {
            block->desc.int_name = r_.readString(field);
        } else if (key == "params") {
            r_.readArray(field,
                         [&](std::size_t, element param) { block->params.push_back(readParam(param)); });
        } else {
            return false;
        }
        return true;
    });
    return block;
}

SceneParamBlock::Param MaterialReader::readParam(element value) {
    SceneParamBlock::Param param;
    r_.readFields(value, [&](std::string_view key, element field) {
        if (key == "internalName") {
            param.def.int_name = r_.readString(field);
        } else if (key == "localName") {
            param.localName = r_.readString(field);
        } else if (key == "floats") {
            r_.readArray(field,
                         [&](std::size_t, element number) { param.floats.push_back(r_.readFloat(number)); });
        } else if (key == "bitmaps") {
            r_.readArray(field, [&](std::size_t, element bitmap) {
                if (bitmap.is_null()) {
                    param.bitmaps.emplace_back();
                } else {
                    param.bitmaps.emplace_back(host::PBBitmap{host::BitmapInfo(r_.readString(bitmap))});
                }
            });
        } else {
            return false;
        }
        return true;
    });
    return param;
}

// Called inside the step "materials". A material that holds itself, directly or through its sub-materials,
// would send any walk of the sub-materials round for ever; the host never builds one.
void MaterialReader::checkMaterialCycles() {
    const auto& subs = subMaterialIndices_;
    enum class Mark { unvisited, open, done };
    std::vector<Mark> marks(subs.size(), Mark::unvisited);
    struct Frame {
        std::size_t material;
        std::size_t next;
    };
    for (std::size_t start = 0; start < subs.size(); ++start) {
        if (marks[start] != Mark::unvisited) {
            continue;
        }
        std::vector<Frame> stack{{start, 0}};
        marks[start] = Mark::open;
        while (!stack.empty()) {
            Frame& top = stack.back();
            if (top.next == subs[top.material].size()) {
                marks[top.material] = Mark::done;
                stack.pop_back();
                continue;
            }
            std::size_t slot = top.next++;
            std::optional<std::size_t> sub = subs[top.material][slot];
            if (!sub || marks[*sub] == Mark::done) {
                continue;
            }
            if (marks[*sub] == Mark::open) {
                Step material(r_, {{}, top.material});
                Step subMaterials(r_, {"subMaterials"});
                Step index(r_, {{}, slot});
                r_.fail(fmt::format("material {} holds itself through its sub-materials", *sub));
            }
            marks[*sub] = Mark::open;
            stack.push_back({*sub, 0});
        }
    }
}

}  // namespace

void readMaterials(DocumentReader& reader, Scene& scene, element value) {
    MaterialReader(reader, scene).readMaterials(value);
}

SceneMtl* readMaterialRef(DocumentReader& reader, Scene& scene, element value) {
    std::optional<std::size_t> index = MaterialReader(reader, scene).readMaterialIndex(value);
    return index ? scene.materials()[*index].get() : nullptr;
}

}  // namespace scene
