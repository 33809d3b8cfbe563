#include "LYRVersion.h"

int LYRVersion() noexcept {
    return LYR_VERSION;
}

const char* LYRVersionText() noexcept {
    return LYR_VERSION_TEXT;
}
