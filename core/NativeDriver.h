#pragma once
// The driver of the native file system: paths below a native root directory.

#include <string>

#include "core/Vfs.h"

namespace nqvfs {

class NativeDriver : public IDriver {
public:
    // An empty root takes paths as they stand (relative to the working directory or absolute).
    explicit NativeDriver(std::string root) : root_(std::move(root)) {}

    Status readFile(const std::string& path, std::vector<std::uint8_t>& out) override;
    // Writes to a temporary file in the target's directory, flushes it to the disk and renames it
    // over the target. On any failure the temporary file is removed and the target is untouched.
    Status writeFile(const std::string& path, const void* data, std::size_t size) override;
    // The same, with the pieces written one after the other into the temporary file.
    Status writeFilePieces(const std::string& path, std::span<const Piece> pieces) override;

private:
    std::string nativePath(const std::string& path) const;

    std::string root_;
};

}  // namespace nqvfs
