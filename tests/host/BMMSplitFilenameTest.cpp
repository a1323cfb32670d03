// The host's path splitter, as the export's default target name relies on it.

#include <gtest/gtest.h>

#include "host/BMMSplitFilename.h"

namespace {

struct Parts {
    std::string dir, file, ext;
};

Parts split(const std::string& path) {
    Parts p;
    host::BMMSplitFilename(path, &p.dir, &p.file, &p.ext);
    return p;
}

TEST(BMMSplitFilename, DirectoryKeepsItsSeparatorFileLosesItsExtension) {
    Parts p = split("/scenes/Ship.Hull.max");
    EXPECT_EQ(p.dir, "/scenes/");
    EXPECT_EQ(p.file, "Ship.Hull");
    EXPECT_EQ(p.ext, ".max");

    p = split("C:\\scenes\\v1.2/ship");
    EXPECT_EQ(p.dir, "C:\\scenes\\v1.2/");
    EXPECT_EQ(p.file, "ship");
    EXPECT_EQ(p.ext, "");

    p = split("D:ship.max");
    EXPECT_EQ(p.dir, "D:");
    EXPECT_EQ(p.file, "ship");
}

TEST(BMMSplitFilename, EmptyAndBarePaths) {
    Parts p = split("");
    EXPECT_EQ(p.dir + p.file + p.ext, "");
    p = split("ship.max");
    EXPECT_EQ(p.dir, "");
    EXPECT_EQ(p.file, "ship");
    p = split("/scenes/.max");
    EXPECT_EQ(p.file, "");
    EXPECT_EQ(p.ext, ".max");
    std::string file;
    host::BMMSplitFilename("/a/b.c", nullptr, &file, nullptr);
    EXPECT_EQ(file, "b");
}

}  // namespace
