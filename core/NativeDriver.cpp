#include "core/NativeDriver.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>

#include <fmt/format.h>

namespace nqvfs {
namespace {

std::string describe(const std::string& path, const char* action, int error) {
    return fmt::format("{}: {}: {}", path, action, std::strerror(error));
}

// Closes a descriptor on every path out of a scope unless released.
struct FileDescriptor {
    int fd = -1;
    ~FileDescriptor() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    int release() {
        int f = fd;
        fd = -1;
        return f;
    }
};

bool writeAll(int fd, const std::uint8_t* data, std::size_t size) {
    while (size > 0) {
        ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

// Makes the rename itself durable. A failure here does not undo the write, so it is not reported.
void syncDirectory(const std::string& dir) {
    int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

}  // namespace

std::string NativeDriver::nativePath(const std::string& path) const {
    if (root_.empty()) {
        return path;
    }
    if (path.empty()) {
        return root_;
    }
    return root_.back() == '/' ? root_ + path : root_ + "/" + path;
}

Status NativeDriver::readFile(const std::string& path, std::vector<std::uint8_t>& out) {
    const std::string file = nativePath(path);
    FileDescriptor in{::open(file.c_str(), O_RDONLY | O_CLOEXEC)};
    if (in.fd < 0) {
        return Status::failure(describe(file, "can't open", errno));
    }
    struct stat st {};
    if (::fstat(in.fd, &st) != 0) {
        return Status::failure(describe(file, "can't read", errno));
    }
    if (S_ISDIR(st.st_mode)) {
        return Status::failure(describe(file, "can't read", EISDIR));
    }
    out.clear();
    try {
        if (S_ISREG(st.st_mode)) {
            out.reserve(static_cast<std::size_t>(st.st_size));
        }
        std::uint8_t chunk[65536];
        for (;;) {
            ssize_t n = ::read(in.fd, chunk, sizeof chunk);
            if (n < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return Status::failure(describe(file, "can't read", errno));
            }
            if (n == 0) {
                break;
            }
            out.insert(out.end(), chunk, chunk + n);
        }
    } catch (const std::bad_alloc&) {
        out.clear();
        return Status::failure(describe(file, "can't read", ENOMEM));
    }
    return {};
}

Status NativeDriver::writeFile(const std::string& path, const void* data, std::size_t size) {
    const Piece whole(static_cast<const std::uint8_t*>(data), size);
    return writeFilePieces(path, std::span(&whole, 1));
}

Status NativeDriver::writeFilePieces(const std::string& path, std::span<const Piece> pieces) {
    const std::string target = nativePath(path);
    const std::size_t slash = target.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : target.substr(0, slash);
    if (slash == target.size() - 1) {
        return Status::failure(fmt::format("{}: not a file name", target));
    }

    // The temporary file's name is short whatever the target's, so that a long target name
    // cannot push it over the file system's limit. O_EXCL makes it ours alone.
    static std::atomic<std::uint64_t> counter{0};
    std::string temp;
    FileDescriptor out;
    for (int attempt = 0; attempt < 100 && out.fd < 0; ++attempt) {
        temp = fmt::format("{}/.nqvfs-{}-{}.tmp", dir, ::getpid(), counter.fetch_add(1));
        out.fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (out.fd < 0 && errno != EEXIST) {
            return Status::failure(describe(target, "can't create a temporary file beside it", errno));
        }
    }
    if (out.fd < 0) {
        return Status::failure(describe(target, "can't create a temporary file beside it", EEXIST));
    }

    auto fail = [&](const char* action, int error) {
        ::close(out.release());
        ::unlink(temp.c_str());
        return Status::failure(describe(target, action, error));
    };
    // A replaced file keeps its permissions.
    struct stat previous {};
    if (::stat(target.c_str(), &previous) == 0 && S_ISREG(previous.st_mode)) {
        ::fchmod(out.fd, previous.st_mode & 07777);
    }
    for (const Piece& piece : pieces) {
        if (!writeAll(out.fd, piece.data(), piece.size())) {
            return fail("can't write", errno);
        }
    }
    if (::fsync(out.fd) != 0) {
        return fail("can't flush", errno);
    }
    if (::close(out.release()) != 0) {
        int error = errno;
        ::unlink(temp.c_str());
        return Status::failure(describe(target, "can't write", error));
    }
    if (::rename(temp.c_str(), target.c_str()) != 0) {
        int error = errno;
        ::unlink(temp.c_str());
        return Status::failure(describe(target, "can't replace", error));
    }
    syncDirectory(dir);
    return {};
}

}  // namespace nqvfs
