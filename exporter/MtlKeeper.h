#pragma once
// The material keeper: turns the scene's materials into model materials for the node converters.
// Standard materials are described by their material description attribute (shader, texture
// slots, flags, uniform scripts); deck materials have a fixed layout. Scene materials that convert
// to equal content share one model material. The keeper remembers, per model material, the scene
// map channels that its vertices carry.

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "exporter/MaterialSource.h"
#include "host/MaterialAttrib.h"

namespace exporter {

// Where the keeper's messages say they come from.
inline constexpr const char* kMtlKeeperSource = "Exporter\\src\\MtlKeeper.cpp";

class MtlKeeper : public MaterialSource {
public:
    // A material has at most this many scene map channels.
    static constexpr std::size_t kMaxChannels = 8;

    MtlKeeper();

    // Empty for a null or multi-material, for a material of a class that is not exported, and for
    // one that failed (with a message). A scene material converted once is returned as it is, for
    // whatever node asks next.
    PropertiesSetPtr getMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                 host::INode* node) override;
    void getTextureChannels(const model::PropertiesSet* material, std::vector<std::uint32_t>& out) override;
    // Forgets every converted material; the exporter calls it when it resets.
    void clear();

private:
    PropertiesSetPtr buildStandardMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                           host::INode* node);
    PropertiesSetPtr buildDeckMaterial(host::Mtl* mtl, host::INode* node);
    bool collectTextures(model::PropertiesSet& material, std::string& gatheredText, host::Mtl* mtl,
                         host::MaterialDescription& description);
    void applyUniformScripts(host::Mtl* mtl, model::PropertiesSet& material, const std::string& uniformScript,
                             const std::string& gatheredText, const std::string& overrideScript);

    std::unordered_map<std::string, int> texCoordIndexBySlot;
    std::unordered_map<std::string, int> slotIndexByName;
    // Never assigned: a material that is not converted is an empty pointer.
    PropertiesSetPtr defaultMaterial;
    // In the order the scene materials were converted, so that sharing picks the same material on
    // every run.
    std::vector<std::pair<host::Mtl*, PropertiesSetPtr>> materialsByMtl;
    std::unordered_map<const model::PropertiesSet*, std::vector<std::uint32_t>> channelsByMaterial;
};

}  // namespace exporter
