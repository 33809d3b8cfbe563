#include "IShape.h"
#include "IView.h"
#include "LYRComponentModel.h"
#include "Narration.h"
#include "Ref.h"
#include "Tie.h"

namespace {

/// Gives circles views. It is a transient extension: each request has a new instance, which dies
/// with the requester's last reference.
class ShapeView final : public LYRSysTSBaseUnknown {
public:
    ShapeView() : LYRSysTSBaseUnknown(1) {}

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
            "ShapeView", TransientExtension, nullptr, LYRSysTSBaseUnknown::MetaObject(), "Circle");
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    void Zoom(double factor) { _factor = factor; }

    double VisibleArea() {
        // What an extension is asked for, the object that it extends answers.
        const Ref<IShape> shape = Query<IShape>(this, IID_IShape);
        return shape ? shape->Area() * _factor * _factor : 0;
    }

private:
    double _factor = 1;
    Lifetime _lifetime{"a ShapeView"};
};

class ViewTie final : public Tie<IView, ShapeView> {
public:
    void Zoom(double factor) override { Impl().Zoom(factor); }
    double VisibleArea() const override { return Impl().VisibleArea(); }
};

[[maybe_unused]] const LYRSysTSMetaClass* const describedAtLoad = ShapeView::MetaObject();

}  // namespace

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIViewShapeView(LYRSysTSBaseUnknown* object,
                                                             unsigned char) {
    return MakeTie<ViewTie>(object);
}
