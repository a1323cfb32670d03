// The registry of the running host: one pointer, set by the host at start.

#include "host/Interface.h"

namespace host {
namespace {

Interface* runningInterface = nullptr;

}  // namespace

Interface* GetCOREInterface() {
    return runningInterface;
}

void SetCOREInterface(Interface* ip) {
    runningInterface = ip;
}

int GetTicksPerFrame() {
    Interface* ip = GetCOREInterface();
    return ip ? ip->GetTicksPerFrame() : 160;
}

}  // namespace host
