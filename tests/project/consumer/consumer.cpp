#include <LYRComponentModel.h>

namespace {

constexpr CLSID kPoint{
    0x8B1C2D3E, 0x4F50, 0x4617, {0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7, 0xE8, 0xF9}};
constexpr IID kIPointView{
    0x3F2A9C10, 0x5B7E, 0x4D21, {0x9A, 0x0C, 0x1E, 0x2F, 0x3A, 0x4B, 0x5C, 0x6E}};

class Point : public LYRSysTSBaseUnknown {
public:
    Point() : LYRSysTSBaseUnknown(1) {}
    LYRSysTSMetaClass* GetMetaObject() const override {
        return LYRSysTSFindOrCreateMetaObject("Point", ImplementationClass, &kPoint,
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
