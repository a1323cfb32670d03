// The weld of face corners against the plain rule: each record joins the first earlier record
// that is the same bit for bit, and the survivors keep their order of first appearance.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "exporter/VertexRecord.h"

namespace {

TEST(WeldRecords, AgreesWithTheFirstEqualEarlierRecordOnManyNearDuplicates) {
    std::mt19937 random(7);
    // Few distinct values per field, so that equal records, records that differ in one field
    // only, -0.0 against 0.0 and NaNs all occur often; enough records that the table wraps.
    const float values[] = {0.0f, -0.0f, 1.0f, 0.5f, std::nanf("")};
    auto pick = [&] { return values[random() % 5]; };
    for (std::size_t count : {1u, 7u, 3000u}) {
        std::vector<exporter::VertexRecord> records(count);
        for (exporter::VertexRecord& r : records) {
            r.position = {pick(), pick(), 1.0f};
            r.normal[2] = pick();
            r.smoothingGroup = random() % 2;
            r.texCoords.resize(random() % 4);
            for (auto& uv : r.texCoords) {
                uv = {pick(), 0.25f};
            }
            r.boneIndices = random() % 2;
        }
        std::vector<std::uint32_t> indices(count * 2);
        for (std::uint32_t& index : indices) {
            index = static_cast<std::uint32_t>(random() % count);
        }

        // The plain rule, every record against every survivor before it.
        std::vector<std::uint32_t> firsts;
        std::vector<std::uint32_t> expectedRemap(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            std::size_t k = 0;
            while (k < firsts.size() && !exporter::sameBits(records[firsts[k]], records[i])) {
                ++k;
            }
            if (k == firsts.size()) {
                firsts.push_back(i);
            }
            expectedRemap[i] = static_cast<std::uint32_t>(k);
        }
        std::vector<std::uint32_t> expectedIndices = indices;
        for (std::uint32_t& index : expectedIndices) {
            index = expectedRemap[index];
        }
        const std::vector<exporter::VertexRecord> before = records;

        EXPECT_EQ(exporter::weldRecords(records, indices), expectedRemap);
        EXPECT_EQ(indices, expectedIndices);
        ASSERT_EQ(records.size(), firsts.size());
        for (std::size_t k = 0; k < firsts.size(); ++k) {
            EXPECT_TRUE(exporter::sameBits(records[k], before[firsts[k]]));
        }
    }
}

}  // namespace
