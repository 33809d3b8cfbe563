#include <LYRComponentModel.h>

namespace {

constexpr IID kIPointView{
    0x3F2A9C10, 0x5B7E, 0x4D21, {0x9A, 0x0C, 0x1E, 0x2F, 0x3A, 0x4B, 0x5C, 0x6E}};

class Point : public LYRSysTSBaseUnknown {
public:
    Point() : LYRSysTSBaseUnknown(1) {}
    LYRSysTSMetaClass* GetMetaObject() const override {
        return LYRSysTSFindOrCreateMetaObject("Point", ImplementationClass, nullptr,
                                              LYRSysTSBaseUnknown::MetaObject(), nullptr);
    }
};

}  // namespace

int main() {
    IUnknown* point = new Point;
    void* view = nullptr;  // the point itself
    const bool answered = point->QueryInterface(kIPointView, &view) == S_OK && view == point;
    return answered && point->Release() == 1 && point->Release() == 0 ? 0 : 1;
}
