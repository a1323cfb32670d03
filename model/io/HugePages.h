#pragma once
// Asks the system to back a large block with huge pages, so that its first touch costs one fault
// per 2 MiB rather than one per 4 KiB.

#include <cstddef>

namespace model {

// Only whole huge pages inside the block are advised. The advice is a hint: a refusal, or a
// system without it, changes nothing but the speed.
void adviseHugePages(void* data, std::size_t size);

}  // namespace model
