#include "scene/SceneLoader.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "host/Constants.h"
#include "scene/JsonText.h"
#include "scene/KnownClasses.h"
#include "scene/SceneObject.h"

namespace scene {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

std::string classText(host::Class_ID id) {
    return fmt::format("(0x{:X}, 0x{:X})", id.PartA(), id.PartB());
}

// Walks the parsed document and builds the scene. Every read knows the document path of the
// value it reads, so a fault names it.
class SceneReader {
public:
    explicit SceneReader(Scene& scene) : scene_(scene) {}

    void readDocument(element root);

private:
    struct PathPart {
        std::string_view key;
        std::size_t index = 0;
    };
    // Enters one step of the document path for as long as it lives.
    class Step {
    public:
        Step(SceneReader& r, PathPart part) : r_(r) { r_.path_.push_back(part); }
        ~Step() { r_.path_.pop_back(); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        SceneReader& r_;
    };

    [[noreturn]] void fail(const std::string& message) const;
    std::string pathText() const;

    // Calls read(key, value) for each field of an object; read returns false for a key it does
    // not know. A repeated key is a fault.
    template <class Read>
    void readFields(element value, Read read);
    template <class Read>
    void readArray(element value, Read read);

    std::string readString(element value);
    bool readBool(element value);
    std::int64_t readInteger(element value, std::int64_t min, std::int64_t max);
    float readFloat(element value);
    std::uint32_t readClassPart(element value);
    host::Class_ID readClassId(element value);
    host::Point3 readPoint(element value);
    host::Matrix3 readMatrix(element value);
    host::Box3 readBox(element value);
    std::optional<std::size_t> readMaterialIndex(element value);

    void readMaterials(element value);
    void readMaterial(element value, SceneMtl& material, std::vector<std::optional<std::size_t>>& subs);
    void readAttribute(element value, SceneMtl& material);
    void checkMaterialCycles();
    void readNode(element value, SceneNode& node);
    host::Object* readObject(element value);

