#include "model/io/StringPool.h"

#include <cstring>

namespace model {

std::uint32_t StringPool::internOrdinal(std::string_view text) {
    auto found = ordinals_.find(text);
    if (found != ordinals_.end()) {
        return found->second;
    }

    const std::uint64_t need = text.size() + 1;
    bool fits = !pages_.empty() && pages_.back().bytes.size() - pages_.back().used >= need;
    if (!fits) {
        StringPage page;
        // A text longer than a page gets a page of exactly its size and its NUL.
        page.bytes.assign(need > pageSize_ ? need : pageSize_, '\0');
        pages_.push_back(std::move(page));
    }
    StringPage& page = pages_.back();
    char* stored = page.bytes.data() + page.used;
    if (!text.empty()) {
        std::memcpy(stored, text.data(), text.size());
    }
    stored[text.size()] = '\0';
    page.used += need;
    ++page.count;

    auto ordinal = static_cast<std::uint32_t>(index_.size());
    index_.push_back(stored);
    ordinals_.emplace(std::string_view(stored, text.size()), ordinal);
    return ordinal;
}

std::uint32_t StringPool::ordinal(std::string_view text) const {
    auto found = ordinals_.find(text);
    return found == ordinals_.end() ? 0xFFFFFFFFu : found->second;
}

std::vector<char> StringPool::flatten() const {
    std::vector<char> table;
    std::uint64_t total = 0;
    for (const StringPage& page : pages_) {
        total += page.used;
    }
    table.reserve(total);
    for (const StringPage& page : pages_) {
        table.insert(table.end(), page.bytes.begin(),
                     page.bytes.begin() + static_cast<std::ptrdiff_t>(page.used));
    }
    return table;
}

}  // namespace model
