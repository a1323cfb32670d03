#include "scene/ControllerLoader.h"

#include <limits>
#include <string>
#include <vector>

#include "host/Constants.h"

namespace scene {
namespace {

using element = simdjson::dom::element;

// A number, or an array of one to four numbers; a three-valued one marks a point controller.
SceneControl::Value readValue(DocumentReader& reader, element value, int& components) {
    SceneControl::Value v{};
    if (value.is_number()) {
        components = 1;
        v[0] = reader.readFloat(value);
        return v;
    }
    simdjson::dom::array array;
    if (value.get_array().get(array) || array.size() < 1 || array.size() > 4) {
        reader.fail("expected a number or an array of 1 to 4 numbers");
    }
    components = static_cast<int>(array.size());
    reader.readArray(value, [&](std::size_t i, element c) { v[i] = reader.readFloat(c); });
    return v;
}

void readKeys(DocumentReader& reader, element value, SceneControl& control, int& components) {
    reader.readArray(value, [&](std::size_t, element pair) {
        simdjson::dom::array array;
        if (pair.get_array().get(array) || array.size() != 2) {
            reader.fail("expected a key: [time in ticks, value]");
        }
        SceneControl::Key key;
        reader.readArray(pair, [&](std::size_t i, element part) {
            if (i == 0) {
                key.time = static_cast<host::TimeValue>(
                    reader.readInteger(part, std::numeric_limits<std::int32_t>::min(),
                                       std::numeric_limits<std::int32_t>::max()));
            } else {
                key.value = readValue(reader, part, components);
            }
        });
        if (!control.keys.empty() && key.time <= control.keys.back().time) {
            reader.fail("keys must be in ascending order of time");
        }
        control.keys.push_back(key);
    });
}

}  // namespace

std::unique_ptr<SceneControl> readController(DocumentReader& reader, element value) {
    auto control = std::make_unique<SceneControl>();
    int components = 1;
    bool superClassGiven = false;
    reader.readFields(value, [&](std::string_view key, element field) {
        if (key == "class") {
            control->classId = reader.readClassId(field);
        } else if (key == "superClass") {
            control->superClass = reader.readClassPart(field);
            superClassGiven = true;
        } else if (key == "value") {
            control->value = readValue(reader, field, components);
        } else if (key == "keys") {
            readKeys(reader, field, *control, components);
        } else if (key == "keyable") {
            control->keyable = reader.readBool(field);
        } else if (key == "arguments") {
            control->isList = true;
            reader.readArray(field, [&](std::size_t, element entry) {
                SceneControl::Argument argument;
                reader.readFields(entry, [&](std::string_view k, element f) {
                    if (k == "argument") {
                        argument.argument =
                            static_cast<int>(reader.readInteger(f, std::numeric_limits<std::int32_t>::min(),
                                                                std::numeric_limits<std::int32_t>::max()));
                    } else if (k == "controller") {
                        argument.controller = f.is_null() ? nullptr : readController(reader, f);
                    } else {
                        return false;
                    }
                    return true;
                });
                control->arguments.push_back(std::move(argument));
            });
        } else {
            return false;
        }
        return true;
    });
    if (!superClassGiven && components == 3) {
        control->superClass = host::CTRL_POINT3_CLASS_ID;
    }
    return control;
}

void readControllerPaths(DocumentReader& reader, element value, SubAnimTree& tree) {
    reader.readFields(value, [&](std::string_view key, element field) {
        std::vector<std::string> path;
        std::size_t start = 0;
        while (true) {
            std::size_t slash = key.find('/', start);
            path.emplace_back(key.substr(start, slash == std::string_view::npos ? slash : slash - start));
            if (slash == std::string_view::npos) {
                break;
            }
            start = slash + 1;
        }
        tree.put(path, field.is_null() ? nullptr : readController(reader, field));
        return true;
    });
}

}  // namespace scene
