#include <gtest/gtest.h>

#include <stdexcept>

#include "ByteSink.h"
#include "core/ExtException.h"
#include "model/Indices.h"
#include "model/io/IBinaryFileR.h"

namespace {

using namespace model;
using testing_support::ByteSink;
using testing_support::Expect;

Indices roundTrip(const testing_support::Bytes& bytes) {
    io::MemBinaryFileR reader(bytes);
    Indices back(0, {1, 2, 3});
    back.read(reader);
    EXPECT_EQ(reader.remaining(), 0u);
    return back;
}

// The width tag follows the largest index; an empty list (a triangle list by default) has tag 0.
TEST(Indices, WidthFollowsTheLargestIndex) {
    const std::pair<Indices, Expect> cases[] = {
        {Indices(), Expect().u8(0).u32(0).u32(5)},
        {Indices(kLineList, {0, 255}), Expect().u8(0).u32(2).u32(kLineList).u8(0).u8(255)},
        {Indices(kLineList, {0, 256}), Expect().u8(1).u32(2).u32(kLineList).u16(0).u16(256)},
        {Indices(kLineList, {0, 65535}), Expect().u8(1).u32(2).u32(kLineList).u16(0).u16(65535)},
        {Indices(kLineList, {0, 65536}), Expect().u8(2).u32(2).u32(kLineList).u32(0).u32(65536)},
    };
    for (const auto& [in, expected] : cases) {
        SCOPED_TRACE(in.indices.empty() ? 0 : in.indices.back());
        ByteSink sink;
        in.write(sink);
        EXPECT_EQ(sink.bytes, expected.body);
        EXPECT_TRUE(roundTrip(sink.bytes) == in);
    }
}

TEST(Indices, ReadFailures) {
    auto readError = [](const testing_support::Bytes& bytes) -> std::string {
        io::MemBinaryFileR reader(bytes);
        Indices in;
        try {
            in.read(reader);
        } catch (const std::exception& e) {
            return e.what();
        }
        return "no failure";
    };
    EXPECT_EQ(readError(Expect().u8(2).u32(0).u32(5).body), "Call front() on empty vector.");
    EXPECT_EQ(readError(Expect().u8(3).u32(0).u32(5).body), "Unknown index width tag 3.");
    EXPECT_EQ(readError(Expect().u8(1).u32(0x40000000).u32(5).u16(1).body),
              "Index list of 1073741824 entries runs past the end of buffer.");
    EXPECT_EQ(readError(Expect().u8(0).u32(1).body), "Unexpected end of buffer: 4 bytes needed at offset 5.");
}

TEST(Indices, CheckedAccessAndPrimitiveCounts) {
    Indices in(kTriangleList, {0, 1, 2, 3, 4, 5, 6});
    EXPECT_EQ(in.at(6), 6u);
    try {
        in.at(7);
        FAIL() << "read past the end";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "invalid vector subscript");
    }
    const std::pair<std::uint32_t, std::size_t> counts[] = {{0, 7}, {1, 3}, {2, 6}, {5, 2},
                                                            {6, 5}, {7, 5}, {3, 0}, {8, 0}};
    for (auto [kind, count] : counts) {
        in.primitive = kind;
        EXPECT_EQ(in.primitiveCount(), count) << "primitive " << kind;
    }
    EXPECT_EQ(Indices(kLineStrip, {}).primitiveCount(), 0u);
    EXPECT_EQ(Indices(kTriangleStrip, {1}).primitiveCount(), 0u);
}

}  // namespace
