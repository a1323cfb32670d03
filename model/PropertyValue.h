#pragma once
// The per-type pieces that the property classes share: how a value is written, read, compared
// and shown.

#include <cstdint>
#include <string>

#include "core/Math.h"

namespace io {
class IBinaryFileW;
class IBinaryFileR;
}  // namespace io

namespace model {

// Floats compare within this bound, the test being less-or-equal, computed in single precision.
inline constexpr float kPropertyEpsilon = 1e-5f;

void writeValue(io::IBinaryFileW& file, float v);
void writeValue(io::IBinaryFileW& file, std::uint32_t v);
void writeValue(io::IBinaryFileW& file, const osg::Vec2f& v);
void writeValue(io::IBinaryFileW& file, const osg::Vec3f& v);
void writeValue(io::IBinaryFileW& file, const osg::Vec4f& v);
void writeValue(io::IBinaryFileW& file, const std::string& v);

void readValue(io::IBinaryFileR& file, float& v);
void readValue(io::IBinaryFileR& file, std::uint32_t& v);
void readValue(io::IBinaryFileR& file, osg::Vec2f& v);
void readValue(io::IBinaryFileR& file, osg::Vec3f& v);
void readValue(io::IBinaryFileR& file, osg::Vec4f& v);
void readValue(io::IBinaryFileR& file, std::string& v);

bool nearlyEqual(float a, float b);
bool valuesEqual(float a, float b);
bool valuesEqual(std::uint32_t a, std::uint32_t b);
bool valuesEqual(const osg::Vec2f& a, const osg::Vec2f& b);
bool valuesEqual(const osg::Vec3f& a, const osg::Vec3f& b);
bool valuesEqual(const osg::Vec4f& a, const osg::Vec4f& b);
bool valuesEqual(const std::string& a, const std::string& b);

// Floats in "%f" form, vectors as "vec3(x,y,z)", text in double quotes.
std::string valueText(float v);
std::string valueText(std::uint32_t v);
std::string valueText(const osg::Vec2f& v);
std::string valueText(const osg::Vec3f& v);
std::string valueText(const osg::Vec4f& v);
std::string valueText(const std::string& v);

}  // namespace model
