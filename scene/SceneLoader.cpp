#include "scene/SceneLoader.h"

#include <sys/stat.h>

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
#include "scene/DocumentReader.h"
#include "scene/JsonText.h"
#include "scene/KnownClasses.h"
#include "scene/MaterialLoader.h"
#include "scene/MeshLoader.h"
#include "scene/NodeSlices.h"
#include "scene/SceneObject.h"

namespace scene {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

// Walks the parsed document and builds the scene. Every read knows the document path of the
// value it reads, so a fault names it. Materials are read by MaterialLoader.
class SceneReader : public DocumentReader {
public:
    explicit SceneReader(Scene& scene) : scene_(scene) {}

    void readDocument(element root);
    // Reads the item at index of the root's "nodes" as the root's next child.
    void readTopNode(std::size_t index, element value);

private:
    host::Box3 readBox(element value);
    void readNode(element value, SceneNode& node);
    host::Object* readObject(element value);

    Scene& scene_;
};

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

void SceneReader::readDocument(element root) {
    if (!root.is_object()) {
        fail("expected an object");
    }
    // Materials first, so that nodes can refer to them wherever the field stands.
    if (element materials; !root.at_key("materials").get(materials)) {
        Step step(*this, {"materials"});
        readMaterials(*this, scene_, materials);
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

void SceneReader::readTopNode(std::size_t index, element value) {
    Step nodes(*this, {"nodes"});
    Step item(*this, {{}, index});
    readNode(value, scene_.root.addChild());
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
            node.material = readMaterialRef(*this, scene_, field);
        } else if (key == "children") {
            readArray(field, [&](std::size_t, element child) { readNode(child, node.addChild()); });
        } else {
            return false;
        }
        return true;
    });
}

// The super class and the class may each be left out when the other tells it; an object that
// gives neither is a triangle object when it has a mesh and a dummy helper otherwise.
host::Object* SceneReader::readObject(element value) {
    std::optional<host::SClass_ID> superClass;
    std::optional<host::Class_ID> classId;
    std::optional<host::Box3> box;
    std::optional<element> mesh;
    readFields(value, [&](std::string_view key, element field) {
        if (key == "superClass") {
            superClass = readClassPart(field);
        } else if (key == "class") {
            classId = readClassId(field);
        } else if (key == "box") {
            box = readBox(field);
        } else if (key == "mesh") {
            mesh = field;
        } else {
            return false;
        }
        return true;
    });
    if (!superClass && !classId) {
        superClass = mesh ? host::GEOMOBJECT_CLASS_ID : host::HELPER_CLASS_ID;
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
    const bool triangles = *classId == host::Class_ID(host::TRIOBJ_CLASS_ID, 0);
    if (mesh && !triangles) {
        Step step(*this, {"mesh"});
        fail("only triangle objects have a mesh");
    }
    if (*superClass == host::HELPER_CLASS_ID) {
        return &scene_.addObject(
            std::make_unique<SceneHelper>(*classId, box.value_or(SceneHelper::defaultBox)));
    }
    if (box) {
        Step step(*this, {"box"});
        fail("only helpers have a box");
    }
    if (triangles) {
        return readMeshObject(*this, scene_, mesh);
    }
    return &scene_.addObject(std::make_unique<SceneObject>(*superClass, *classId));
}

// Nodes nested deeper than this inside a top-level node are left to the reading of the whole
// document, whose parser allows 1024 levels counted from the root: a node sits two levels down,
// and the margin keeps the parse of a node from ever accepting what the whole parse refuses.
constexpr std::size_t kNodeDepth = simdjson::DEFAULT_MAX_DEPTH - 16;

// Reads the document one top-level node at a time: each node is parsed into a small tape of its
// own, reused from node to node and read while it is still in the caches, instead of one tape for
// the whole document (16 bytes a number, hundreds of megabytes for a large mesh scene) written
// once to fresh memory and read once. The rest of the document is parsed and read as a skeleton
// first, so materials and the root's own fields come in the same order as in the whole reading.
// Nothing when the document cannot be read this way or has any fault: the caller then reads it
// whole, so that the fault reported, and which of several comes first, is that reading's.
std::unique_ptr<Scene> readSceneByNodes(const simdjson::padded_string& text) {
    std::optional<NodeSlices> slices = sliceNodes(text);
    if (!slices) {
        return nullptr;
    }
    try {
        auto scene = std::make_unique<Scene>();
        SceneReader reader(*scene);
        simdjson::dom::parser parser;
        element root;
        if (parser.parse(slices->skeleton).get(root)) {
            return nullptr;
        }
        reader.readDocument(root);
        if (parser.allocate(simdjson::SIMDJSON_PADDING, kNodeDepth)) {
            return nullptr;
        }
        for (std::size_t i = 0; i < slices->nodes.size(); ++i) {
            const std::string_view node = slices->nodes[i];
            if (parser.parse(node.data(), node.size(), false).get(root)) {
                return nullptr;
            }
            reader.readTopNode(i, root);
        }
        return scene;
    } catch (const DocumentError&) {
        return nullptr;
    }
}

std::unique_ptr<Scene> readScene(const simdjson::padded_string& text) {
    if (auto scene = readSceneByNodes(text)) {
        return scene;
    }
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
    // A regular file is read in one piece straight into the parser's padded buffer, sized from
    // the file; a pipe or a file that changes size meanwhile is read piece by piece and copied.
    std::optional<simdjson::padded_string> whole;
    std::string text;
    struct stat status {};
    if (::fstat(::fileno(file), &status) == 0 && S_ISREG(status.st_mode)) {
        const auto size = static_cast<std::size_t>(status.st_size);
        whole.emplace(size);
        const std::size_t n = std::fread(whole->data(), 1, size, file);
        if (n != size || std::fgetc(file) != EOF) {
            text.assign(whole->data(), n);
            whole.reset();
            if (!std::ferror(file)) {
                std::fseek(file, static_cast<long>(n), SEEK_SET);
            }
        }
    }
    if (!whole) {
        char buffer[65536];
        std::size_t n = 0;
        while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
            text.append(buffer, n);
        }
    }
    bool failed = std::ferror(file) != 0;
    int error = errno;
    std::fclose(file);
    if (failed) {
        throw DocumentError("", fmt::format("cannot read the scene document: {}", std::strerror(error)));
    }
    return whole ? readScene(*whole) : parseScene(text);
}

}  // namespace scene
