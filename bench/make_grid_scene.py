#!/usr/bin/env python3
"""Writes one synthetic scene twice: as a scene document for nqfexport and as glTF 2.0.

The scene: groups of up to 100 mesh nodes under dummy helpers (named so that they give no
connector), each mesh node with a grid mesh of its own (7 x 7 cells: 64 vertices, 98 triangles,
one normal per vertex, one UV set), and 20 textured materials assigned in turn. Every node has a
plain transform (a translation and a turn about the up axis), so that an exporter bakes the
transforms into the vertices and merges the meshes into one draw per material. --scale 1 gives
10^4 mesh nodes and 980,000 triangles; --scale 4 four times as many nodes.

Both files hold the same numbers: the same vertex positions and UVs in the same order, the same
triangles, the same transforms and the same material of each node. Positions and UVs are
multiples of 1/8, so that they print short and read back exactly.

Usage: make_grid_scene.py OUT_DIR [--scale S] [--name NAME]
Writes OUT_DIR/NAME.json, OUT_DIR/NAME.gltf, OUT_DIR/NAME.bin and the textures OUT_DIR/tex_K.png.
"""

import argparse
import json
import math
import os
import struct
import zlib

CELLS = 7  # grid cells per side
SIDE = CELLS + 1  # vertices per side
NODES_PER_SCALE = 10_000
MATERIALS = 20
GROUP_SIZE = 100


def grid_vertices(node):
    """Positions (x, y, 0) and UVs of node's grid; spacing and height vary from node to node."""
    step = 0.125 * (1 + node % 4)
    height = 0.125 * (node % 3)
    positions = []
    uvs = []
    for row in range(SIDE):
        for col in range(SIDE):
            positions.append((col * step, row * step, height))
            uvs.append((col * 0.125, row * 0.125))
    return positions, uvs


def grid_triangles():
    """Two counter-clockwise triangles per cell (seen from +z), row by row."""
    triangles = []
    for row in range(CELLS):
        for col in range(CELLS):
            a = row * SIDE + col
            b, c, d = a + 1, a + SIDE + 1, a + SIDE
            triangles.append((a, b, c))
            triangles.append((c, d, a))
    return triangles


