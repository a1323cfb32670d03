#pragma once
// The virtual file system: whole-file reads and writes by UTF-8 path, through mounted drivers.
//
// A path that begins with "/" is virtual: it reaches a file only through a mount whose prefix
// covers it (the longest such prefix wins), and fails at once otherwise. The host mounts the
// native file system explicitly at start, e.g. mountNative("/") for all of it or
// mountNative("/out", "/home/me/models") for one directory. Any other path (relative, or a drive
// path on systems that have them) goes to the native file system as it stands.
//
// A write is atomic: the file appears complete or not at all, and a failed write leaves the
// previous file as it was.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nqvfs {

// The outcome of a call: empty `error` means success, otherwise it says why the call failed.
struct Status {
    std::string error;

    bool ok() const { return error.empty(); }
    explicit operator bool() const { return ok(); }
    static Status failure(std::string reason) { return Status{std::move(reason)}; }
};

// One piece of a file that is written in pieces, one after the other.
using Piece = std::span<const std::uint8_t>;

// A file system behind a mount. Paths handed to a driver are relative to its mount point, with
// "/" separators and no "." or ".." components.
class IDriver {
public:
    virtual ~IDriver() = default;
    virtual Status readFile(const std::string& path, std::vector<std::uint8_t>& out) = 0;
    virtual Status writeFile(const std::string& path, const void* data, std::size_t size) = 0;
    // Writes the pieces one after the other as one file, as atomically as writeFile. By default
    // they are joined in memory and handed to writeFile.
    virtual Status writeFilePieces(const std::string& path, std::span<const Piece> pieces);
};

// Mounts a driver at a virtual prefix such as "/" or "/models". Mounting at a prefix that is
// already mounted replaces that mount.
void mount(std::string_view prefix, std::shared_ptr<IDriver> driver);
// Mounts the native directory `nativeRoot` at `prefix`; without `nativeRoot` the prefix names
// the native directory itself, so mountNative("/") makes every native path reachable.
void mountNative(std::string_view prefix, std::string_view nativeRoot = {});
// Removes the mount at exactly this prefix; returns whether there was one.
bool unmount(std::string_view prefix);
void unmountAll();

// Writes the whole buffer as the file at `path`, replacing any previous file atomically.
Status writeFile(std::string_view path, const void* data, std::size_t size);
// Writes the pieces one after the other as the file at `path`, like writeFile; a large file made
// of a head and a body need not be joined in memory first.
Status writeFilePieces(std::string_view path, std::span<const Piece> pieces);
// Reads the whole file at `path` into `out` (replacing its content).
Status readFile(std::string_view path, std::vector<std::uint8_t>& out);

}  // namespace nqvfs
