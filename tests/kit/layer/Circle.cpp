#include "IShape.h"
LYR_COMPONENT(Circle, IShape) {
    double Area() override { return 3.25; }
};
