#include "ILayer.h"
#include <atomic>
LYR_KEPT_EXTENSION(Layer, (Circle), ILayer) {
    int Raise() override { return ++_layer; }
private:
    std::atomic<int> _layer{0};
};
