#include "host/BMMSplitFilename.h"

namespace host {

void BMMSplitFilename(const std::string& path, std::string* dir, std::string* file, std::string* ext) {
    std::size_t nameStart = path.find_last_of("/\\");
    nameStart = nameStart == std::string::npos ? 0 : nameStart + 1;
    bool drive = path.size() >= 2 && path[1] == ':' &&
                 ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
    if (nameStart == 0 && drive) {
        nameStart = 2;
    }
    std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot < nameStart) {
        dot = path.size();
    }
    if (dir) {
        *dir = path.substr(0, nameStart);
    }
    if (file) {
        *file = path.substr(nameStart, dot - nameStart);
    }
    if (ext) {
        *ext = path.substr(dot);
    }
}

}  // namespace host
