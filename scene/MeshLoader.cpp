// The triangle mesh of a geometry object in a scene document: vertices, faces, map channels and
// specified normals, or the "box" shorthand that stands for a whole box.

#include <array>
#include <cstring>
#include <memory>

#include <fmt/format.h>

#include "host/Mesh.h"
#include "scene/MeshLoader.h"

namespace scene {
namespace {

using element = DocumentReader::element;
using Step = DocumentReader::Step;

// The map channels a mesh may have: 0 (vertex colours) to 99.
constexpr std::int64_t kMaxMapChannel = 99;

// The six sides of a box, each a quad of corners (a, b, c, d) made of the faces (a, b, c) and
// (c, d, a), wound counter-clockwise seen from outside: bottom, top, front, right, back, left.
constexpr std::array<std::array<host::DWORD, 4>, 6> kBoxSides{{
    {0, 2, 3, 1},
    {4, 5, 7, 6},
    {0, 1, 5, 4},
    {1, 3, 7, 5},
    {3, 2, 6, 7},
    {2, 0, 4, 6},
}};

// A box standing on the object's origin: x and y centred, z from 0 to the height. Each side has a
// smoothing group of its own (bit k for side k), the material id of its side, and map channel 1
// spans the side from (0, 0) to (1, 1).
void buildBox(host::Mesh& mesh, const host::Point3& size, const std::array<host::MtlID, 6>& materialIds) {
    const float x = size.x / 2, y = size.y / 2, z = size.z;
    mesh.verts = {{-x, -y, 0}, {x, -y, 0}, {-x, y, 0}, {x, y, 0},
                  {-x, -y, z}, {x, -y, z}, {-x, y, z}, {x, y, z}};
    mesh.maps.resize(2);
    host::MeshMap& uv = mesh.maps[1];
    uv.tv = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}};
    // The map corners of (a, b, c, d).
    constexpr std::array<host::DWORD, 4> quadUv{0, 1, 3, 2};
    for (std::size_t side = 0; side < kBoxSides.size(); ++side) {
        const auto& q = kBoxSides[side];
        for (const std::array<int, 3>& corners : {std::array<int, 3>{0, 1, 2}, std::array<int, 3>{2, 3, 0}}) {
            host::Face face;
            host::TVFace mapFace;
            for (int k = 0; k < 3; ++k) {
                face.v[k] = q[static_cast<std::size_t>(corners[k])];
                mapFace.t[k] = quadUv[static_cast<std::size_t>(corners[k])];
            }
            face.smGroup = 1u << side;
            face.setMatID(materialIds[side]);
            mesh.faces.push_back(face);
            uv.tf.push_back(mapFace);
        }
    }
}

// Reserves room for the items of a JSON array about to be read into list, so a large mesh is not
// grown and copied step by step. A value that is not an array is left for the reader to report.
template <class List>
void reserveFor(List& list, element value) {
    simdjson::dom::array array;
    if (!value.get_array().get(array)) {
        list.reserve(list.size() + array.size());
    }
}

// Whether key is the text of the literal, compared in one piece of known length.
template <std::size_t N>
bool isKey(std::string_view key, const char (&literal)[N]) {
    return key.size() == N - 1 && std::memcmp(key.data(), literal, N - 1) == 0;
}

// The fast form of a face written as an object: "verts" with three plain in-range indices, and
// "smoothing" and "materialId" as plain in-range integers, each at most once, without entering
// the document path. False on anything else (the face may then be partly filled), leaving the
// face to the checked reading, whose fault names its place.
bool tryReadFace(simdjson::dom::object object, std::int64_t maxVertex, host::Face& face) {
    bool verts = false;
    bool smoothing = false;
    bool materialId = false;
    for (simdjson::dom::key_value_pair field : object) {
        std::int64_t number = 0;
        if (isKey(field.key, "verts") && !verts) {
            simdjson::dom::array array;
            if (field.value.get_array().get(array) || array.size() != 3 ||
                !DocumentReader::tryReadIndices(array, maxVertex, face.v)) {
                return false;
            }
            verts = true;
        } else if (isKey(field.key, "smoothing") && !smoothing) {
            if (field.value.get_int64().get(number) || number < 0 || number > 0xFFFFFFFF) {
                return false;
            }
            face.smGroup = static_cast<host::DWORD>(number);
            smoothing = true;
        } else if (isKey(field.key, "materialId") && !materialId) {
            if (field.value.get_int64().get(number) || number < 0 || number > 0xFFFF) {
                return false;
            }
            face.setMatID(static_cast<host::MtlID>(number));
            materialId = true;
        } else {
            return false;
        }
    }
    return verts;
}

}  // namespace

