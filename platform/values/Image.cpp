#include "platform/values/Image.h"

namespace platform {

Image::~Image() = default;

} // namespace platform
