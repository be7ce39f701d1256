#pragma once

namespace platform::expat {

/// Installs the process's property list service. Call it before other threads use the service.
void install();

} // namespace platform::expat
