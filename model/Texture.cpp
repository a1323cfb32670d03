#include "model/Texture.h"

#include "model/PropertyValue.h"

namespace model {

bool Texture::equals(const Texture& other) const {
    if (name != other.name || wrapU != other.wrapU || wrapV != other.wrapV || filter != other.filter ||
        mipFilter != other.mipFilter || texCoordChannel != other.texCoordChannel) {
        return false;
    }
    for (int i = 0; i < 16; ++i) {
        if (!nearlyEqual(matrix[i], other.matrix[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace model
