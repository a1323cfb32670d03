#include "scene/SceneSubAnims.h"

#include <algorithm>

namespace scene {

host::Animatable* SubAnimTree::child(int i) const {
    return i >= 0 && i < count() ? entries_[static_cast<std::size_t>(i)].object.get() : nullptr;
}

std::string SubAnimTree::name(int i) const {
    return i >= 0 && i < count() ? entries_[static_cast<std::size_t>(i)].name : std::string();
}

void SubAnimTree::put(const std::vector<std::string>& path, std::unique_ptr<host::Animatable> object) {
    if (path.empty()) {
        return;
    }
    auto it =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.name == path[0]; });
    if (it == entries_.end()) {
        entries_.push_back({path[0], nullptr});
        it = entries_.end() - 1;
    }
    if (path.size() == 1) {
        it->object = std::move(object);
        return;
    }
    auto* group = dynamic_cast<SceneParamGroup*>(it->object.get());
    if (!group) {
        auto made = std::make_unique<SceneParamGroup>();
        group = made.get();
        it->object = std::move(made);
    }
    group->subAnims.put(std::vector<std::string>(path.begin() + 1, path.end()), std::move(object));
}

}  // namespace scene
