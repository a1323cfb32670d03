#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

#include "core/Vfs.h"

namespace fs = std::filesystem;

namespace {

// A fresh native directory per test, and a clean mount table before and after.
class Vfs : public ::testing::Test {
protected:
    void SetUp() override {
        nqvfs::unmountAll();
        std::string pattern = (fs::temp_directory_path() / "nqvfs-test-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override {
        nqvfs::unmountAll();
        fs::remove_all(dir);
    }

    static std::string content(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // Everything in the directory: a failed or finished write must leave no temporary behind.
    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir)) {
            names.push_back(e.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    nqvfs::Status write(const std::string& path, std::string_view bytes) {
        return nqvfs::writeFile(path, bytes.data(), bytes.size());
    }

    fs::path dir;
};

TEST_F(Vfs, AbsolutePathNeedsAMount) {
    const std::string target = (dir / "x.nqf").string();
    nqvfs::Status s = write(target, "abc");
    EXPECT_FALSE(s);
    EXPECT_NE(s.error.find("no file system is mounted"), std::string::npos) << s.error;
    EXPECT_FALSE(fs::exists(target));

    nqvfs::mountNative("/");
    EXPECT_TRUE(write(target, "abc")) << write(target, "abc").error;
    EXPECT_EQ(content(target), "abc");

    EXPECT_TRUE(nqvfs::unmount("/"));
    EXPECT_FALSE(nqvfs::unmount("/"));
    EXPECT_FALSE(write(target, "def"));
    EXPECT_EQ(content(target), "abc");
}

TEST_F(Vfs, MountedPrefixMapsToANativeDirectory) {
    nqvfs::mountNative("/models", dir.string());
    ASSERT_TRUE(write("/models/a.nqf", "one"));
    EXPECT_EQ(content(dir / "a.nqf"), "one");
    std::vector<std::uint8_t> back;
    ASSERT_TRUE(nqvfs::readFile("/models//./a.nqf", back));
    EXPECT_EQ(std::string(back.begin(), back.end()), "one");

    // A prefix covers whole components only, and ".." may not climb out of the mount.
    EXPECT_FALSE(write("/modelsx/a.nqf", "two"));
    EXPECT_FALSE(write("/models/../a.nqf", "two"));
    EXPECT_FALSE(write("/models", "two"));
    // The longest covering prefix wins.
    fs::create_directory(dir / "deep");
    nqvfs::mountNative("/models/sub", (dir / "deep").string());
    ASSERT_TRUE(write("/models/sub/b.nqf", "three"));
    EXPECT_TRUE(fs::exists(dir / "deep" / "b.nqf"));
    EXPECT_FALSE(fs::exists(dir / "sub"));
}

TEST_F(Vfs, ReplacesAtomicallyAndKeepsPermissions) {
    nqvfs::mountNative("/");
    const std::string target = (dir / "m.nqf").string();
    ASSERT_TRUE(write(target, "old content"));
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_TRUE(write(target, "new"));
    EXPECT_EQ(content(target), "new");
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(entries(), std::vector<std::string>{"m.nqf"});
    ASSERT_TRUE(write(target, ""));
    EXPECT_EQ(fs::file_size(target), 0u);
}

TEST_F(Vfs, FailuresLeaveThePreviousStateAndNoTemporary) {
    nqvfs::mountNative("/");
    // The target's directory is missing.
    nqvfs::Status s = write((dir / "missing" / "x.nqf").string(), "abc");
    EXPECT_FALSE(s);
    EXPECT_NE(s.error.find("No such file or directory"), std::string::npos) << s.error;

    // A directory stands in the target's place.
    fs::create_directories(dir / "taken" / "inside");
    s = write((dir / "taken").string(), "abc");
    EXPECT_FALSE(s);
    EXPECT_TRUE(fs::is_directory(dir / "taken" / "inside"));
    EXPECT_EQ(entries(), std::vector<std::string>{"taken"});

    // The write itself fails half-way (the file size limit stands in for a full disk): the old
    // file keeps its bytes.
    const std::string target = (dir / "keep.nqf").string();
    ASSERT_TRUE(write(target, "previous"));
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 16;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    s = write(target, std::string(4096, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(s);
    EXPECT_NE(s.error.find("can't write"), std::string::npos) << s.error;
    EXPECT_EQ(content(target), "previous");
    EXPECT_EQ(entries(), (std::vector<std::string>{"keep.nqf", "taken"}));
}

TEST_F(Vfs, ReadReportsMissingFilesAndDirectories) {
    nqvfs::mountNative("/");
    std::vector<std::uint8_t> out{1, 2, 3};
    nqvfs::Status s = nqvfs::readFile((dir / "none.nqf").string(), out);
    EXPECT_FALSE(s);
    EXPECT_NE(s.error.find("can't open"), std::string::npos) << s.error;
    s = nqvfs::readFile(dir.string(), out);
    EXPECT_FALSE(s);
    EXPECT_NE(s.error.find("Is a directory"), std::string::npos) << s.error;
    EXPECT_FALSE(nqvfs::readFile("", out));
}

// A driver that knows only whole-buffer writes: pieces reach it joined.
class RecordingDriver : public nqvfs::IDriver {
public:
    nqvfs::Status readFile(const std::string&, std::vector<std::uint8_t>&) override {
        return nqvfs::Status::failure("write only");
    }
    nqvfs::Status writeFile(const std::string& path, const void* data, std::size_t size) override {
        written[path].assign(static_cast<const char*>(data), size);
        return {};
    }
    std::map<std::string, std::string> written;
};

std::vector<nqvfs::Piece> piecesOf(const std::vector<std::string_view>& parts) {
    std::vector<nqvfs::Piece> pieces;
    for (std::string_view part : parts) {
        pieces.emplace_back(reinterpret_cast<const std::uint8_t*>(part.data()), part.size());
    }
    return pieces;
}

TEST_F(Vfs, PiecesAreWrittenOneAfterTheOther) {
    const std::vector<nqvfs::Piece> pieces = piecesOf({"NQF", "", std::string_view("\0\1", 2), "tail"});
    nqvfs::mountNative("/out", dir.string());
    ASSERT_TRUE(nqvfs::writeFilePieces("/out/p.nqf", pieces));
    EXPECT_EQ(content(dir / "p.nqf"), std::string("NQF\0\1tail", 9));
    EXPECT_EQ(entries(), std::vector<std::string>{"p.nqf"});

    auto recording = std::make_shared<RecordingDriver>();
    nqvfs::mount("/mem", recording);
    ASSERT_TRUE(nqvfs::writeFilePieces("/mem/a/p.nqf", pieces));
    EXPECT_EQ(recording->written["a/p.nqf"], std::string("NQF\0\1tail", 9));

    // The same failures as a whole-buffer write, and no file.
    EXPECT_FALSE(nqvfs::writeFilePieces("/elsewhere/p.nqf", pieces));
    EXPECT_FALSE(nqvfs::writeFilePieces("/out", pieces));
    EXPECT_FALSE(nqvfs::writeFilePieces("/out/missing/p.nqf", pieces));
    EXPECT_EQ(entries(), std::vector<std::string>{"p.nqf"});
}

TEST_F(Vfs, RelativePathsAreNative) {
    const fs::path saved = fs::current_path();
    fs::current_path(dir);
    nqvfs::Status s = write("rel.nqf", "r");
    fs::current_path(saved);
    ASSERT_TRUE(s) << s.error;
    EXPECT_EQ(content(dir / "rel.nqf"), "r");
}

}  // namespace