def node_transform(node):
    """Translation on a plane of nodes and a turn about z in whole degrees."""
    x = (node % 100) * 2.0
    y = (node // 100) * 2.0
    angle = (node * 37) % 360
    return (x, y, 0.0), math.radians(angle)


def group_translation(group):
    return (0.0, 0.0, float(group % 7))


def fmt(value):
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def local_tm(translation, angle):
    """Rows x, y, z axis and translation: a point p lands at p x M."""
    c, s = math.cos(angle), math.sin(angle)
    rows = [(c, s, 0.0), (-s, c, 0.0), (0.0, 0.0, 1.0), translation]
    return "[" + ", ".join("[" + ", ".join(fmt(v) for v in row) + "]" for row in rows) + "]"


def png_1x1(rgb):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    header = struct.pack(">IIBBBBB", 1, 1, 8, 2, 0, 0, 0)
    pixels = zlib.compress(bytes([0]) + bytes(rgb))
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")


def material_colour(k):
    return ((k * 53) % 256, (k * 97) % 256, (k * 151) % 256)


def write_document(path, nodes, triangles):
    """The scene document: materials with a diffuse bitmap on map channel 1, helpers, meshes."""
    with open(path, "w", encoding="utf-8") as out:
        out.write('{"filePath": "/scenes/grid_bench.max", "materials": [\n')
        for k in range(MATERIALS):
            material = {
                "name": f"grid_mat_{k}",
                "mapSlots": [
                    {"name": "Ambient Color"},
                    {"name": "Diffuse Color",
                     "map": {"name": f"tex_{k}", "fileName": f"maps/tex_{k}.png", "mapChannel": 1}},
                ],
                "attributes": [{
                    "class": ["0x7CB6596", "0x7E112E78"],
                    "materialName": "diffuse_solid",
                    "textureSlots": [{"slotName": "Diffuse", "mapName": "Diffuse Color"}],
                }],
            }
            out.write(("," if k else "") + json.dumps(material) + "\n")
        out.write('], "nodes": [\n')
        faces = ", ".join(f'{{"verts": [{a}, {b}, {c}], "smoothing": 1}}' for a, b, c in triangles)
        map_faces = ", ".join(f"[{a}, {b}, {c}]" for a, b, c in triangles)
        groups = (nodes + GROUP_SIZE - 1) // GROUP_SIZE
        for group in range(groups):
            out.write(("," if group else "") + f'{{"name": "dummy_group_{group}", '
                      f'"localTM": {local_tm(group_translation(group), 0.0)}, '
                      f'"object": {{"class": ["0x876234", "0x0"]}}, "children": [\n')
            first = group * GROUP_SIZE
            for node in range(first, min(nodes, first + GROUP_SIZE)):
                positions, uvs = grid_vertices(node)
                translation, angle = node_transform(node)
                vertices = ", ".join(f"[{fmt(x)}, {fmt(y)}, {fmt(z)}]" for x, y, z in positions)
                map_vertices = ", ".join(f"[{fmt(u)}, {fmt(v)}]" for u, v in uvs)
                out.write(("," if node > first else "") +
                          f'{{"name": "grid_{node}", "localTM": {local_tm(translation, angle)}, '
                          f'"material": {node % MATERIALS}, "object": {{"mesh": {{'
                          f'"vertices": [{vertices}], "faces": [{faces}], '
                          f'"maps": [{{"channel": 1, "vertices": [{map_vertices}], '
                          f'"faces": [{map_faces}]}}]}}}}}}\n')
            out.write("]}\n")
        out.write("]}\n")


def write_gltf(path, bin_name, bin_path, nodes, triangles):
    """glTF 2.0 with one .bin: per mesh node its own positions, normals, UVs and 16-bit indices.

    The buffer holds all positions, then all normals, all UVs and all indices, one view each."""
    vertex_count = SIDE * SIDE
    index_count = len(triangles) * 3
    index_data = struct.pack(f"<{index_count}H", *(i for t in triangles for i in t))
    normal_data = struct.pack(f"<{vertex_count * 3}f", *((0.0, 0.0, 1.0) * vertex_count))
    sizes = (vertex_count * 12, vertex_count * 12, vertex_count * 8, index_count * 2)
    parts = ([], [normal_data] * nodes, [], [index_data] * nodes)
    accessors, meshes, gltf_nodes = [], [], []
    for node in range(nodes):
        positions, uvs = grid_vertices(node)
        parts[0].append(struct.pack(f"<{vertex_count * 3}f", *(v for p in positions for v in p)))
        parts[2].append(struct.pack(f"<{vertex_count * 2}f", *(v for uv in uvs for v in uv)))
        first = len(accessors)
        accessors += [
            {"bufferView": 0, "byteOffset": node * sizes[0], "componentType": 5126, "count": vertex_count,
             "type": "VEC3", "min": [min(p[i] for p in positions) for i in range(3)],
             "max": [max(p[i] for p in positions) for i in range(3)]},
            {"bufferView": 1, "byteOffset": node * sizes[1], "componentType": 5126, "count": vertex_count,
             "type": "VEC3"},
            {"bufferView": 2, "byteOffset": node * sizes[2], "componentType": 5126, "count": vertex_count,
             "type": "VEC2"},
            {"bufferView": 3, "byteOffset": node * sizes[3], "componentType": 5123, "count": index_count,
             "type": "SCALAR"},
        ]
        meshes.append({"primitives": [{
            "attributes": {"POSITION": first, "NORMAL": first + 1, "TEXCOORD_0": first + 2},
            "indices": first + 3, "material": node % MATERIALS}]})
        translation, angle = node_transform(node)
        # A turn about z as a quaternion (x, y, z, w).
        gltf_nodes.append({"name": f"grid_{node}", "mesh": node, "translation": list(translation),
                           "rotation": [0.0, 0.0, math.sin(angle / 2), math.cos(angle / 2)]})
    groups = (nodes + GROUP_SIZE - 1) // GROUP_SIZE
    for group in range(groups):
        first = group * GROUP_SIZE
        gltf_nodes.append({"name": f"dummy_group_{group}", "translation": list(group_translation(group)),
                           "children": list(range(first, min(nodes, first + GROUP_SIZE)))})
    views = []
    offset = 0
    with open(bin_path, "wb") as out:
        for kind, chunks in enumerate(parts):
            length = sizes[kind] * nodes
            views.append({"buffer": 0, "byteOffset": offset, "byteLength": length,
                          "target": 34963 if kind == 3 else 34962})
            for chunk in chunks:
                out.write(chunk)
            offset += length
    document = {
        "asset": {"version": "2.0", "generator": "make_grid_scene.py"},
        "scene": 0,
        "scenes": [{"nodes": list(range(nodes, nodes + groups))}],
        "nodes": gltf_nodes,
        "meshes": meshes,
        "accessors": accessors,
        "bufferViews": views,
        "buffers": [{"uri": bin_name, "byteLength": offset}],
        "materials": [{"name": f"grid_mat_{k}", "pbrMetallicRoughness": {"baseColorTexture": {"index": k}}}
                      for k in range(MATERIALS)],
        "samplers": [{}],
        "textures": [{"source": k, "sampler": 0} for k in range(MATERIALS)],
        "images": [{"uri": f"tex_{k}.png"} for k in range(MATERIALS)],
    }
    with open(path, "w", encoding="utf-8") as out:
        json.dump(document, out, separators=(",", ":"))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("out_dir")
    parser.add_argument("--scale", type=int, default=1, help="the scene is S x 10^4 mesh nodes")
    parser.add_argument("--name", default="grid_scene")
    args = parser.parse_args()
    if args.scale < 1:
        parser.error("--scale must be 1 or more")
    os.makedirs(args.out_dir, exist_ok=True)
    nodes = NODES_PER_SCALE * args.scale
    triangles = grid_triangles()
    for k in range(MATERIALS):
        with open(os.path.join(args.out_dir, f"tex_{k}.png"), "wb") as out:
            out.write(png_1x1(material_colour(k)))
    base = os.path.join(args.out_dir, args.name)
    write_document(base + ".json", nodes, triangles)
    write_gltf(base + ".gltf", args.name + ".bin", base + ".bin", nodes, triangles)
    print(f"{nodes} mesh nodes, {nodes * len(triangles)} triangles, {MATERIALS} materials: "
          f"{base}.json, {base}.gltf")


if __name__ == "__main__":
    main()
