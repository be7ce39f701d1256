#include "platform/base/Watch.h"

namespace platform {

Watch::~Watch() = default;

} // namespace platform
