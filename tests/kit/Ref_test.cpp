#include "TestSupport.h"
#include "Workshop.h"

#include <set>
#include <unordered_set>
#include <utility>

// 32 interfaces: more than anybody lists.
#define LYR_FOR_EIGHT(DO, n) DO(n##0) DO(n##1) DO(n##2) DO(n##3) DO(n##4) DO(n##5) DO(n##6) DO(n##7)
#define LYR_FOR_EACH(DO) \
    LYR_FOR_EIGHT(DO, 1) LYR_FOR_EIGHT(DO, 2) LYR_FOR_EIGHT(DO, 3) LYR_FOR_EIGHT(DO, 4)
#define LYR_INTERFACE_NUMBER(n)                                       \
    struct I##n : IUnknown {                                          \
        LYR_INTERFACE(I##n, "b0000000-0000-4000-8000-0000000000" #n); \
        virtual int Number##n() = 0;                                  \
    };
LYR_FOR_EACH(LYR_INTERFACE_NUMBER)

// What the dictionary does not know, and lyr::Make makes.
LYR_COMPONENT(TestShape, lyr::OneThread, workshop::IPolygon, IColor) {
    explicit TestShape(int corners = 3) : _corners(corners) {
        ++living;
    }
    ~TestShape() override {
        { const lyr::Ref<IColor> self = lyr::Share(this); }
        --living;
    }
    int Corners() override {
        return _corners;
    }
    int Diagonals() override {
        return 0;
    }
    int Color() override {
        return 1;
    }
    void SetColor(int) override {}

    static inline int living = 0;
    const int _corners;
};

LYR_COMPONENT(Many, lyr::Inner, I10, I11, I12, I13, I14, I15, I16, I17, I20, I21, I22, I23, I24,
              I25, I26, I27, I30, I31, I32, I33, I34, I35, I36, I37, I40, I41, I42, I43, I44, I45,
              I46, I47) {
#define LYR_NUMBER(n)          \
    int Number##n() override { \
        return n;              \
    }
    LYR_FOR_EACH(LYR_NUMBER)
};

// Compares itself with others that are being deleted.
LYR_COMPONENT(Dying, lyr::Inner, IColor) {
    ~Dying() override {
        const lyr::Ref<IColor> self = lyr::Share(this);
        itself += SameObject(self, self) ? 1 : 0;
        if (_outer != nullptr) same += SameObject(self, lyr::Share(_outer)) ? 1 : 0;
        if (_next != nullptr) _next->_outer = this;
        _next = nullptr;
    }
    int Color() override {
        return 0;
    }
    void SetColor(int) override {}

    static inline int same = 0;
    static inline int itself = 0;
    lyr::Ref<Dying> _next;
    Dying* _outer = nullptr;
};

// An interface without the kit over one of the kit's over one without; its chain is found.
struct INotable : ITitled {
    virtual int Notes() = 0;

protected:
    ~INotable() = default;
};
inline constexpr IID IID_INotable = LYR_ID("a1000000-0000-4000-8000-00000000000a");
LYR_EXISTING_INTERFACE(INotable, IID_INotable);
struct IMoreNotable : INotable {
    LYR_INTERFACE(IMoreNotable, "a1000000-0000-4000-8000-00000000000B");
};
static_assert(std::is_same_v<lyr::detail::Chain<IMoreNotable>::Type,
                             lyr::detail::List<IMoreNotable, INotable, ITitled, INamed>>);
static_assert(lyr::IdOf<IMoreNotable>().Data4[7] == 11 && lyr::IdOf<INotable>().Data4[7] == 10);

