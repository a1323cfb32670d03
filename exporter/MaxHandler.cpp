#include "exporter/MaxHandler.h"

#include <array>
#include <optional>

#include "core/ExtException.h"
#include "exporter/ArgumentAnimation.h"
#include "exporter/KeyReducer.h"
#include "exporter/MtlKeeperHelpers.h"
#include "host/Constants.h"
#include "host/ParamBlock.h"
#include "model/PropertyCreators.h"

namespace exporter {
namespace {

constexpr const char* kSource = "Exporter\\src\\MtlHandlers.cpp";

[[noreturn]] void fail(const std::string& message, int line) {
    throw nq::ExtException(message, kSource, line);
}

constexpr std::array<std::string_view, 19> uniformFunctionNames{"AMBIENT_COLOR",
                                                                "DIFFUSE_COLOR",
                                                                "SPECULAR_LEVEL",
                                                                "GLOSSINESS",
                                                                "SELF_ILLUMINATION_COLOR",
                                                                "DIFFUSE_COLOR_AMOUNT",
                                                                "SPECULAR_COLOR_AMOUNT",
                                                                "SPECULAR_LEVEL_AMOUNT",
                                                                "GLOSSINESS_AMOUNT",
                                                                "SELF_ILLUMINATION_AMOUNT",
                                                                "OPACITY_AMOUNT",
                                                                "FILTER_COLOR_AMOUMT",
                                                                "BUMP_AMOUNT",
                                                                "REFLECTION_AMOUNT",
                                                                "REFRACTION_AMOUNT",
                                                                "DISPLACEMENT_AMOUNT",
                                                                "DECAL_UV_OFFSET",
                                                                "DIFFUSE_UV_OFFSET",
                                                                "AMBIENT_OCCLUSION_UV_OFFSET"};

// The map amounts by table index 5 to 15: the label of the map slot and its map index.
struct MapAmount {
    const char* label;
    int mapIndex;
};
constexpr std::array<MapAmount, 11> mapAmounts{{{"Diffuse Color", 1},
                                                {"Specular Color", 2},
                                                {"Specular Level", 4},
                                                {"Glossiness", 3},
                                                {"Self-Illumination", 5},
                                                {"Opacity", 6},
                                                {"Filter Color", 7},
                                                {"Bump", 8},
                                                {"Reflection", 9},
                                                {"Refraction", 10},
                                                {"Displacement", 11}}};

int functionIndex(std::string_view functionName) {
    for (std::size_t i = 0; i < uniformFunctionNames.size(); ++i) {
        if (uniformFunctionNames[i] == functionName) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

osg::Vec3f toVec(const host::Color& c) {
    return osg::Vec3f{{c.r, c.g, c.b}};
}

// The entry of the "mapAmounts" table for a map index: the parameter block stores the amounts of
// specular level and glossiness the other way round.
int mapAmountTableIndex(int mapIndex) {
    switch (mapIndex) {
        case 3:
            return 4;
        case 4:
            return 3;
        case 1:
        case 2:
        case 5:
        case 6:
        case 7:
        case 8:
        case 9:
        case 10:
        case 11:
            return mapIndex;
        default:
            return 0;
    }
}

std::optional<float> readMapAmount(host::Mtl* mtl, int mapIndex) {
    for (int b = 0; b < mtl->NumParamBlocks(); ++b) {
        host::IParamBlock2* block = mtl->GetParamBlock(b);
        if (!block || !block->GetDesc() || block->GetDesc()->int_name != "maps") {
            continue;
        }
        for (int i = 0; i < block->NumParams(); ++i) {
            host::ParamID id = block->IndextoID(i);
            const host::ParamDef* def = block->GetParamDef(id);
            float value = 0;
            if (def && def->int_name == "mapAmounts" &&
                block->GetValue(id, 0, value, mapAmountTableIndex(mapIndex))) {
                return value;
            }
        }
    }
    return std::nullopt;
}

host::Shader* shaderOf(host::Mtl* mtl) {
    auto* standard = dynamic_cast<host::StdMat2*>(mtl);
    return standard ? standard->GetShader() : nullptr;
}

}  // namespace

host::Animatable* paramByPath(host::Animatable* object, std::initializer_list<std::string_view> names) {
    for (std::string_view name : names) {
        if (!object || object->NumSubs() <= 0) {
            return nullptr;
        }
        host::Animatable* next = nullptr;
        bool found = false;
        for (int i = 0; i < object->NumSubs() && !found; ++i) {
            if (object->SubAnimName(i) == name) {
                next = object->SubAnim(i);
                found = true;
            }
        }
        object = next;
    }
    return object;
}

host::ArgumentListControl* argumentListController(host::Animatable* controller, host::Class_ID classId) {
    if (!controller) {
        return nullptr;
    }
    auto* list = static_cast<host::IListControl*>(controller->GetInterface(host::I_LISTCTRL));
    if (!list || controller->ClassID() != classId || list->GetListCount() < 1) {
        return nullptr;
    }
    bool keyed = false;
    for (int i = 0; i < list->GetListCount() && !keyed; ++i) {
        host::Control* entry = list->GetSubCtrl(i);
        keyed = entry && entry->IsKeyable();
    }
    return keyed ? dynamic_cast<host::ArgumentListControl*>(controller) : nullptr;
}

bool MaxHandler::canHandle(const std::string&, const std::string& functionName) {
    return functionIndex(functionName) >= 0;
}

void MaxHandler::handle(const std::string& name, const lu::Values& arguments) {
    const std::string& functionName = arguments.at(0);
    int index = functionIndex(functionName);
    if (index < 0) {
        return;
    }
    if (arguments.size() != 1) {
        fail("Wrong arguments number in '" + functionName + "'.", __LINE__);
    }
    model::Ptr<model::IProperty> result;
    switch (index) {
        case 0:
            result = colorProperty(name, index, "Ambient Color");
            break;
        case 1:
            result = colorProperty(name, index, "Diffuse Color");
            break;
        case 2:
            result = shaderValueProperty(name, index, "Specular Level");
            break;
        case 3:
            result = shaderValueProperty(name, index, "Glossiness");
            break;
        case 4:
            result = colorProperty(name, index, "Self-Illum Color");
            break;
        case 16:
            result = mapOffsetProperty(name, 1);
            break;
        case 17:
            result = mapOffsetProperty(name, 0);
            break;
        case 18:
            result = mapOffsetProperty(name, 2);
            break;
        default: {
            const MapAmount& amount = mapAmounts[static_cast<std::size_t>(index - 5)];
            result = mapAmountProperty(name, amount.label, amount.mapIndex);
        }
    }
    if (!result) {
        fail("Can't set uniform '" + name + "' from material '" + mtl->GetName() + "'.", __LINE__);
    }
    model::setProperty(uniforms, result);
}

model::Ptr<model::IProperty> MaxHandler::colorProperty(const std::string& name, int index,
                                                       const char* pathName) {
    host::Animatable* param = paramByPath(mtl, {"Shader Basic Parameters", "Parameters", pathName});
    if (!param) {
        // The ambient colour is reported under the diffuse colour's name, as it always has been.
        fail(index == 4 ? "Can't get parameter Shader Basic Parameters->Self-Illum Color."
                        : "Can't get parameter Shader Basic Parameters->Diffuse Color.",
             __LINE__);
    }
    if (host::ArgumentListControl* control =
            argumentListController(param, host::COLOR_ARGUMENT_LIST_CLASS_ID)) {
        return animatedVec3Property(name, *control, mtl->GetName());
    }
    if (index == 0) {
        return model::createVec3fProperty(name, toVec(mtl->GetAmbient(0, false)));
    }
    if (index == 1) {
        return model::createVec3fProperty(name, toVec(mtl->GetDiffuse(0, false)));
    }
    host::Shader* shader = shaderOf(mtl);
    if (!shader) {
        fail("Can't get shader from material '" + mtl->GetName() + "'.", __LINE__);
    }
    return model::createVec3fProperty(name, toVec(shader->GetSelfIllumColor(0, false)));
}

model::Ptr<model::IProperty> MaxHandler::shaderValueProperty(const std::string& name, int index,
                                                             const char* pathName) {
    host::Animatable* param = paramByPath(mtl, {"Shader Basic Parameters", "Parameters", pathName});
    if (!param) {
        fail(std::string("Can't get parameter Shader Basic Parameters->") + pathName + ".", __LINE__);
    }
    if (host::ArgumentListControl* control =
            argumentListController(param, host::FLOAT_ARGUMENT_LIST_CLASS_ID)) {
        return animatedFloatProperty(name, *control, mtl->GetName());
    }
    host::Shader* shader = shaderOf(mtl);
    if (!shader) {
        fail("Can't get shader from material '" + mtl->GetName() + "'.", __LINE__);
    }
    float value = index == 2 ? shader->GetSpecularLevel(0, false) : shader->GetGlossiness(0, false);
    // A shader value of zero would switch the shader's term off; constants keep a small floor.
    if (value < 1e-6f) {
        value = 0.0001f;
    }
    return model::createFloatProperty(name, value);
}

model::Ptr<model::IProperty> MaxHandler::mapAmountProperty(const std::string& name, const char* label,
                                                           int mapIndex) {
    host::Animatable* amount = paramByPath(mtl, {"Maps", std::string(label) + " Amount"});
    if (host::ArgumentListControl* control =
            argumentListController(amount, host::FLOAT_ARGUMENT_LIST_CLASS_ID)) {
        return animatedFloatProperty(name, *control, mtl->GetName());
    }
    std::optional<float> value = readMapAmount(mtl, mapIndex);
    return value ? model::createFloatProperty(name, *value) : nullptr;
}

model::Ptr<model::IProperty> MaxHandler::mapOffsetProperty(const std::string& name, int layer) {
    host::Texmap* map = findSubMap(mtl, "Diffuse Color", layer);
    auto* bitmap = dynamic_cast<host::BitmapTex*>(map);
    if (!map || map->ClassID() != host::Class_ID(host::BMTEX_CLASS_ID, 0) || !bitmap) {
        return model::createVec2fProperty(name, osg::Vec2f{});
    }
    host::ArgumentListControl* u = argumentListController(
        paramByPath(map, {"Coordinates", "Parameters", "U Offset"}), host::FLOAT_ARGUMENT_LIST_CLASS_ID);
    host::ArgumentListControl* v = argumentListController(
        paramByPath(map, {"Coordinates", "Parameters", "V Offset"}), host::FLOAT_ARGUMENT_LIST_CLASS_ID);
    float uOffset = 0;
    float vOffset = 0;
    if (!u || !v) {
        host::StdUVGen* uv = bitmap->GetUVGen();
        uOffset = uv ? uv->GetUOffs(0) : 0.0f;
        vOffset = uv ? uv->GetVOffs(0) : 0.0f;
    }
    if (!u && !v) {
        return model::createVec2fProperty(name, osg::Vec2f{{uOffset, vOffset}});
    }
    // Animated offsets negate U; constant ones do not. Both forms are part of the file's meaning.
    std::vector<model::AnimationKey<osg::Vec2f>> keys;
    std::uint32_t argument = 0;
    if (u && v) {
        auto uKeys = animatedFloatProperty(name, *u, "U Offset");
        auto vKeys = animatedFloatProperty(name, *v, "V Offset");
        if (uKeys->argument != vKeys->argument) {
            fail("Animated u and v offsets must have the same handle.", __LINE__);
        }
        for (const auto& key : uKeys->keys) {
            keys.push_back({key.time, osg::Vec2f{{-key.value, sampleKeys(vKeys->keys, key.time)}}});
        }
        for (const auto& key : vKeys->keys) {
            keys.push_back({key.time, osg::Vec2f{{-sampleKeys(uKeys->keys, key.time), key.value}}});
        }
        argument = uKeys->argument;
    } else if (v) {
        auto vKeys = animatedFloatProperty(name, *v, "V Offset");
        for (const auto& key : vKeys->keys) {
            keys.push_back({key.time, osg::Vec2f{{-uOffset, key.value}}});
        }
        argument = vKeys->argument;
    } else {
        auto uKeys = animatedFloatProperty(name, *u, "U Offset");
        for (const auto& key : uKeys->keys) {
            keys.push_back({key.time, osg::Vec2f{{-key.value, vOffset}}});
        }
        argument = uKeys->argument;
    }
    sortAndReduceKeys(keys, kArgumentKeyTolerance);
    return model::createAnimatedProperty<model::AnimatedProperty<osg::Vec2f>>(name, argument,
                                                                              std::move(keys));
}

}  // namespace exporter