    Scene& scene_;
    std::vector<PathPart> path_;
    // Sub-material indices by material, resolved once all materials exist.
    std::vector<std::vector<std::optional<std::size_t>>> subMaterialIndices_;
};

void SceneReader::fail(const std::string& message) const {
    throw DocumentError(pathText(), message);
}

std::string SceneReader::pathText() const {
    std::string text;
    for (const PathPart& part : path_) {
        if (part.key.data() == nullptr) {
            text += fmt::format("[{}]", part.index);
        } else {
            if (!text.empty()) {
                text += '.';
            }
            text += part.key;
        }
    }
    return text;
}

template <class Read>
void SceneReader::readFields(element value, Read read) {
    simdjson::dom::object object;
    if (value.get_object().get(object)) {
        fail("expected an object");
    }
    // Every key must be known, and the first repeat is a fault, so no object gets past as many
    // distinct keys as its reader knows; none knows more than this.
    std::array<std::string_view, 16> seen;
    std::size_t seenCount = 0;
    for (simdjson::dom::key_value_pair field : object) {
        Step step(*this, {field.key});
        for (std::size_t i = 0; i < seenCount; ++i) {
            if (seen[i] == field.key) {
                fail("repeated field");
            }
        }
        if (!read(field.key, field.value)) {
            fail("unknown field");
        }
        seen[seenCount++] = field.key;
    }
}

template <class Read>
void SceneReader::readArray(element value, Read read) {
    simdjson::dom::array array;
    if (value.get_array().get(array)) {
        fail("expected an array");
    }
    std::size_t index = 0;
    for (element item : array) {
        Step step(*this, {{}, index});
        read(index, item);
        ++index;
    }
}

std::string SceneReader::readString(element value) {
    std::string_view text;
    if (value.get_string().get(text)) {
        fail("expected a string");
    }
    return std::string(text);
}

bool SceneReader::readBool(element value) {
    bool flag = false;
    if (value.get_bool().get(flag)) {
        fail("expected true or false");
    }
    return flag;
}

// Integers may be written with a fraction of zero (1e3, 160.0); beyond 64 bits they are merely
// out of range.
std::int64_t SceneReader::readInteger(element value, std::int64_t min, std::int64_t max) {
    std::int64_t number = 0;
    if (value.get_int64().get(number)) {
        std::uint64_t large = 0;
        double real = 0;
        if (!value.get_uint64().get(large)) {
            number = std::numeric_limits<std::int64_t>::max();
        } else if (!value.get_double().get(real) && real == std::floor(real)) {
            number = real < -9e18  ? std::numeric_limits<std::int64_t>::min()
                     : real > 9e18 ? std::numeric_limits<std::int64_t>::max()
                                   : static_cast<std::int64_t>(real);
        } else {
            fail("expected an integer");
        }
    }
    if (number < min || number > max) {
        fail(fmt::format("expected an integer from {} to {}", min, max));
    }
    return number;
}

float SceneReader::readFloat(element value) {
    double number = 0;
    if (value.get_double().get(number)) {
        fail("expected a number");
    }
    if (std::fabs(number) > std::numeric_limits<float>::max()) {
        fail("number out of the range of a 32-bit float");
    }
    return static_cast<float>(number);
}

// A class id part is a number or a text of hexadecimal digits after "0x", as in "0x876234".
std::uint32_t SceneReader::readClassPart(element value) {
    const char* expected = "expected a 32-bit unsigned number or a hexadecimal text such as \"0x876234\"";
    std::string_view text;
    if (value.get_string().get(text)) {
        std::uint64_t number = 0;
        if (value.get_uint64().get(number) || number > 0xFFFFFFFFu) {
            fail(expected);
        }
        return static_cast<std::uint32_t>(number);
    }
    if (text.size() < 3 || text.size() > 10 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        fail(expected);
    }
    std::uint32_t number = 0;
    for (char c : text.substr(2)) {
        int digit = c >= '0' && c <= '9'   ? c - '0'
                    : c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                           : -1;
        if (digit < 0) {
            fail(expected);
        }
        number = number * 16 + static_cast<std::uint32_t>(digit);
    }
    return number;
}

host::Class_ID SceneReader::readClassId(element value) {
    simdjson::dom::array array;
    if (value.get_array().get(array) || array.size() != 2) {
        fail("expected a class id: a pair of parts such as [\"0x876234\", \"0x0\"]");
    }
    std::uint32_t parts[2] = {0, 0};
    readArray(value, [&](std::size_t i, element part) { parts[i] = readClassPart(part); });
    return host::Class_ID(parts[0], parts[1]);
}

host::Point3 SceneReader::readPoint(element value) {
    simdjson::dom::array array;
    if (value.get_array().get(array) || array.size() != 3) {
        fail("expected 3 numbers");
    }
    host::Point3 point;
    readArray(value, [&](std::size_t i, element c) { point[static_cast<int>(i)] = readFloat(c); });
    return point;
}

// Four rows of three numbers, or of four whose last column is 0, 0, 0, 1: the host's matrices
// are affine.
host::Matrix3 SceneReader::readMatrix(element value) {
    simdjson::dom::array rows;
    if (value.get_array().get(rows) || rows.size() != 4) {
        fail("expected a matrix of 4 rows");
    }
    host::Matrix3 matrix;
    readArray(value, [&](std::size_t row, element numbers) {
        simdjson::dom::array array;
        if (numbers.get_array().get(array) || (array.size() != 3 && array.size() != 4)) {
            fail("expected a row of 3 or 4 numbers");
        }
        host::Point3 point;
        readArray(numbers, [&](std::size_t col, element number) {
            float f = readFloat(number);
            if (col < 3) {
                point[static_cast<int>(col)] = f;
            } else if (f != (row == 3 ? 1.0f : 0.0f)) {
                fail(fmt::format("expected {}: the last column of a 4 by 4 matrix must be 0, 0, 0, 1",
                                 row == 3 ? 1 : 0));
            }
        });
        matrix.SetRow(static_cast<int>(row), point);
    });
    return matrix;
}

host::Box3 SceneReader::readBox(element value) {
    host::Box3 box = SceneHelper::defaultBox;
    readFields(value, [&](std::string_view key, element field) {
        if (key == "min") {
            box.pmin = readPoint(field);
        } else if (key == "max") {
            box.pmax = readPoint(field);
        } else {
            return false;
        }
        return true;
    });
    return box;
}

// A material is referred to by its index in "materials"; null refers to none.
std::optional<std::size_t> SceneReader::readMaterialIndex(element value) {
    if (value.is_null()) {
        return std::nullopt;
    }
    std::size_t count = scene_.materials().size();
    auto index = static_cast<std::size_t>(readInteger(value, 0, std::numeric_limits<std::int32_t>::max()));
    if (index >= count) {
        fail(fmt::format("no material {}: the document has {} material{}", index, count,
                         count == 1 ? "" : "s"));
    }
    return index;
}

void SceneReader::readDocument(element root) {
    if (!root.is_object()) {
        fail("expected an object");
    }
    // Materials first, so that nodes can refer to them wherever the field stands.
    if (element materials; !root.at_key("materials").get(materials)) {
        Step step(*this, {"materials"});
        readMaterials(materials);
    }
    readFields(root, [&](std::string_view key, element value) {
        if (key == "$schema") {
            readString(value);
        } else if (key == "rootName") {
            scene_.root.name = readString(value);
        } else if (key == "filePath") {
            scene_.filePath = readString(value);
        } else if (key == "time") {
            scene_.time = static_cast<host::TimeValue>(readInteger(
                value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
        } else if (key == "ticksPerFrame") {
            scene_.ticksPerFrame = static_cast<int>(readInteger(value, 1, host::TIME_TICKSPERSEC));
        } else if (key == "nodes") {
            readArray(value, [&](std::size_t, element node) { readNode(node, scene_.root.addChild()); });
        } else if (key != "materials") {
            return false;
        }
        return true;
    });
}

void SceneReader::readMaterials(element value) {
    // All materials exist before any is read, so that sub-materials may refer forwards.
    readArray(value, [&](std::size_t, element) {
        scene_.addMaterial(std::make_unique<SceneMtl>(host::Class_ID(host::DMTL_CLASS_ID, 0), ""));
    });
    subMaterialIndices_.resize(scene_.materials().size());
    readArray(value, [&](std::size_t i, element material) {
        readMaterial(material, *scene_.materials()[i], subMaterialIndices_[i]);
    });
    checkMaterialCycles();
}

void SceneReader::readMaterial(element value, SceneMtl& material,
                               std::vector<std::optional<std::size_t>>& subs) {
    readFields(value, [&](std::string_view key, element field) {
        if (key == "name") {
            material.name = readString(field);
        } else if (key == "class") {
            material.classId = readClassId(field);
        } else if (key == "subMaterials") {
            readArray(field, [&](std::size_t, element slot) {
                std::optional<std::size_t> index = readMaterialIndex(slot);
                subs.push_back(index);
                material.subMaterials.push_back(index ? scene_.materials()[*index].get() : nullptr);
            });
        } else if (key == "attributes") {
            readArray(field, [&](std::size_t, element attribute) { readAttribute(attribute, material); });
        } else {
            return false;
        }
        return true;
    });
}

void SceneReader::readAttribute(element value, SceneMtl& material) {
    std::optional<host::Class_ID> classId;
    std::string name;
    readFields(value, [&](std::string_view key, element field) {
        if (key == "class") {
            classId = readClassId(field);
        } else if (key == "name") {
            name = readString(field);
        } else {
            return false;
        }
        return true;
    });
    if (!classId) {
        Step step(*this, {"class"});
        fail("required: a custom attribute is known by its class");
    }
    material.attributes.push_back(std::make_unique<SceneCustAttrib>(*classId, name));
}

// Called inside the step "materials". A material that holds itself, directly or through its sub-materials,
// would send any walk of the sub-materials round for ever; the host never builds one.
void SceneReader::checkMaterialCycles() {
    const auto& subs = subMaterialIndices_;
    enum class Mark { unvisited, open, done };
    std::vector<Mark> marks(subs.size(), Mark::unvisited);
    struct Frame {
        std::size_t material;
        std::size_t next;
    };
    for (std::size_t start = 0; start < subs.size(); ++start) {
        if (marks[start] != Mark::unvisited) {
            continue;
        }
        std::vector<Frame> stack{{start, 0}};
        marks[start] = Mark::open;
        while (!stack.empty()) {
            Frame& top = stack.back();
            if (top.next == subs[top.material].size()) {
                marks[top.material] = Mark::done;
                stack.pop_back();
                continue;
            }
            std::size_t slot = top.next++;
            std::optional<std::size_t> sub = subs[top.material][slot];
            if (!sub || marks[*sub] == Mark::done) {
                continue;
            }
            if (marks[*sub] == Mark::open) {
                Step material(*this, {{}, top.material});
                Step subMaterials(*this, {"subMaterials"});
                Step index(*this, {{}, slot});
                fail(fmt::format("material {} holds itself through its sub-materials", *sub));
            }
            marks[*sub] = Mark::open;
            stack.push_back({*sub, 0});
        }
    }
}

void SceneReader::readNode(element value, SceneNode& node) {
    readFields(value, [&](std::string_view key, element field) {
        if (key == "name") {
            node.name = readString(field);
        } else if (key == "hidden") {
            node.hidden = readBool(field);
        } else if (key == "groupHead") {
            node.groupHead = readBool(field);
        } else if (key == "userProps") {
            node.userProps = readString(field);
        } else if (key == "localTM") {
            node.localTM = readMatrix(field);
        } else if (key == "objectOffsetTM") {
            node.objectOffsetTM = readMatrix(field);
        } else if (key == "object") {
            node.object = field.is_null() ? nullptr : readObject(field);
        } else if (key == "material") {
            std::optional<std::size_t> index = readMaterialIndex(field);
            node.material = index ? scene_.materials()[*index].get() : nullptr;
        } else if (key == "children") {
            readArray(field, [&](std::size_t, element child) { readNode(child, node.addChild()); });
        } else {
            return false;
        }
        return true;
    });
}

// The super class and the class may each be left out when the other tells it; an object that
// gives neither is a dummy helper.
host::Object* SceneReader::readObject(element value) {
    std::optional<host::SClass_ID> superClass;
    std::optional<host::Class_ID> classId;
    std::optional<host::Box3> box;
    readFields(value, [&](std::string_view key, element field) {
        if (key == "superClass") {
            superClass = readClassPart(field);
        } else if (key == "class") {
            classId = readClassId(field);
        } else if (key == "box") {
            box = readBox(field);
        } else {
            return false;
        }
        return true;
    });
    if (!superClass && !classId) {
        superClass = host::HELPER_CLASS_ID;
    }
    if (!classId) {
        classId = defaultClass(*superClass);
        if (!classId) {
            Step step(*this, {"class"});
            fail(fmt::format("required for an object of super class 0x{:X}", *superClass));
        }
    }
    std::optional<host::SClass_ID> known = knownSuperClass(*classId);
    if (!superClass) {
        if (!known) {
            Step step(*this, {"superClass"});
            fail(fmt::format("required for an object of class {}, which the host does not know",
                             classText(*classId)));
        }
        superClass = known;
    } else if (known && *known != *superClass) {
        Step step(*this, {"superClass"});
        fail(fmt::format("0x{:X} does not match the class {}, whose super class is 0x{:X}", *superClass,
                         classText(*classId), *known));
    }
    if (*superClass == host::HELPER_CLASS_ID) {
        return &scene_.addObject(
            std::make_unique<SceneHelper>(*classId, box.value_or(SceneHelper::defaultBox)));
    }
    if (box) {
        Step step(*this, {"box"});
        fail("only helpers have a box");
    }
    return &scene_.addObject(std::make_unique<SceneObject>(*superClass, *classId));
}

std::unique_ptr<Scene> readScene(const simdjson::padded_string& text) {
    simdjson::dom::parser parser;
    element root = parseJson(parser, text);
    auto scene = std::make_unique<Scene>();
    SceneReader(*scene).readDocument(root);
    return scene;
}

}  // namespace

std::unique_ptr<Scene> parseScene(std::string_view json) {
    return readScene(simdjson::padded_string(json));
}

std::unique_ptr<Scene> loadScene(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        throw DocumentError("", fmt::format("cannot open the scene document: {}", std::strerror(errno)));
    }
    std::string text;
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        text.append(buffer, n);
    }
    bool failed = std::ferror(file) != 0;
    int error = errno;
    std::fclose(file);
    if (failed) {
        throw DocumentError("", fmt::format("cannot read the scene document: {}", std::strerror(error)));
    }
    return parseScene(text);
}

}  // namespace scene
