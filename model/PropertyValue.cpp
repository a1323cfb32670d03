#include "model/PropertyValue.h"

#include <cmath>

#include <fmt/format.h>

#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

void writeValue(io::IBinaryFileW& file, float v) {
    file.writeF32(v);
}
void writeValue(io::IBinaryFileW& file, std::uint32_t v) {
    file.writeU32(v);
}
void writeValue(io::IBinaryFileW& file, const osg::Vec2f& v) {
    file.writeBlock(v);
}
void writeValue(io::IBinaryFileW& file, const osg::Vec3f& v) {
    file.writeBlock(v);
}
void writeValue(io::IBinaryFileW& file, const osg::Vec4f& v) {
    file.writeBlock(v);
}
void writeValue(io::IBinaryFileW& file, const std::string& v) {
    file.writeString(v);
}

void readValue(io::IBinaryFileR& file, float& v) {
    v = file.readF32();
}
void readValue(io::IBinaryFileR& file, std::uint32_t& v) {
    v = file.readU32();
}
void readValue(io::IBinaryFileR& file, osg::Vec2f& v) {
    file.readBlock(v);
}
void readValue(io::IBinaryFileR& file, osg::Vec3f& v) {
    file.readBlock(v);
}
void readValue(io::IBinaryFileR& file, osg::Vec4f& v) {
    file.readBlock(v);
}
void readValue(io::IBinaryFileR& file, std::string& v) {
    v = file.readString();
}

bool nearlyEqual(float a, float b) {
    return std::fabs(a - b) <= kPropertyEpsilon;
}

namespace {
template <class V>
bool componentsNear(const V& a, const V& b, int n) {
    for (int i = 0; i < n; ++i) {
        if (!nearlyEqual(a[i], b[i])) {
            return false;
        }
    }
    return true;
}
}  // namespace

bool valuesEqual(float a, float b) {
    return nearlyEqual(a, b);
}
bool valuesEqual(std::uint32_t a, std::uint32_t b) {
    return a == b;
}
bool valuesEqual(const osg::Vec2f& a, const osg::Vec2f& b) {
    return componentsNear(a, b, 2);
}
bool valuesEqual(const osg::Vec3f& a, const osg::Vec3f& b) {
    return componentsNear(a, b, 3);
}
bool valuesEqual(const osg::Vec4f& a, const osg::Vec4f& b) {
    return componentsNear(a, b, 4);
}
bool valuesEqual(const std::string& a, const std::string& b) {
    return a == b;
}

std::string valueText(float v) {
    return fmt::format("{:f}", static_cast<double>(v));
}
std::string valueText(std::uint32_t v) {
    return fmt::format("{}", v);
}
std::string valueText(const osg::Vec2f& v) {
    return fmt::format("vec2({:f},{:f})", static_cast<double>(v[0]), static_cast<double>(v[1]));
}
std::string valueText(const osg::Vec3f& v) {
    return fmt::format("vec3({:f},{:f},{:f})", static_cast<double>(v[0]), static_cast<double>(v[1]),
                       static_cast<double>(v[2]));
}
std::string valueText(const osg::Vec4f& v) {
    return fmt::format("vec4({:f},{:f},{:f},{:f})", static_cast<double>(v[0]), static_cast<double>(v[1]),
                       static_cast<double>(v[2]), static_cast<double>(v[3]));
}
std::string valueText(const std::string& v) {
    return "\"" + v + "\"";
}

}  // namespace model
