#include "exporter/NodeSettings.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "core/ExtException.h"
#include "usertext/AnimatedPropertiesHandler.h"
#include "usertext/ParseUserText.h"
#include "usertext/PropertiesHandler.h"

namespace exporter {
namespace {

constexpr std::array<std::pair<std::string_view, std::uint32_t>, 14> kTypeWords{{
    {"renderable", kRenderable},
    {"connector", kConnector},
    {"light", kLight},
    {"fake_lights", kFakeLights},
    {"collision_shell", kCollisionShell},
    {"collision_line", kCollisionLine},
    {"bounding_box", kBoundingBox},
    {"lod_root", kLodRoot},
    {"user_box", kUserBox},
    {"ik_bone", kIkBone},
    {"number_root", kNumberRoot},
    {"skin_box", kSkinBox},
    {"gcollision_shell", kGCollisionShell},
    {"water_mask", kWaterMask},
}};

// A handler of one key with one value of one kind; it acts only on exactly a kind and a value.
class KeyHandler : public lu::FuncHandler {
public:
    KeyHandler(std::string key, std::string kind) : key_(std::move(key)), kind_(std::move(kind)) {}
    bool accepts(const std::string& name, const lu::Values& values) override {
        return name == key_ && !values.empty() && values.front() == kind_;
    }
    void process(const std::string&, const lu::Values& values) override {
        if (values.size() == 2) {
            handle(values[1]);
        }
    }

protected:
    virtual void handle(const std::string& value) = 0;

private:
    std::string key_;
    std::string kind_;
};

double numberOf(const std::string& text) {
    return std::strtod(text.c_str(), nullptr);
}

class NodeFlagHandler : public KeyHandler {
public:
    explicit NodeFlagHandler(NodeSettings& settings) : KeyHandler("TYPE", "string"), settings_(settings) {}
    void handle(const std::string& value) override {
        settings_.flags = 0;
        settings_.flags = nodeTypeFlags(value);
    }

private:
    NodeSettings& settings_;
};

class NormalSmoothFlagHandler : public KeyHandler {
public:
    NormalSmoothFlagHandler(NodeSettings& settings, std::uint32_t setting)
        : KeyHandler("SMOOTH_NORMALS", "float"), settings_(settings), setting_(setting) {}
    void handle(const std::string& value) override {
        if (setting_ == 2 || setting_ == 3) {
            settings_.smoothNormals = static_cast<int>(numberOf(value) + 0.5) != 0;
        }
    }

private:
    NodeSettings& settings_;
    std::uint32_t setting_;
};

class NoConnectorFlagHandler : public KeyHandler {
public:
    explicit NoConnectorFlagHandler(NodeSettings& settings)
        : KeyHandler("NO_CONNECTOR", "float"), settings_(settings) {}
    void handle(const std::string& value) override {
        settings_.noConnector = static_cast<int>(numberOf(value) + 0.5) != 0;
    }

private:
    NodeSettings& settings_;
};

class DamageHandler : public KeyHandler {
public:
    explicit DamageHandler(NodeSettings& settings)
        : KeyHandler("DAMAGE_ARGUMENT", "float"), settings_(settings) {}
    void handle(const std::string& value) override {
        settings_.damageArgument = static_cast<std::int32_t>(numberOf(value));
    }

private:
    NodeSettings& settings_;
};

// A property, animated-property or array handler that leaves the node's own four keys alone:
// those never become properties of a node. A reserved key of the wrong kind ("TYPE" given as a
// number) is thus taken by no handler and dropped.
class NonReservedHandler : public lu::FuncHandler {
public:
    explicit NonReservedHandler(lu::FuncHandler* inner) : inner_(inner) {}
    bool accepts(const std::string& name, const lu::Values& values) override {
        return !isReservedNodeKey(name) && inner_->accepts(name, values);
    }
    void process(const std::string& name, const lu::Values& values) override {
        inner_->process(name, values);
    }

private:
    lu::FuncHandlerPtr inner_;
};

}  // namespace

bool isReservedNodeKey(std::string_view name) {
    return name == "TYPE" || name == "SMOOTH_NORMALS" || name == "NO_CONNECTOR" || name == "DAMAGE_ARGUMENT";
}

void NodeSettings::clear(bool smoothDefault) {
    properties.clear();
    animatedProperties.clear();
    arrays.clear();
    flags = 0;
    smoothNormals = smoothDefault;
    noConnector = false;
    damageArgument = -1;
}

std::string nodeTypeWords(std::uint32_t flags) {
    std::string words;
    for (const auto& [name, bit] : kTypeWords) {
        if ((flags & bit) != 0) {
            words += words.empty() ? "" : "|";
            words += name;
        }
    }
    return words;
}

std::uint32_t nodeTypeFlags(std::string_view text) {
    std::uint32_t flags = 0;
    while (true) {
        const std::size_t bar = text.find('|');
        const std::string_view word = text.substr(0, bar);
        bool known = false;
        for (const auto& [name, bit] : kTypeWords) {
            if (name == word) {
                flags |= bit;
                known = true;
                break;
            }
        }
        if (!known) {
            throw nq::ExtException("Unknown node type: " + std::string(word));
        }
        if (bar == std::string_view::npos) {
            return flags;
        }
        text.remove_prefix(bar + 1);
    }
}

lu::FuncHandlers nodeSettingsHandlers(NodeSettings& settings, std::uint32_t smoothNormalsSetting) {
    // The node's own keys are tried first, and the property handlers decline them: those accept
    // any key by its kind alone and would otherwise turn TYPE and the other three into plain
    // properties.
    return {
        lu::FuncHandlerPtr(new NodeFlagHandler(settings)),
        lu::FuncHandlerPtr(new NormalSmoothFlagHandler(settings, smoothNormalsSetting)),
        lu::FuncHandlerPtr(new NoConnectorFlagHandler(settings)),
        lu::FuncHandlerPtr(new DamageHandler(settings)),
        lu::FuncHandlerPtr(new NonReservedHandler(new lu::PropertiesHandler(settings.properties))),
        lu::FuncHandlerPtr(
            new NonReservedHandler(new lu::AnimatedPropertiesHandler(settings.animatedProperties))),
        lu::FuncHandlerPtr(new NonReservedHandler(new lu::ArrayHandler(settings.arrays))),
    };
}

void parseNodeSettings(std::string_view text, NodeSettings& settings, std::uint32_t smoothNormalsSetting) {
    const bool smoothDefault = smoothNormalsSetting == 1 || smoothNormalsSetting == 3;
    settings.clear(smoothDefault);
    try {
        lu::parseUserText(text, nodeSettingsHandlers(settings, smoothNormalsSetting));
    } catch (...) {
        settings.clear(smoothDefault);
        throw;
    }
}

}  // namespace exporter
