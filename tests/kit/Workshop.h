#pragma once

#include <lyr/kit.h>

// The interfaces of the workshop: libraries of objects with every kind of implementation.

struct IShape : IUnknown {
    LYR_INTERFACE(IShape, "a1000000-0000-4000-8000-000000000001");
    virtual int Corners() = 0;
};
namespace workshop {
struct IPolygon : IShape {
    LYR_INTERFACE(IPolygon, "a1000000-0000-4000-8000-000000000002");
    virtual int Diagonals() = 0;
};
}  // namespace workshop
class IColor : public IUnknown {
    LYR_INTERFACE(IColor, "a1000000-0000-4000-8000-000000000003");
    virtual int Color() = 0;
    virtual void SetColor(int color) = 0;
};

// As others have it: written by hand, with a constant.
inline constexpr IID IID_INamed{0xa1000000, 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 4}};
class INamed : public IUnknown {
public:
    virtual const char* Name() = 0;

protected:
    ~INamed() = default;
};
LYR_EXISTING_INTERFACE(INamed, IID_INamed);
struct ITitled : INamed {
    LYR_INTERFACE(ITitled, "a1000000-0000-4000-8000-000000000005");
    virtual const char* Title() = 0;
};

struct ILayer : IUnknown {
    LYR_INTERFACE(ILayer, "a1000000-0000-4000-8000-000000000006");
    virtual int Layer() = 0;
    virtual void SetLayer(int layer) = 0;
};
struct IView : IUnknown {
    LYR_INTERFACE(IView, "a1000000-0000-4000-8000-000000000007");
    virtual int VisibleCorners() = 0;
};
/// Asked of an object that nobody answers it for.
struct IMissing : IUnknown {
    LYR_INTERFACE(IMissing, "a1000000-0000-4000-8000-000000000008");
};

/// How many objects of the workshop there are, and what their destructors have done.
struct ICounts : IUnknown {
    LYR_INTERFACE(ICounts, "a1000000-0000-4000-8000-000000000009");
    virtual int Living() = 0;
    virtual int Deleted() = 0;
};

inline constexpr CLSID kSquareId = LYR_ID("a2000000-0000-4000-8000-000000000001");

/// A base component, for classes of other libraries too.
LYR_DECLARE_COMPONENT(Shape, IColor) {
    explicit Shape(int color = 7);
    ~Shape() override;
    int Color() override;
    void SetColor(int color) override;

private:
    int _color;
};
