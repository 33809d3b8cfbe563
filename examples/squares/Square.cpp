#include "IShape.h"
#include "LYRComponentModel.h"
#include "Narration.h"
#include "Tie.h"

namespace {

class Square final : public LYRSysTSBaseUnknown {
public:
    explicit Square(double side = 1) : LYRSysTSBaseUnknown(1), _side(side) {}

    static LYRSysTSMetaClass* MetaObject() {
        // A class that nobody makes by id needs none of its own: null has one made up.
        static LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
            "Square", ImplementationClass, nullptr, LYRSysTSBaseUnknown::MetaObject(), nullptr);
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

    double Side() const { return _side; }

private:
    const double _side;
    Lifetime _lifetime{"a Square"};
};

class SquareTie final : public Tie<IShape, Square> {
public:
    double Area() const override { return Impl().Side() * Impl().Side(); }
};

const LibraryLoaded loaded("libDrawingSquares");

}  // namespace

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIShapeSquare(LYRSysTSBaseUnknown* object,
                                                           unsigned char) {
    return MakeTie<SquareTie>(object);
}

/// Makes squares by name; `side` points at a double. What the client gets is an IUnknown*, with the
/// constructor's count.
extern "C" LYR_EXPORT void* fctLYRSysTSCreateSquare(void* side) {
    return static_cast<IUnknown*>(new Square(*static_cast<const double*>(side)));
}
