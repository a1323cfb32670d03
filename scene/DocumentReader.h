#pragma once
// The reading layer of the scene loader: typed reads of JSON values that know the document path
// of the value they read, so a fault names its place ("nodes[3].object.class[0]: ...").
// The node, object and material readers are built on it, each in its own file.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <simdjson.h>

#include "host/Matrix3.h"
#include "host/Types.h"
#include "scene/DocumentError.h"

namespace scene {

// "(0x9, 0x0)": a class id as messages show it.
std::string classText(host::Class_ID id);

class DocumentReader {
public:
    using element = simdjson::dom::element;

    struct PathPart {
        std::string_view key;  // null data for an array index
        std::size_t index = 0;
    };
    // Enters one step of the document path for as long as it lives.
    class Step {
    public:
        Step(DocumentReader& r, PathPart part) : r_(r) { r_.path_.push_back(part); }
        ~Step() { r_.path_.pop_back(); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        DocumentReader& r_;
    };

    // Throws DocumentError at the current path.
    [[noreturn]] void fail(const std::string& message) const;
    std::string pathText() const;

    // Calls read(key, value) for each field of an object; read returns false for a key it does
    // not know. A repeated key is a fault.
    template <class Read>
    void readFields(element value, Read read);
    // Calls read(index, item) for each item of an array.
    template <class Read>
    void readArray(element value, Read read);

    std::string readString(element value);
    bool readBool(element value);
    std::int64_t readInteger(element value, std::int64_t min, std::int64_t max);
    float readFloat(element value);
    double readDouble(element value);
    std::uint32_t readClassPart(element value);
    host::Class_ID readClassId(element value);
    host::Point3 readPoint(element value);
    host::Matrix3 readMatrix(element value);

    // Fast forms for the bulk of a mesh: they read every item of the array without entering the
    // path and return false at the first item that is not a plain in-range value, leaving the
    // caller to read the array again the checked way, whose fault then names the item.
    // Numbers as readFloat reads them, into out[0] to out[array.size() - 1].
    static bool tryReadFloats(simdjson::dom::array array, float* out);
    // Integers written as such from 0 to max, as readInteger would give them.
    static bool tryReadIndices(simdjson::dom::array array, std::int64_t max, std::uint32_t* out);

private:
    std::vector<PathPart> path_;
};

template <class Read>
void DocumentReader::readFields(element value, Read read) {
    simdjson::dom::object object;
    if (value.get_object().get(object)) {
        fail("expected an object");
    }
    // Every key must be known, and the first repeat is a fault, so no object gets past as many
    // distinct keys as its reader knows; none knows more than this.
    // The keys are kept as plain pointer and length, left uninitialised: zeroing 32 views for
    // every object, a million small faces among them, was about half of this loop's own time.
    struct SeenKey {
        const char* data;
        std::size_t size;
    };
    SeenKey seen[32];
    constexpr std::size_t seenCapacity = sizeof(seen) / sizeof(seen[0]);
    std::size_t seenCount = 0;
    // One step of the path for all fields, its key changed in place: documents have millions of
    // fields, and the path grows and shrinks only once per object.
    Step step(*this, {});
    for (simdjson::dom::key_value_pair field : object) {
        path_.back() = {field.key};
        for (std::size_t i = 0; i < seenCount; ++i) {
            if (std::string_view(seen[i].data, seen[i].size) == field.key) {
                fail("repeated field");
            }
        }
        if (!read(field.key, field.value) || seenCount == seenCapacity) {
            fail("unknown field");
        }
        seen[seenCount++] = {field.key.data(), field.key.size()};
    }
}

template <class Read>
void DocumentReader::readArray(element value, Read read) {
    simdjson::dom::array array;
    if (value.get_array().get(array)) {
        fail("expected an array");
    }
    std::size_t index = 0;
    Step step(*this, {});
    for (element item : array) {
        path_.back() = {{}, index};
        read(index, item);
        ++index;
    }
}

}  // namespace scene
