#pragma once
// The model's texture slots. textureSlotNames gives each slot's index in a material's textures;
// texCoordSlotNames gives the slots that own an entry of its texture-coordinate channels, and
// that entry's index. The two orders differ on purpose: "Reflection" and the slots after
// "MetRoughMap" have no coordinate entry, and "MetRoughMap" is 12 there but 13 here.

#include <array>
#include <string_view>

namespace exporter {

inline constexpr std::array<std::string_view, 19> textureSlotNames{"Diffuse",
                                                                   "NormalMap",
                                                                   "Specular",
                                                                   "Decal",
                                                                   "Dirt",
                                                                   "Damage",
                                                                   "PuddlesMap",
                                                                   "SnowMap",
                                                                   "SelfIllumination",
                                                                   "AmbientOcclusion",
                                                                   "DamageNormalMap",
                                                                   "SpecularColor",
                                                                   "Reflection",
                                                                   "MetRoughMap",
                                                                   "GlassColorMap",
                                                                   "DamageMask",
                                                                   "FLIRMap",
                                                                   "SeasonMask",
                                                                   "DamageMaskRGBA"};

inline constexpr std::array<std::string_view, 13> texCoordSlotNames{"Diffuse",
                                                                    "NormalMap",
                                                                    "Specular",
                                                                    "Decal",
                                                                    "Dirt",
                                                                    "Damage",
                                                                    "PuddlesMap",
                                                                    "SnowMap",
                                                                    "SelfIllumination",
                                                                    "AmbientOcclusion",
                                                                    "DamageNormalMap",
                                                                    "SpecularColor",
                                                                    "MetRoughMap"};

}  // namespace exporter
