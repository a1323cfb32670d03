#include "core/Vfs.h"

#include <mutex>
#include <optional>
#include <shared_mutex>

#include <fmt/format.h>

#include "core/NativeDriver.h"

namespace nqvfs {
namespace {

struct Mount {
    std::vector<std::string> prefix;  // components of the mount point; empty for "/"
    std::shared_ptr<IDriver> driver;
};

struct MountTable {
    std::shared_mutex lock;
    std::vector<Mount> mounts;
};

MountTable& table() {
    static MountTable t;
    return t;
}

// Splits a virtual path into components, dropping empty and "." ones. ".." is refused, so that
// no path can climb out of the directory a mount exposes.
std::optional<std::vector<std::string>> components(std::string_view path) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos) {
            end = path.size();
        }
        std::string_view part = path.substr(start, end - start);
        if (part == "..") {
            return std::nullopt;
        }
        if (!part.empty() && part != ".") {
            parts.emplace_back(part);
        }
        start = end + 1;
    }
    return parts;
}

std::string join(const std::vector<std::string>& parts, std::size_t from) {
    std::string out;
    for (std::size_t i = from; i < parts.size(); ++i) {
        if (!out.empty()) {
            out += '/';
        }
        out += parts[i];
    }
    return out;
}

struct Resolved {
    std::shared_ptr<IDriver> driver;
    std::string path;  // relative to the driver
    Status status;
};

Resolved resolve(std::string_view path) {
    if (path.empty()) {
        return {nullptr, {}, Status::failure("empty path")};
    }
    if (path.front() != '/') {
        // Not a virtual path: the native file system takes it as it stands.
        static const auto native = std::make_shared<NativeDriver>("");
        return {native, std::string(path), {}};
    }
    auto parts = components(path);
    if (!parts) {
        return {
            nullptr, {}, Status::failure(fmt::format("'{}': '..' is not allowed in a virtual path", path))};
    }
    MountTable& t = table();
    std::shared_lock guard(t.lock);
    const Mount* best = nullptr;
    for (const Mount& m : t.mounts) {
        if (m.prefix.size() > parts->size() || (best && best->prefix.size() >= m.prefix.size())) {
            continue;
        }
        bool covers = true;
        for (std::size_t i = 0; i < m.prefix.size() && covers; ++i) {
            covers = m.prefix[i] == (*parts)[i];
        }
        if (covers) {
            best = &m;
        }
    }
    if (!best) {
        return {nullptr, {}, Status::failure(fmt::format("'{}': no file system is mounted there", path))};
    }
    return {best->driver, join(*parts, best->prefix.size()), {}};
}

}  // namespace

void mount(std::string_view prefix, std::shared_ptr<IDriver> driver) {
    auto parts = components(prefix);
    if (!parts || !driver) {
        return;
    }
    MountTable& t = table();
    std::unique_lock guard(t.lock);
    for (Mount& m : t.mounts) {
        if (m.prefix == *parts) {
            m.driver = std::move(driver);
            return;
        }
    }
    t.mounts.push_back({std::move(*parts), std::move(driver)});
}

void mountNative(std::string_view prefix, std::string_view nativeRoot) {
    std::string root(nativeRoot.empty() ? prefix : nativeRoot);
    mount(prefix, std::make_shared<NativeDriver>(std::move(root)));
}

bool unmount(std::string_view prefix) {
    auto parts = components(prefix);
    if (!parts) {
        return false;
    }
    MountTable& t = table();
    std::unique_lock guard(t.lock);
    for (auto it = t.mounts.begin(); it != t.mounts.end(); ++it) {
        if (it->prefix == *parts) {
            t.mounts.erase(it);
            return true;
        }
    }
    return false;
}

void unmountAll() {
    MountTable& t = table();
    std::unique_lock guard(t.lock);
    t.mounts.clear();
}

Status IDriver::writeFilePieces(const std::string& path, std::span<const Piece> pieces) {
    std::vector<std::uint8_t> whole;
    for (const Piece& piece : pieces) {
        whole.insert(whole.end(), piece.begin(), piece.end());
    }
    return writeFile(path, whole.data(), whole.size());
}

namespace {

// The driver and its path for a file to be written, or why there is none.
Resolved resolveForWrite(std::string_view path) {
    Resolved r = resolve(path);
    if (r.status && r.path.empty()) {
        r.status = Status::failure(fmt::format("'{}': a mount point is not a file", path));
    }
    return r;
}

}  // namespace

Status writeFile(std::string_view path, const void* data, std::size_t size) {
    Resolved r = resolveForWrite(path);
    return r.status ? r.driver->writeFile(r.path, data, size) : r.status;
}

Status writeFilePieces(std::string_view path, std::span<const Piece> pieces) {
    Resolved r = resolveForWrite(path);
    return r.status ? r.driver->writeFilePieces(r.path, pieces) : r.status;
}

Status readFile(std::string_view path, std::vector<std::uint8_t>& out) {
    Resolved r = resolve(path);
    if (!r.status) {
        return r.status;
    }
    return r.driver->readFile(r.path, out);
}

}  // namespace nqvfs
