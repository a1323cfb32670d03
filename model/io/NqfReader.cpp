#include "model/io/NqfReader.h"

#include <unordered_set>

#include <fmt/format.h>

#include "model/io/NqfParser.h"

namespace model::io {
namespace {

constexpr std::string_view kGroupNames[] = {"CONNECTORS", "SHELL_NODES", "LIGHT_NODES", "RENDER_NODES"};

// The smallest tree node record (a plain node with an empty name and no properties: class,
// name length, reserved word, property count) and its parent table entry.
constexpr std::size_t kLeastTreeNode = 16 + 4;
// The smallest list node record: the head alone.
constexpr std::size_t kLeastListNode = 16;

}  // namespace

NqfDocument readNqf(std::span<const std::uint8_t> bytes) {
    return NqfParser(bytes).parse();
}

NqfDocument NqfParser::parse() {
    NqfDocument doc;
    header(doc);
    stringTable(doc);
    {
        Scope scope(*this, "header");
        if (const std::uint64_t v = u64("reserved word"); v != 0) {
            fail("reserved word 0", std::to_string(v));
        }
    }
    doc.root = root();
    tree(doc);
    parentTable(doc);
    groups(doc);

    {
        Scope scope(*this, "file");
        if (cursor_.remaining() != 0) {
            failAt(cursor_.offset(), "the end of the file after the last group",
                   fmt::format("{} more bytes", cursor_.remaining()));
        }
        if (stringsInUse_ != strings_.size()) {
            failAt(stringTableOffset_, "every string of the table in use",
                   fmt::format("{} of {} strings never referred to", strings_.size() - stringsInUse_,
                               strings_.size()));
        }
    }
    if (anyArgument_ && doc.root.numHandles <= highestArgument_) {
        Scope scope(*this, "root");
        failAt(numHandlesOffset_,
               fmt::format("a handle count of at least {} (argument {} is in use at byte {})",
                           std::uint64_t{highestArgument_} + 1, highestArgument_, highestArgumentOffset_),
               std::to_string(doc.root.numHandles));
    }
    return doc;
}

void NqfParser::header(NqfDocument& doc) {
    Scope scope(*this, "header");
    const std::uint8_t* magic = need(3, "magic");
    if (magic[0] != 'N' || magic[1] != 'Q' || magic[2] != 'F') {
        fail("the magic \"NQF\"",
             fmt::format("the bytes {:02X} {:02X} {:02X}", magic[0], magic[1], magic[2]));
    }
    doc.version = ByteCursor::loadU16(need(2, "format version"));
    if (doc.version != 10) {
        fail("format version 10", std::to_string(doc.version));
    }
}

void NqfParser::stringTable(NqfDocument& doc) {
    Scope scope(*this, "string table");
    const std::uint32_t size = count(1, "string table size");
    stringTableOffset_ = cursor_.offset();
    const std::uint8_t* table = need(size, "string table");
    if (size > 0 && table[size - 1] != 0) {
        failAt(stringTableOffset_ + size - 1, "a NUL byte at the end of the string table",
               fmt::format("0x{:02X}", table[size - 1]));
    }
    std::unordered_set<std::string_view> seen;
    std::size_t start = 0;
    while (start < size) {
        std::size_t end = start;
        while (table[end] != 0) {
            ++end;
        }
        std::string_view text(reinterpret_cast<const char*>(table) + start, end - start);
        checkUtf8(text, stringTableOffset_ + start, "a string");
        if (!seen.insert(text).second) {
            failAt(stringTableOffset_ + start, "distinct strings",
                   fmt::format("\"{}\" a second time as string {}", text, strings_.size()));
        }
        strings_.emplace_back(text);
        start = end + 1;
    }
    doc.strings = strings_;
}

void NqfParser::tree(NqfDocument& doc) {
    {
        Scope scope(*this, "tree");
        treeSize_ = count(kLeastTreeNode, "tree node count");
    }
    doc.tree.reserve(treeSize_);
    for (std::uint32_t i = 0; i < treeSize_; ++i) {
        Scope scope(*this, fmt::format("tree[{}]", i));
        doc.tree.push_back(treeNode());
    }
}

// The tree is stored in pre-order, so each node's parent is the node before it or one of that
// node's ancestors; only the first node is the tree's root.
void NqfParser::parentTable(NqfDocument& doc) {
    doc.parents.reserve(treeSize_);
    std::vector<std::uint32_t> ancestors;  // the path from the root to the node before
    for (std::uint32_t i = 0; i < treeSize_; ++i) {
        Scope scope(*this, fmt::format("parents[{}]", i));
        const std::uint32_t parent = u32("parent index");
        if (i == 0) {
            if (parent != kNoIndex) {
                fail("0xFFFFFFFF for the tree's root", std::to_string(parent));
            }
        } else {
            while (!ancestors.empty() && ancestors.back() != parent) {
                ancestors.pop_back();
            }
            if (ancestors.empty()) {
                fail(fmt::format("the index of node {} or of one of its ancestors (the tree is in pre-order)",
                                 i - 1),
                     parent == kNoIndex ? std::string("0xFFFFFFFF") : std::to_string(parent));
            }
        }
        ancestors.push_back(i);
        doc.parents.push_back(parent);
    }
}

void NqfParser::groups(NqfDocument& doc) {
    std::uint32_t groupCount = 0;
    {
        Scope scope(*this, "groups");
        groupCount = u32("group count");
        if (groupCount > 4) {
            fail("a group count of 0 to 4", std::to_string(groupCount));
        }
    }
    std::size_t next = 0;  // groups stand in a fixed order, each at most once
    for (std::uint32_t g = 0; g < groupCount; ++g) {
        NqfGroup group;
        std::size_t position = next;
        std::uint32_t n = 0;
        {
            Scope scope(*this, fmt::format("groups[{}]", g));
            group.name = sref("group name");
            while (position < 4 && kGroupNames[position] != group.name) {
                ++position;
            }
            if (position == 4 && next == 4) {
                fail("no group after \"RENDER_NODES\"", fmt::format("\"{}\"", group.name));
            }
            if (position == 4) {
                std::string expected;
                for (std::size_t k = next; k < 4; ++k) {
                    expected += fmt::format("{}\"{}\"",
                                            k == next    ? ""
                                            : k + 1 == 4 ? " or "
                                                         : ", ",
                                            kGroupNames[k]);
                }
                fail(fmt::format("the group name {}", expected), fmt::format("\"{}\"", group.name));
            }
            next = position + 1;
            n = count(kLeastListNode, "node count");
            if (n == 0) {
                fail("a non-empty group (empty groups are left out)", "0 nodes");
            }
        }
        group.nodes.reserve(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            Scope node(*this, fmt::format("{}[{}]", group.name, i));
            group.nodes.push_back(listNode(position));
        }
        doc.groups.push_back(std::move(group));
    }
}

}  // namespace model::io