host::Object* readMeshObject(DocumentReader& reader, Scene& scene, const std::optional<element>& value) {
    auto object = std::make_unique<host::TriObject>();
    host::Mesh& mesh = object->mesh;
    if (!value) {
        return &scene.addObject(std::move(object));
    }
    Step meshStep(reader, {"mesh"});
    bool hasBox = false;
    bool hasData = false;
    std::optional<element> faces, maps, normals;
    reader.readFields(*value, [&](std::string_view key, element field) {
        if (key == "box") {
            hasBox = true;
            host::Point3 size(10, 10, 10);
            std::array<host::MtlID, 6> ids{0, 1, 2, 3, 4, 5};
            reader.readFields(field, [&](std::string_view boxKey, element boxField) {
                if (boxKey == "size") {
                    size = reader.readPoint(boxField);
                } else if (boxKey == "materialIds") {
                    simdjson::dom::array array;
                    if (boxField.get_array().get(array) || array.size() != 6) {
                        reader.fail("expected 6 material ids, one for each side");
                    }
                    reader.readArray(boxField, [&](std::size_t i, element id) {
                        ids[i] = static_cast<host::MtlID>(reader.readInteger(id, 0, 0xFFFF));
                    });
                } else {
                    return false;
                }
                return true;
            });
            buildBox(mesh, size, ids);
        } else if (key == "vertices") {
            hasData = true;
            reserveFor(mesh.verts, field);
            reader.readArray(
                field, [&](std::size_t, element point) { mesh.verts.push_back(reader.readPoint(point)); });
        } else if (key == "faces") {
            hasData = true;
            faces = field;
        } else if (key == "maps") {
            hasData = true;
            maps = field;
        } else if (key == "normals") {
            hasData = true;
            normals = field;
        } else {
            return false;
        }
        return true;
    });
    if (hasBox && hasData) {
        reader.fail("a mesh is either a box or vertices and faces, not both");
    }
    // Faces, maps and normals refer to the vertices, so they are read once those are known.
    const auto vertexCount = static_cast<std::int64_t>(mesh.verts.size());
    if (faces) {
        Step step(reader, {"faces"});
        reserveFor(mesh.faces, *faces);
        reader.readArray(*faces, [&](std::size_t, element item) {
            host::Face face;
            auto readCorners = [&](element corners) {
                simdjson::dom::array array;
                if (corners.get_array().get(array) || array.size() != 3) {
                    reader.fail("expected the 3 vertex indices of a triangle");
                }
                if (vertexCount == 0) {
                    reader.fail("the mesh has no vertices");
                }
                if (DocumentReader::tryReadIndices(array, vertexCount - 1, face.v)) {
                    return;
                }
                reader.readArray(corners, [&](std::size_t k, element index) {
                    face.v[k] = static_cast<host::DWORD>(reader.readInteger(index, 0, vertexCount - 1));
                });
            };
            simdjson::dom::object fields;
            if (item.is_array()) {
                readCorners(item);
            } else if (item.get_object().get(fields) || !tryReadFace(fields, vertexCount - 1, face)) {
                face = host::Face();
                bool hasCorners = false;
                reader.readFields(item, [&](std::string_view key, element field) {
                    if (key == "verts") {
                        hasCorners = true;
                        readCorners(field);
                    } else if (key == "smoothing") {
                        face.smGroup = static_cast<host::DWORD>(reader.readInteger(field, 0, 0xFFFFFFFF));
                    } else if (key == "materialId") {
                        face.setMatID(static_cast<host::MtlID>(reader.readInteger(field, 0, 0xFFFF)));
                    } else {
                        return false;
                    }
                    return true;
                });
                if (!hasCorners) {
                    Step verts(reader, {"verts"});
                    reader.fail("required: the 3 vertex indices of the face");
                }
            }
            mesh.faces.push_back(face);
        });
    }
    if (maps) {
        Step step(reader, {"maps"});
        reader.readArray(*maps, [&](std::size_t, element item) {
            std::optional<std::int64_t> channel;
            host::MeshMap map;
            std::optional<element> mapFaces;
            reader.readFields(item, [&](std::string_view key, element field) {
                if (key == "channel") {
                    channel = reader.readInteger(field, 0, kMaxMapChannel);
                } else if (key == "vertices") {
                    reserveFor(map.tv, field);
                    reader.readArray(field, [&](std::size_t, element point) {
                        simdjson::dom::array array;
                        if (point.get_array().get(array) || (array.size() != 2 && array.size() != 3)) {
                            reader.fail("expected 2 or 3 numbers");
                        }
                        float numbers[3] = {0, 0, 0};
                        if (DocumentReader::tryReadFloats(array, numbers)) {
                            map.tv.emplace_back(numbers[0], numbers[1], numbers[2]);
                            return;
                        }
                        host::Point3 p;
                        reader.readArray(point, [&](std::size_t i, element c) {
                            p[static_cast<int>(i)] = reader.readFloat(c);
                        });
                        map.tv.push_back(p);
                    });
                } else if (key == "faces") {
                    mapFaces = field;
                } else {
                    return false;
                }
                return true;
            });
            if (!channel) {
                Step channelStep(reader, {"channel"});
                reader.fail("required: the number of the map channel");
            }
            if (mapFaces) {
                Step facesStep(reader, {"faces"});
                const auto mapVertexCount = static_cast<std::int64_t>(map.tv.size());
                reserveFor(map.tf, *mapFaces);
                reader.readArray(*mapFaces, [&](std::size_t, element corners) {
                    simdjson::dom::array array;
                    if (corners.get_array().get(array) || array.size() != 3) {
                        reader.fail("expected the 3 map vertex indices of a triangle");
                    }
                    if (mapVertexCount == 0) {
                        reader.fail("the map has no vertices");
                    }
                    host::TVFace face;
                    if (DocumentReader::tryReadIndices(array, mapVertexCount - 1, face.t)) {
                        map.tf.push_back(face);
                        return;
                    }
                    reader.readArray(corners, [&](std::size_t k, element index) {
                        face.t[k] =
                            static_cast<host::DWORD>(reader.readInteger(index, 0, mapVertexCount - 1));
                    });
                    map.tf.push_back(face);
                });
                if (!map.tf.empty() && map.tf.size() != mesh.faces.size()) {
                    reader.fail(
                        fmt::format("a map has one face for each face of the mesh: expected {}, found {}",
                                    mesh.faces.size(), map.tf.size()));
                }
            }
            auto c = static_cast<std::size_t>(*channel);
            if (c < mesh.maps.size() && (mesh.maps[c].getNumVerts() > 0 || mesh.maps[c].getNumFaces() > 0)) {
                Step channelStep(reader, {"channel"});
                reader.fail(fmt::format("map channel {} is given twice", c));
            }
            if (c >= mesh.maps.size()) {
                mesh.maps.resize(c + 1);
            }
            mesh.maps[c] = std::move(map);
        });
    }
    if (normals) {
        Step step(reader, {"normals"});
        reader.readArray(*normals, [&](std::size_t, element item) {
            std::optional<std::int64_t> vertex;
            std::optional<host::Point3> normal;
            reader.readFields(item, [&](std::string_view key, element field) {
                if (key == "vertex") {
                    if (vertexCount == 0) {
                        reader.fail("the mesh has no vertices");
                    }
                    vertex = reader.readInteger(field, 0, vertexCount - 1);
                } else if (key == "normal") {
                    normal = reader.readPoint(field);
                } else {
                    return false;
                }
                return true;
            });
            if (!vertex || !normal) {
                reader.fail("required: both \"vertex\" and \"normal\"");
            }
            mesh.setSpecifiedNormal(static_cast<int>(*vertex), *normal);
        });
    }
    return &scene.addObject(std::move(object));
}

}  // namespace scene
