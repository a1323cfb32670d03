#pragma once
// The settings a scene node gives itself in its user-defined text, read when the walk enters the
// node and dropped when it leaves, and the handlers of the node's own keys.

#include <cstdint>
#include <string>
#include <string_view>

#include "model/PropertyList.h"
#include "usertext/ArrayHandler.h"
#include "usertext/FuncHandler.h"

namespace exporter {

// The bits of the words of TYPE.
enum NodeFlag : std::uint32_t {
    kRenderable = 0x1,
    kConnector = 0x2,
    kLight = 0x4,
    kFakeLights = 0x8,
    kCollisionShell = 0x10,
    kCollisionLine = 0x20,
    kBoundingBox = 0x40,
    kLodRoot = 0x100,
    kUserBox = 0x200,
    kIkBone = 0x800,
    kNumberRoot = 0x1000,
    kSkinBox = 0x2000,
    kGCollisionShell = 0x4000,
    kWaterMask = 0x10000,
};

struct NodeSettings {
    model::PropertyList properties;
    // Animated properties in the order of the text; looked up by name.
    model::PropertyList animatedProperties;
    lu::FloatArrays arrays;
    std::uint32_t flags = 0;
    bool smoothNormals = false;
    bool noConnector = false;
    std::int32_t damageArgument = -1;

    // Back to the state of a node without settings; smoothNormals to the setting's default.
    void clear(bool smoothDefault);
};

// "TYPE", "SMOOTH_NORMALS", "NO_CONNECTOR" and "DAMAGE_ARGUMENT": keys a node's text gives to the
// node itself, never properties of it.
bool isReservedNodeKey(std::string_view name);

// The bits of a TYPE text: words split on '|'. An unknown word throws nq::ExtException
// "Unknown node type: " followed by the word.
std::uint32_t nodeTypeFlags(std::string_view text);
// The words of the bits set in flags, joined by '|' in the order of the word list; bits without a
// word are left out.
std::string nodeTypeWords(std::uint32_t flags);

// The handlers in the order the parser tries them: TYPE, SMOOTH_NORMALS, NO_CONNECTOR,
// DAMAGE_ARGUMENT, then properties, animated properties and arrays. smoothNormalsSetting is the setting
// smoothNormals: SMOOTH_NORMALS counts only under 2 and 3.
lu::FuncHandlers nodeSettingsHandlers(NodeSettings& settings, std::uint32_t smoothNormalsSetting);

// Parses text into settings. On a parse failure the settings are cleared and the exception goes
// on to the caller.
void parseNodeSettings(std::string_view text, NodeSettings& settings, std::uint32_t smoothNormalsSetting);

}  // namespace exporter
