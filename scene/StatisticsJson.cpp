#include "scene/StatisticsJson.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace scene {

namespace {

struct Entry {
    std::string name;
    std::string value;
    std::vector<Entry> children;
};

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (u < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", u);
            out += escape;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

bool isWholeNumber(std::string_view text) {
    if (text.empty() || text.size() > 18 || (text.size() > 1 && text[0] == '0')) {
        return false;
    }
    for (char c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

void write(std::string& out, const std::vector<Entry>& entries) {
    out += '[';
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& e = entries[i];
        out += i ? "," : "";
        out += "{\"name\":" + quoted(e.name) + ",\"value\":";
        out += isWholeNumber(e.value) ? e.value : quoted(e.value);
        out += ",\"children\":";
        write(out, e.children);
        out += '}';
    }
    out += ']';
}

}  // namespace

std::string statisticsTextToJson(std::string_view text) {
    std::vector<Entry> top;
    // The open entries by depth: path[d] is the list that an entry of depth d goes into.
    std::vector<std::vector<Entry>*> path{&top};
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (line.find_first_not_of(' ') == std::string_view::npos) {
            continue;
        }
        const std::size_t indent = line.find_first_not_of(' ');
        line.remove_prefix(indent);
        // A line deeper than one level below the last entry hangs under that entry.
        const std::size_t depth = std::min(indent / 2, path.size() - 1);
        path.resize(depth + 1);
        Entry entry;
        const std::size_t colon = line.find(": ");
        entry.name = std::string(line.substr(0, colon));
        if (colon != std::string_view::npos) {
            entry.value = std::string(line.substr(colon + 2));
        }
        std::vector<Entry>& list = *path[depth];
        list.push_back(std::move(entry));
        path.push_back(&list.back().children);
    }
    std::string out;
    write(out, top);
    return out;
}

}  // namespace scene
