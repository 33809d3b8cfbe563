#include "ILayer.h"
#include "LYRComponentModel.h"
#include "Narration.h"
#include "Tie.h"

#include <atomic>

namespace {

/// Gives circles and squares a layer. It is a kept extension: each shape has one instance, made at
/// the first request and deleted with the shape.
class ShapeLayer final : public LYRSysTSBaseUnknown {
public:
    ShapeLayer() : LYRSysTSBaseUnknown(1) {}

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = [] {
            LYRSysTSMetaClass* made = LYRSysTSFindOrCreateMetaObject(
                "ShapeLayer", KeptExtension, nullptr, LYRSysTSBaseUnknown::MetaObject(), "Circle");
            LYRSysTSMetaClassExt::AddExtendedComponent(made, "Square");
            return made;
        }();
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    std::atomic<int> layer{0};

private:
    Lifetime _lifetime{"a ShapeLayer"};
};

class LayerTie final : public Tie<ILayer, ShapeLayer> {
public:
    int Layer() const override { return Impl().layer; }
    void SetLayer(int layer) override { Impl().layer = layer; }
};

const LibraryLoaded loaded("libDrawingAnnotations");
// The search expects an extension's meta-object as soon as its library is loaded.
[[maybe_unused]] const LYRSysTSMetaClass* const describedAtLoad = ShapeLayer::MetaObject();

}  // namespace

/// Here the name ends in the extension, not in the class that it extends.
extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateILayerShapeLayer(LYRSysTSBaseUnknown* object,
                                                               unsigned char) {
    return MakeTie<LayerTie>(object);
}
