#include "Interfaces.h"

LYR_COMPONENT(Haiku, ITitled) {
    const char* Title() override { return "a haiku"; }
};
