// nqfinfo: reads a version 10 .nqf file, checks it byte by byte and prints what it holds.

#include <cstdio>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "core/Vfs.h"
#include "model/io/NqfJson.h"
#include "model/io/NqfReader.h"
#include "model/io/NqfSummary.h"

namespace {

constexpr const char* kDescription =
    R"(Reads a .nqf model file (format version 10), checks it byte by byte and prints
its node tree, groups, materials and counts, or with --json a complete dump of
every field.

Checks: the magic "NQF" and version 10; a string table of distinct NUL-ended
UTF-8 strings, each referenced, in order of first use; every string reference
in range; class names valid where they stand (root, tree nodes, the groups
CONNECTORS, SHELL_NODES, LIGHT_NODES, RENDER_NODES in that order, none empty);
tree links and a parent table that form a pre-order tree; material entries
and their key order; vertex blocks within the file and every index below its
vertex count, in the narrowest width; reserved words 0; the handle count not
below the highest argument in use plus one; nothing after the last group.

A fault is reported as one line:
  FILE: error at byte OFFSET in RECORD: expected ..., found ...

Exit status: 0 the file is valid, 1 the file is faulty or cannot be read,
2 the command line is wrong.

Example:
  nqfinfo model.nqf
  nqfinfo --json model.nqf > model.json)";

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(kDescription, "nqfinfo");
    std::string path;
    bool json = false;
    app.add_flag("--json", json, "Print a complete JSON dump of every field instead of the summary");
    app.add_option("FILE", path, "The .nqf file to read")->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return 2;
    }

    // This program is a host of the virtual file system: native paths reach it through a mount.
    nqvfs::mountNative("/");
    std::vector<std::uint8_t> bytes;
    if (nqvfs::Status s = nqvfs::readFile(path, bytes); !s) {
        fmt::print(stderr, "nqfinfo: {}\n", s.error);
        return 1;
    }
    try {
        const model::io::NqfDocument document = model::io::readNqf(bytes);
        const std::string text = json ? model::io::toJson(document) : model::io::summary(document);
        std::fwrite(text.data(), 1, text.size(), stdout);
    } catch (const model::io::ReadError& e) {
        fmt::print(stderr, "{}: {}\n", path, e.what());
        return 1;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
