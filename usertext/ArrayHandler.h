#pragma once
// Named lists of numbers from user text: "array".

#include <string>
#include <unordered_map>
#include <vector>

#include "core/Fnv1a.h"
#include "usertext/FuncHandler.h"
#include "usertext/HandlerNames.h"

namespace lu {

using FloatArrays = std::unordered_map<std::string, std::vector<float>, nq::Fnv1aHash, std::equal_to<>>;

class ArrayHandler : public FuncHandler {
public:
    static const HandlerNames& names();

    explicit ArrayHandler(FloatArrays& destination) : destination_(destination) {}

    bool accepts(const std::string& name, const Values& values) override;
    // Sets the list of the name to the numbers, replacing an earlier list of the same name. Fewer
    // than two values fail with "Wrong arguments number in 'array'.".
    void process(const std::string& name, const Values& values) override;

private:
    FloatArrays& destination_;
};

}  // namespace lu
