// Whatever the bytes, the reader ends in a document or a ReadError: never a crash, never a read
// past the buffer (the sanitizer build runs these too), never another exception.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

#include "NqfSample.h"
#include "model/io/NqfReader.h"

using namespace model::io;

namespace {

enum class Outcome { Read, Fault };

Outcome readCopy(const std::vector<std::uint8_t>& bytes) {
    // An exact-size heap copy, so that any read past the end lands outside the allocation.
    std::unique_ptr<std::uint8_t[]> copy(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    try {
        readNqf({copy.get(), bytes.size()});
        return Outcome::Read;
    } catch (const ReadError&) {
        return Outcome::Fault;
    }
}

TEST(NqfReaderRobustness, EveryTruncationIsAFault) {
    const std::vector<std::uint8_t> file = nqftest::sampleFile().file();
    ASSERT_EQ(readCopy(file), Outcome::Read);
    for (std::size_t n = 0; n < file.size(); ++n) {
        const std::vector<std::uint8_t> cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(n));
        ASSERT_EQ(readCopy(cut), Outcome::Fault) << "length " << n;
    }
}

TEST(NqfReaderRobustness, RandomByteChangesEndInAReadOrAFault) {
    const std::vector<std::uint8_t> file = nqftest::sampleFile().file();
    std::mt19937 random(20240611);
    std::uniform_int_distribution<std::size_t> position(0, file.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255), changes(1, 4);
    int faults = 0;
    for (int trial = 0; trial < 4000; ++trial) {
        std::vector<std::uint8_t> bytes = file;
        for (int k = changes(random); k > 0; --k) {
            // Half the changes write a large byte, which turns counts into huge ones.
            bytes[position(random)] = static_cast<std::uint8_t>(trial % 2 ? 0xFF : byte(random));
        }
        faults += readCopy(bytes) == Outcome::Fault;
    }
    // Nearly every change breaks some check; a few land in floats and stay valid.
    EXPECT_GT(faults, 2000);
}

// The fuzzer starts from a copy of the sample file; a change to the sample must reach it.
TEST(NqfReaderRobustness, FuzzSeedIsTheSampleFile) {
    std::ifstream in(std::string(NQ_SOURCE_DIR) + "/fuzz/corpus/nqf_reader/sample.nqf", std::ios::binary);
    const std::vector<std::uint8_t> seed{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(seed, nqftest::sampleFile().file())
        << "write the bytes of nqftest::sampleFile() to fuzz/corpus/nqf_reader/sample.nqf";
}

}  // namespace
