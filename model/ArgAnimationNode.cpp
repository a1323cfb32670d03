#include "model/ArgAnimationNode.h"

#include <algorithm>
#include <cmath>

namespace model {

namespace {

nq::Quatd inverseOf(const nq::Quatd& q) {
    double n = q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3];
    if (n == 0) {
        return q;
    }
    return nq::Quatd{{-q[0] / n, -q[1] / n, -q[2] / n, q[3] / n}};
}

bool isExactIdentity(const nq::Quatd& q) {
    return q[0] == 0 && q[1] == 0 && q[2] == 0 && q[3] == 1;
}

nq::Vec3d lerp(const nq::Vec3d& a, const nq::Vec3d& b, double t) {
    nq::Vec3d r;
    for (int i = 0; i < 3; ++i) {
        r[i] = a[i] + (b[i] - a[i]) * t;
    }
    return r;
}

// Spherical interpolation along the shorter arc.
nq::Quatd lerp(const nq::Quatd& a, const nq::Quatd& b, double t) {
    double dot = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
    double sign = dot < 0 ? -1.0 : 1.0;
    dot *= sign;
    double wa = 1 - t;
    double wb = t;
    if (dot < 0.9995) {
        double angle = std::acos(dot);
        double s = std::sin(angle);
        wa = std::sin((1 - t) * angle) / s;
        wb = std::sin(t * angle) / s;
    }
    nq::Quatd r;
    double n = 0;
    for (int i = 0; i < 4; ++i) {
        r[i] = wa * a[i] + wb * sign * b[i];
        n += r[i] * r[i];
    }
    n = std::sqrt(n);
    if (n > 0) {
        for (int i = 0; i < 4; ++i) {
            r[i] /= n;
        }
    }
    return r;
}

// The value of a key list at x: held at the ends, interpolated between keys. Keys are in
// ascending time order. The list must not be empty.
template <class Key>
auto valueAt(const std::vector<Key>& keys, double x) {
    if (x <= keys.front().time) {
        return keys.front().value;
    }
    if (x >= keys.back().time) {
        return keys.back().value;
    }
    auto next =
        std::upper_bound(keys.begin(), keys.end(), x, [](double v, const Key& k) { return v < k.time; });
    auto prev = next - 1;
    double span = next->time - prev->time;
    double t = span > 0 ? (x - prev->time) / span : 0.0;
    return lerp(prev->value, next->value, t);
}

// Q x S x Q' x R x T x B.
nq::Matrixd compose(const nq::Matrixd& q, const nq::Vec3d& scale, const nq::Matrixd& qInverse,
                    const nq::Matrixd* rotation, const nq::Vec3d& position, const nq::Matrixd& base) {
    nq::Matrixd m = q * nq::scaleMatrix(scale) * qInverse;
    if (rotation) {
        m = m * *rotation;
    }
    return m * nq::translateMatrix(position) * base;
}

}  // namespace

bool ArgAnimationNode::hasPositionKeys() const {
    return std::any_of(positionChannels.begin(), positionChannels.end(),
                       [](const PositionChannel& c) { return !c.keys.empty(); });
}

bool ArgAnimationNode::hasRotationKeys() const {
    return std::any_of(rotationChannels.begin(), rotationChannels.end(),
                       [](const RotationChannel& c) { return !c.keys.empty(); });
}

bool ArgAnimationNode::hasScaleKeys() const {
    return std::any_of(scaleChannels.begin(), scaleChannels.end(),
                       [](const ScaleChannel& c) { return !c.rotationKeys.empty() || !c.scaleKeys.empty(); });
}

bool ArgAnimationNode::isVoid() const {
    return !hasPositionKeys() && !hasRotationKeys() && !hasScaleKeys();
}

NodeType ArgAnimationNode::fileNodeType() const {
    bool p = hasPositionKeys();
    bool r = hasRotationKeys();
    bool s = hasScaleKeys();
    if (p && !r && !s) {
        return NodeType::ArgPositionNode;
    }
    if (r && !p && !s) {
        return NodeType::ArgRotationNode;
    }
    if (!p && !r) {
        return NodeType::ArgScaleNode;
    }
    return NodeType::ArgAnimationNode;
}

nq::Matrixd ArgAnimationNode::restMatrix() const {
    nq::Matrixd rotation = nq::quatToMatrix(baseRotationA);
    return compose(nq::quatToMatrix(baseRotationB), baseScale, nq::quatToMatrix(inverseOf(baseRotationB)),
                   isExactIdentity(baseRotationA) ? nullptr : &rotation, basePosition, matrix);
}

// Several channels of one kind combine as the host's list controllers do: positions add,
// rotations and scales multiply in channel order.
nq::Matrixd ArgAnimationNode::animatedMatrix(const IModelArguments& arguments) const {
    if (isVoid()) {
        return restMatrix();
    }
    nq::Vec3d position = basePosition;
    if (hasPositionKeys()) {
        position = nq::Vec3d{};
        for (const PositionChannel& c : positionChannels) {
            if (!c.keys.empty()) {
                nq::Vec3d v = valueAt(c.keys, arguments.value(c.argument));
                for (int i = 0; i < 3; ++i) {
                    position[i] += v[i];
                }
            }
        }
    }
    nq::Matrixd rotation = nq::quatToMatrix(baseRotationA);
    if (hasRotationKeys()) {
        rotation = nq::Matrixd::identity();
        for (const RotationChannel& c : rotationChannels) {
            if (!c.keys.empty()) {
                rotation = rotation * nq::quatToMatrix(valueAt(c.keys, arguments.value(c.argument)));
            }
        }
    }
    nq::Vec3d scale = baseScale;
    nq::Matrixd q = nq::quatToMatrix(baseRotationB);
    nq::Matrixd qInverse = nq::quatToMatrix(inverseOf(baseRotationB));
    bool scaleKeyed = false;
    bool orientationKeyed = false;
    for (const ScaleChannel& c : scaleChannels) {
        double x = arguments.value(c.argument);
        if (!c.scaleKeys.empty()) {
            nq::Vec3d v = valueAt(c.scaleKeys, x);
            if (!scaleKeyed) {
                scale = nq::Vec3d{{1, 1, 1}};
                scaleKeyed = true;
            }
            for (int i = 0; i < 3; ++i) {
                scale[i] *= v[i];
            }
        }
        if (!c.rotationKeys.empty()) {
            nq::Quatd o = valueAt(c.rotationKeys, x);
            if (!orientationKeyed) {
                q = nq::Matrixd::identity();
                qInverse = nq::Matrixd::identity();
                orientationKeyed = true;
            }
            q = q * nq::quatToMatrix(o);
            qInverse = nq::quatToMatrix(inverseOf(o)) * qInverse;
        }
    }
    return compose(q, scale, qInverse, &rotation, position, matrix);
}

void ArgAnimationNode::worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const {
    m = m * animatedMatrix(arguments);
    Node::worldTransform(arguments, m);
}

void ArgAnimationNode::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    Node::forEachArgument(f);
    auto report = [&](std::uint32_t argument) {
        if (argument != kNoArgument) {
            f(argument);
        }
    };
    for (const PositionChannel& c : positionChannels) {
        report(c.argument);
    }
    for (const RotationChannel& c : rotationChannels) {
        report(c.argument);
    }
    for (const ScaleChannel& c : scaleChannels) {
        report(c.argument);
    }
}

}  // namespace model
