// RootNode::save lives with the writer, so that the model library itself knows no file format.

#include <fmt/format.h>

#include "core/ExtException.h"
#include "core/Vfs.h"
#include "model/RootNode.h"
#include "model/io/ClassWriter10.h"

namespace model {

void RootNode::save(const std::string& path, std::uint16_t version) {
    std::unique_ptr<IClassWriter> writer = createClassWriter(version);
    if (!writer) {
        throw nq::ExtException(fmt::format("Unsupported version {}", version));
    }
    // The pieces go to the file one after the other, so the file is never joined in memory.
    const FilePieces file = writer->savePieces(*this);
    if (!nqvfs::writeFilePieces(path, file.pieces)) {
        throw nq::ExtException("Can't write to file " + path);
    }
}

}  // namespace model
