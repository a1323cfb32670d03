#include <gtest/gtest.h>

#include "scene/StatisticsJson.h"

namespace {

TEST(StatisticsJson, NestingFollowsTheIndentation) {
    EXPECT_EQ(scene::statisticsTextToJson("nTransformNodes: 3\nnRenderNodes: 2\n  model::RenderNode, 0: 2\n"
                                          "nFaces: 12\n"),
              "[{\"name\":\"nTransformNodes\",\"value\":3,\"children\":[]},"
              "{\"name\":\"nRenderNodes\",\"value\":2,\"children\":["
              "{\"name\":\"model::RenderNode, 0\",\"value\":2,\"children\":[]}]},"
              "{\"name\":\"nFaces\",\"value\":12,\"children\":[]}]");
}

TEST(StatisticsJson, OddLinesStayReadable) {
    EXPECT_EQ(scene::statisticsTextToJson(""), "[]");
    // Too deep an indent hangs under the entry before; a value that is not a number stays text;
    // quotes and control characters are escaped.
    EXPECT_EQ(scene::statisticsTextToJson("      a: 01\n\"q\"\t: x\n\n"),
              "[{\"name\":\"a\",\"value\":\"01\",\"children\":[]},"
              "{\"name\":\"\\\"q\\\"\\u0009\",\"value\":\"x\",\"children\":[]}]");
    EXPECT_EQ(scene::statisticsTextToJson("a: 1\n    b: 2\n"),
              "[{\"name\":\"a\",\"value\":1,\"children\":[{\"name\":\"b\",\"value\":2,\"children\":[]}]}]");
}

}  // namespace
