// libFuzzer target of the .nqf reader: any bytes must end in a document or a ReadError; a crash,
// a sanitizer report, a hang or a huge allocation is a fault. A valid document also goes through
// the JSON dump and the summary. Built and run by scripts/fuzz.sh. The seed is the hand-built file
// with a record of every class from the reader's tests (a test keeps the two equal).
//
// fuzz-sources: model/io/Nqf*.cpp model/io/ReadError.cpp model/io/JsonWriter.cpp core/Utf8.cpp
// fuzz-packages: fmt
// fuzz-seeds: fuzz/corpus/nqf_reader

#include <cstddef>
#include <cstdint>

#include "model/io/NqfJson.h"
#include "model/io/NqfReader.h"
#include "model/io/NqfSummary.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const model::io::NqfDocument document = model::io::readNqf({data, size});
        (void)model::io::toJson(document);
        (void)model::io::summary(document);
    } catch (const model::io::ReadError&) {
    }
    return 0;
}
