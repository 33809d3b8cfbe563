#include "LYRComponentModel.h"

int main() {
    return LYRSysTSCreateExternalObject("Lamp", nullptr, nullptr) != nullptr ? 0 : 1;
}
