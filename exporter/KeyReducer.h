#pragma once
// Key lists of animated values: sorting, removal of repeated keys and sampling between keys.
// A key has a double time and a value of float components (float or osg::Vec*f).

#include <algorithm>
#include <cmath>
#include <vector>

#include "model/AnimatedProperty.h"

namespace exporter {

namespace keys_detail {
inline int components(float) {
    return 1;
}
inline float component(float v, int) {
    return v;
}
template <class V>
int components(const V& v) {
    return static_cast<int>(sizeof(v.v) / sizeof(v.v[0]));
}
template <class V>
float component(const V& v, int i) {
    return v[i];
}
}  // namespace keys_detail

// Sorts keys by time (equal times keep their order) and drops each key whose time and every
// component differ from the last kept key by less than tolerance. Returns whether any was dropped.
template <class T>
bool sortAndReduceKeys(std::vector<model::AnimationKey<T>>& keys, double tolerance) {
    std::stable_sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.time < b.time; });
    std::vector<model::AnimationKey<T>> kept;
    for (const auto& key : keys) {
        if (!kept.empty()) {
            const auto& last = kept.back();
            bool same = std::fabs(key.time - last.time) < tolerance;
            for (int i = 0; same && i < keys_detail::components(key.value); ++i) {
                same = std::fabs(static_cast<double>(keys_detail::component(key.value, i)) -
                                 keys_detail::component(last.value, i)) < tolerance;
            }
            if (same) {
                continue;
            }
        }
        kept.push_back(key);
    }
    if (kept.size() == keys.size()) {
        return false;
    }
    keys = std::move(kept);
    return true;
}

// The value of sorted float keys at time t: 0 without keys, the first or last value outside them,
// linear in double precision between the two keys around t.
inline float sampleKeys(const std::vector<model::AnimationKey<float>>& keys, double t) {
    if (keys.empty()) {
        return 0.0f;
    }
    if (t <= keys.front().time) {
        return keys.front().value;
    }
    if (t >= keys.back().time) {
        return keys.back().value;
    }
    std::size_t lo = 0;
    std::size_t hi = keys.size() - 1;
    while (hi - lo > 1) {
        std::size_t mid = (lo + hi) / 2;
        (keys[mid].time <= t ? lo : hi) = mid;
    }
    double f = (t - keys[lo].time) / (keys[hi].time - keys[lo].time);
    return static_cast<float>((1.0 - f) * keys[lo].value + f * keys[hi].value);
}

}  // namespace exporter
