#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "model/io/JsonWriter.h"

using model::io::JsonWriter;

namespace {

TEST(JsonWriter, LayoutAndEscaping) {
    std::string out;
    JsonWriter w(out);
    w.beginObject();
    w.key("text");
    w.value("a\"b\\c\n\x01\x7f é");
    w.key("empty");
    w.beginArray();
    w.endArray();
    w.key("none");
    w.beginObject();
    w.endObject();
    w.key("list");
    w.beginArray();
    w.value(true);
    w.null();
    w.array(std::vector<std::uint32_t>{1, 4294967295u});
    w.endArray();
    w.endObject();
    EXPECT_EQ(out,
              "{\n"
              "  \"text\": \"a\\\"b\\\\c\\n\\u0001\\u007f é\",\n"
              "  \"empty\": [],\n"
              "  \"none\": {},\n"
              "  \"list\": [\n"
              "    true,\n"
              "    null,\n"
              "    [1, 4294967295]\n"
              "  ]\n"
              "}");
}

// Every float and double comes back bit for bit from its text; JSON has no NaN or infinity, so
// those become strings.
TEST(JsonWriter, NumbersRoundTrip) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const float f = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        const double d = std::bit_cast<double>(random());
        std::string a, b;
        JsonWriter(a).value(f);
        JsonWriter(b).value(d);
        if (std::isnan(f)) {
            EXPECT_EQ(a, "\"nan\"");
        } else if (!std::isinf(f)) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(std::strtof(a.c_str(), nullptr)),
                      std::bit_cast<std::uint32_t>(f))
                << a;
        }
        if (!std::isnan(d) && !std::isinf(d)) {
            ASSERT_EQ(std::bit_cast<std::uint64_t>(std::strtod(b.c_str(), nullptr)),
                      std::bit_cast<std::uint64_t>(d))
                << b;
        }
    }
    std::string inf;
    JsonWriter w(inf);
    w.beginArray(true);
    w.value(-std::numeric_limits<double>::infinity());
    w.value(std::numeric_limits<float>::infinity());
    w.value(0.1f);
    w.endArray();
    EXPECT_EQ(inf, "[\"-inf\", \"inf\", 0.1]");
}

}  // namespace
