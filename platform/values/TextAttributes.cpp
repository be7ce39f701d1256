#include "platform/values/TextAttributes.h"

namespace platform {

double systemFontSize(ControlSize size) {
    switch (size) {
    case ControlSize::Regular:
        return 13;
    case ControlSize::Small:
        return 11;
    case ControlSize::Mini:
        return 9;
    }
    return 13;
}

} // namespace platform
