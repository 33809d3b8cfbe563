#include "ILayer.h"
#include "IShape.h"
#include <cstdio>
int main() {
    const auto circle = lyr::Create<IShape>("Circle");
    circle.As<ILayer>()->Raise();
    std::printf("area %g, layer %d\n", circle->Area(), circle.As<ILayer>()->Raise());
}
