#pragma once
// A handler of one kind of user-text entry. The parser offers each entry (a key and its list of
// texts, the first of which names the kind) to the handlers in turn; the first that accepts it
// processes it.

#include <string>
#include <vector>

#include "core/Ptr.h"
#include "core/Shared.h"

namespace lu {

using Values = std::vector<std::string>;

class FuncHandler : public nq::Shared {
public:
    ~FuncHandler() override = default;
    virtual bool accepts(const std::string& name, const Values& values) = 0;
    virtual void process(const std::string& name, const Values& values) = 0;
};

using FuncHandlerPtr = nq::Ptr<FuncHandler>;
using FuncHandlers = std::vector<FuncHandlerPtr>;

}  // namespace lu
