#include "model/utils/PropertySignature.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "model/ArgumentProperty.h"
#include "model/Property.h"
#include "model/io/IBinaryFileW.h"

namespace model::utils {

namespace {

constexpr double kCellWidth = 4e-5;

// A sink that keeps the saved bytes as they are written.
class ByteString final : public io::IBinaryFileW {
public:
    bool isOpen() const override { return true; }
    std::size_t put(const void* data, std::size_t size) override {
        bytes.append(static_cast<const char*>(data), size);
        return size;
    }
    void seek(std::uint64_t) override {}
    std::uint64_t tell() const override { return bytes.size(); }
    std::string name() const override { return "property signature"; }

    std::string bytes;
};

void appendPart(std::string& out, std::string_view part) {
    auto size = static_cast<std::uint32_t>(part.size());
    out.append(reinterpret_cast<const char*>(&size), sizeof size);
    out.append(part);
}

std::string savedBytes(const IProperty& p) {
    ByteString sink;
    p.save(sink);
    return std::move(sink.bytes);
}

// The first component of a float-valued static property.
std::optional<float> firstFloat(const IProperty& p) {
    if (const auto* f = dynamic_cast<const Property<float>*>(&p)) {
        return f->value;
    }
    if (const auto* v = dynamic_cast<const Property<osg::Vec2f>*>(&p)) {
        return v->value[0];
    }
    if (const auto* v = dynamic_cast<const Property<osg::Vec3f>*>(&p)) {
        return v->value[0];
    }
    if (const auto* v = dynamic_cast<const Property<osg::Vec4f>*>(&p)) {
        return v->value[0];
    }
    return std::nullopt;
}

// The part of a property that equality compares exactly.
std::string exactValue(const IProperty& p) {
    if (dynamic_cast<const Property<std::uint32_t>*>(&p) || dynamic_cast<const Property<std::string>*>(&p) ||
        dynamic_cast<const ArgumentProperty*>(&p)) {
        return savedBytes(p);
    }
    if (const auto* animated = dynamic_cast<const IAnimatedProperty*>(&p)) {
        std::string argument(sizeof animated->argument, '\0');
        std::memcpy(argument.data(), &animated->argument, sizeof animated->argument);
        return argument;
    }
    return {};
}

struct Entry {
    std::string key;
    const IProperty* property;
};

}  // namespace

std::string PropertySignature::lookupKey(double atCell) const {
    std::string key = exactValues;
    auto bits = std::bit_cast<std::uint64_t>(atCell == 0 ? 0.0 : atCell);
    key.append(reinterpret_cast<const char*>(&bits), sizeof bits);
    return key;
}

PropertySignature makePropertySignature(const PropertyList& list) {
    PropertySignature s;
    std::vector<std::string> saved;
    std::vector<Entry> entries;
    for (const Ptr<IProperty>& p : list) {
        if (!p) {
            saved.emplace_back("\x01");
            entries.push_back({"\x01", nullptr});
            continue;
        }
        saved.push_back(savedBytes(*p));
        std::string key(p->className());
        key.push_back('\0');
        key += p->name;
        entries.push_back({std::move(key), p.get()});
    }
    std::sort(saved.begin(), saved.end());
    for (const std::string& bytes : saved) {
        appendPart(s.exact, bytes);
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.key < b.key; });
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (entries[i].key == entries[i - 1].key) {
            s.distinctNames = false;
            return s;
        }
    }
    bool gridded = false;
    for (const Entry& e : entries) {
        appendPart(s.exactValues, e.key);
        if (!e.property) {
            continue;
        }
        appendPart(s.exactValues, exactValue(*e.property));
        if (!gridded) {
            if (std::optional<float> v = firstFloat(*e.property)) {
                gridded = true;
                s.finite = std::isfinite(*v);
                s.cell = s.finite ? std::floor(static_cast<double>(*v) / kCellWidth) : 0;
            }
        }
    }
    return s;
}

}  // namespace model::utils