namespace {

std::uint32_t CountOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

TEST(Ref, CountsOncePerRefAndDestroysOnce) {
    lyr::Ref<TestShape> made = lyr::Make<TestShape>(5);
    {
        const lyr::Ref<IShape> shape = made;
        const lyr::Ref<workshop::IPolygon> polygon = made;
        const lyr::Ref<IShape> upwards = polygon;
        EXPECT_EQ(CountOf(shape.Get()), 4U);
        EXPECT_EQ(upwards->Corners(), 5);
        EXPECT_EQ(shape, upwards);
    }
    lyr::Ref<IColor> color = std::move(made);
    EXPECT_EQ(made, nullptr);  // NOLINT(bugprone-use-after-move): what it holds then
    lyr::Ref<IColor>& same = color;
    color = same;
    color = std::move(same);
    EXPECT_EQ(CountOf(color.Get()), 1U);
    color = lyr::Ref<IColor>(color);
    EXPECT_EQ(TestShape::living, 1);
    color = nullptr;
    EXPECT_EQ(TestShape::living, 0);
}

TEST(Ref, GivesOutAndTakesOverWithoutCounting) {
    lyr::Ref<IColor> color = lyr::Make<TestShape>();
    IColor* const raw = color.Detach();
    EXPECT_EQ(color, nullptr);
    EXPECT_EQ(CountOf(raw), 1U);
    const auto shared = lyr::Share(raw);
    EXPECT_EQ(CountOf(raw), 2U);
    color = lyr::Take(raw);
    EXPECT_EQ(CountOf(raw), 2U);
    // What is filled gives back what it held.
    lyr::Ref<IUnknown> unknown = lyr::Make<TestShape>().As<IUnknown>();
    EXPECT_EQ(raw->QueryInterface(lyr::IdOf<IUnknown>(), unknown.Fill()), S_OK);
    EXPECT_EQ(TestShape::living, 1);
    EXPECT_TRUE(SameObject(unknown, color));
    EXPECT_EQ(raw->QueryInterface(IID_INamed, unknown.Fill()), E_NOINTERFACE);
    EXPECT_EQ(unknown, nullptr);
}

TEST(Ref, NullIsAskedWithoutHarm) {
    const lyr::Ref<IShape> none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.TryAs<IColor>(), nullptr);
    EXPECT_EQ(lyr::TryAs<IColor>(none.Get()), nullptr);
    EXPECT_EQ(lyr::Take(none.Get()), lyr::Share(none.Get()));
    EXPECT_TRUE(SameObject(none, lyr::Ref<IColor>()));
    const lyr::Ref<IColor> some = lyr::Make<TestShape>();
    EXPECT_FALSE(SameObject(none, some));
    EXPECT_FALSE(SameObject(some, lyr::Make<TestShape>()));
    EXPECT_EQ(sizeof some, sizeof(void*));
}

TEST(Ref, StandsInSetsAndMaps) {
    const lyr::Ref<IColor> one = lyr::Make<TestShape>();
    const lyr::Ref<IColor> other = lyr::Make<TestShape>();
    const std::set<lyr::Ref<IColor>> sorted{one, other, one, nullptr};
    EXPECT_EQ(sorted.size(), 3U);
    EXPECT_EQ(sorted.count(other), 1U);
    const std::unordered_set<lyr::Ref<IColor>> hashed{one, other, one, nullptr};
    EXPECT_EQ(hashed.size(), 3U);
    EXPECT_EQ(CountOf(one.Get()), 3U);
}

// An object as others write them: it says yes, and gives nothing.
struct Empty final : IColor {
    HRESULT QueryInterface(const GUID&, void** out) override {
        *out = nullptr;
        return S_OK;
    }
    std::uint32_t AddRef() override { return 2; }
    std::uint32_t Release() override { return 1; }
    int Color() override { return 0; }
    void SetColor(int) override {}
};

TEST(Ref, NothingIsNoInterface) {
    Empty empty;
    EXPECT_THROW(static_cast<void>(lyr::As<IShape>(&empty)), lyr::Failure);
    EXPECT_EQ(lyr::TryAs<IShape>(&empty), nullptr);
}

TEST(Ref, ObjectsThatAreBeingDeletedAreNotOne) {
    const lyr::Ref<Dying> one = lyr::Make<Dying>();
    EXPECT_TRUE(SameObject(one, lyr::Ref<IColor>(one)));
    lyr::Ref<Dying> first = lyr::Make<Dying>();
    lyr::Ref<Dying> second = lyr::Make<Dying>();
    first->_next = std::move(second);
    first = nullptr;
    EXPECT_EQ(Dying::same, 0);
    EXPECT_EQ(Dying::itself, 2);
}

TEST(Component, HandsOutEachOf32Interfaces) {
    const lyr::Ref<Many> many = lyr::Make<Many>();
#define LYR_EXPECT_NUMBER(n)                         \
    EXPECT_EQ(lyr::Ref<I##n>(many)->Number##n(), n); \
    EXPECT_EQ(lyr::IdOf<I##n>().Data4[7], 0x##n) << lyr::NameOf<I##n>();
    LYR_FOR_EACH(LYR_EXPECT_NUMBER)
    EXPECT_EQ(CountOf(lyr::Ref<I47>(many).Get()), 2U);
    EXPECT_STREQ(many->IsA(), "Many");
}

TEST(Component, RawCodeSeesAnObjectLikeAnyOther) {
    UseDictionaryPath(LYR_KIT_DICTIONARY);
    const auto square = lyr::Create<IShape>("Square");
    EXPECT_EQ(lyr::IdOf<LYRSysTSBaseUnknown>(), CLSID_LYRSysTSBaseUnknown);
    const auto base = square.As<LYRSysTSBaseUnknown>();
    EXPECT_STREQ(base->IsA(), "Square");
    EXPECT_EQ(base->IsAKindOf("Shape"), 1);
    EXPECT_EQ(*base->GetMetaObject()->GetClassId(), kSquareId);
    EXPECT_EQ(CountOf(base.Get()), 2U);
}

}  // namespace
