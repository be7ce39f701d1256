#pragma once

#include "testing/RecordingLog.h"

namespace test {
using halvextest::RecordingLog;
} // namespace test
