// The host's path splitter, as the export's default target name relies on it.

#include <gtest/gtest.h>

#include "host/BMMSplitFilename.h"

namespace {

TEST(BMMSplitFilename, DirectoryKeepsItsSeparatorFileLosesItsExtension) {
    struct Case {
        std::string path, dir, file, ext;
    };
    const Case cases[] = {
        {"/scenes/Ship.Hull.max", "/scenes/", "Ship.Hull", ".max"},
        {"C:\\scenes\\v1.2/ship", "C:\\scenes\\v1.2/", "ship", ""},
        {"D:ship.max", "D:", "ship", ".max"},
        {"", "", "", ""},
        {"ship.max", "", "ship", ".max"},
        {"/scenes/.max", "/scenes/", "", ".max"},
    };
    for (const Case& c : cases) {
        std::string dir, file, ext;
        host::BMMSplitFilename(c.path, &dir, &file, &ext);
        EXPECT_EQ(dir + "|" + file + "|" + ext, c.dir + "|" + c.file + "|" + c.ext) << c.path;
    }
    // Parts not asked for may be left out.
    std::string file;
    host::BMMSplitFilename("/a/b.c", nullptr, &file, nullptr);
    EXPECT_EQ(file, "b");
}

}  // namespace
