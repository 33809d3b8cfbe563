#include "ICircle.h"
#include "IColor.h"
#include "LYRComponentModel.h"
#include "Narration.h"
#include "Ref.h"
#include "Tie.h"

#include <atomic>

namespace {

/// The component. Nobody outside this file knows the class: the application sees its interfaces,
/// and the component model its name, its id and the entry points below.
class Circle final : public LYRSysTSBaseUnknown, public IColor {
public:
    explicit Circle(double radius = 1) : LYRSysTSBaseUnknown(1), _radius(radius) {}

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta =
            LYRSysTSFindOrCreateMetaObject("Circle", ImplementationClass, &CLSID_Circle,
                                           LYRSysTSBaseUnknown::MetaObject(), nullptr);
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    // IColor is a BOA: the circle itself is handed out, so IColor counts and asks as the circle.
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return LYRSysTSBaseUnknown::QueryInterface(iid, out);
    }
    std::uint32_t AddRef() override { return LYRSysTSBaseUnknown::AddRef(); }
    std::uint32_t Release() override { return LYRSysTSBaseUnknown::Release(); }

    std::uint32_t Color() const override { return _color; }
    void SetColor(std::uint32_t color) override { _color = color; }

    // What the TIE below delegates to.
    double Radius() const { return _radius; }
    void SetRadius(double radius) { _radius = radius; }

private:
    // The object's lock guards its count and its extensions, not this: it is safe by itself.
    std::atomic<double> _radius;
    std::atomic<std::uint32_t> _color{0};
    Lifetime _lifetime{"a Circle"};
};

class CircleTie final : public Tie<ICircle, Circle> {
public:
    double Area() const override {
        const double radius = Radius();
        return 3.14159265 * radius * radius;
    }
    double Radius() const override { return Impl().Radius(); }
    void SetRadius(double radius) override { Impl().SetRadius(radius); }
};

/// Tells that ICircle derives from IShape: a dictionary line with ITFLEAF ICircle, which lets
/// ICircle's TIE answer for IShape, counts only when the meta-objects of the two say so.
LYRSysTSMetaClass* DescribeICircle() {
    LYRSysTSMetaClass* shape =
        LYRSysTSFindOrCreateMetaObject("IShape", PlainClass, &IID_IShape, nullptr, nullptr);
    return LYRSysTSFindOrCreateMetaObject("ICircle", PlainClass, &IID_ICircle, shape, nullptr);
}

/// Makes circles by name; `radius` points at a double. What the client gets is an IUnknown*, with
/// the constructor's count.
void* CreateCircle(void* radius) {
    LYRSysTSBaseUnknown* circle = new Circle(*static_cast<const double*>(radius));
    return static_cast<IUnknown*>(circle);
}

const LibraryLoaded loaded("libDrawingShapes");
[[maybe_unused]] const LYRSysTSMetaClass* const describedAtLoad = DescribeICircle();
// The dictionary holds every function as an interface factory and calls this one in its own type.
const LYRSysTSFillDictionary registeredAtLoad(
    "Circle", "CreateInterface",
    reinterpret_cast<LYRSysTSInterfaceFactory>(reinterpret_cast<void (*)()>(CreateCircle)));

}  // namespace

/// Found by its name: "LYRSysTSCreate", the interface, the class.
extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateICircleCircle(LYRSysTSBaseUnknown* object,
                                                            unsigned char) {
    return MakeTie<CircleTie>(object);
}

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIColorCircle(LYRSysTSBaseUnknown* object,
                                                           unsigned char) {
    // Only an extension needs a creation function: the implementation is `object` itself.
    LYRSysTSBaseUnknown* circle =
        LYRSysTSBOAInternal::CreateBOA(object, Circle::MetaObject(), nullptr);
    // A Circle contains two IUnknown, its own and IColor's; the client must get IColor's.
    IColor* color = static_cast<Circle*>(circle);
    return color;
}

/// Makes the objects of this library that are asked for by class id.
extern "C" LYR_EXPORT HRESULT LYRSysTSDllGetClassObject(const GUID& clsid, const GUID& iid,
                                                        void** out) {
    if (out != nullptr) *out = nullptr;
    if (clsid != CLSID_Circle) return E_FAIL;
    // The constructor's count goes with this Ref; the client's comes from QueryInterface.
    const Ref<LYRSysTSBaseUnknown> circle(new Circle);
    return circle->QueryInterface(iid, out);
}
