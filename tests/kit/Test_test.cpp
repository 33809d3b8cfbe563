#include "TestSupport.h"
#include "Workshop.h"

#include <lyr/test.h>

// What is linked into the program: each kind of class.
LYR_COMPONENT(Lamp, IColor) {
    int Color() override {
        return _color;
    }
    void SetColor(int color) override {
        _color = color;
    }

private:
    int _color = 1;
};
LYR_TIE(LampTitle, Lamp, ITitled) {
    const char* Name() override {
        return Object().Color() == 1 ? "lamp" : "?";
    }
    const char* Title() override {
        return "The Lamp";
    }
};
LYR_KEPT_EXTENSION(LampLayer, (Lamp), ILayer) {
    int Layer() override {
        return _layer;
    }
    void SetLayer(int layer) override {
        _layer = layer;
    }

private:
    int _layer = 0;
};

LYR_COMPONENT(GreenLamp, lyr::From<Lamp>, INamed) {
    const char* Name() override {
        return "green";
    }
};
LYR_COMPONENT(Bulb, lyr::TiesOnly) {
};
LYR_TRANSIENT_EXTENSION(ManyTitles, (Nobody, Lamp), ITitled) {
    const char* Name() override {
        return "any";
    }
    const char* Title() override {
        return "Any";
    }
};
LYR_KEPT_EXTENSION(Lost, (Nobody), ILayer) {
    int Layer() override {
        return 0;
    }
    void SetLayer(int) override {}
};

LYR_FAKE(FakeShape, workshop::IPolygon) {
    int Corners() override {
        return -1;
    }
    int Diagonals() override {
        return Object().IsAKindOf("Shape");
    }
};
LYR_FAKE(FakeColor, IColor) {
    int Color() override {
        return -2;
    }
    void SetColor(int) override {}
};

namespace {

TEST(Link, NeedsNoDictionary) {
    UseDictionaryPath("");
    lyr::test::Link<Lamp, LampTitle, LampLayer>();
    const auto lamp = lyr::Create<IColor>("Lamp");
    EXPECT_STREQ(lamp.As<INamed>()->Name(), "lamp");
    lamp.As<ILayer>()->SetLayer(4);
    EXPECT_EQ(lamp.As<ITitled>().As<ILayer>()->Layer(), 4);
    EXPECT_EQ(lamp.TryAs<IMissing>(), nullptr);
}

TEST(Link, BringsBaseComponentsAndNeedsNoOrder) {
    UseDictionaryPath("");
    lyr::test::Link<ManyTitles, Bulb, GreenLamp, Lamp>();
    const auto lamp = lyr::Create<IColor>("GreenLamp");
    EXPECT_STREQ(lamp.As<INamed>()->Name(), "green");
    EXPECT_STREQ(lamp.As<ITitled>()->Title(), "Any");
    EXPECT_EQ(lyr::Create<IUnknown>("Bulb").TryAs<IColor>(), nullptr);
}

TEST(Link, BringsTheBaseAlone) {
    UseDictionaryPath("");
    lyr::test::Link<GreenLamp>();
    EXPECT_EQ(lyr::Create<IColor>("GreenLamp")->Color(), 1);
}

TEST(Replace, TakesThePlaceOfALibrarysImplementation) {
    UseDictionaryPath(LYR_KIT_DICTIONARY);
    lyr::test::Replace<FakeShape>("Square");
    const auto square = lyr::Create<workshop::IPolygon>(kSquareId);
    EXPECT_EQ(square->Corners(), -1);
    EXPECT_EQ(square->Diagonals(), 1);
    EXPECT_EQ(square.As<IShape>()->Corners(), -1);
    EXPECT_EQ(square.As<IColor>()->Color(), 3);
    EXPECT_EQ(lyr::Create<IShape>("Hexagon")->Corners(), 6);
}

TEST(Replace, ReachesDerivedClasses) {
    UseDictionaryPath(LYR_KIT_DICTIONARY);
    lyr::test::Replace<FakeColor>("Shape");
    EXPECT_EQ(lyr::Create<IColor>("Square")->Color(), -2);
}

TEST(ReplaceDeathTest, RefusesWhatComesTooLateOrToNobody) {
    UseDictionaryPath(LYR_KIT_DICTIONARY);
    EXPECT_EQ(lyr::Create<IShape>("Square")->Corners(), 4);
    EXPECT_DEATH(
        lyr::test::Replace<FakeShape>("Square"),
        "lyr: no other IShape for a Square in this test: the class was asked for it before");
    lyr::test::Link<Lamp>();
    EXPECT_DEATH(lyr::test::Replace<FakeColor>("Lamp"),
                 "lyr: no other IColor for a Lamp in this test: a class that is linked, or a fake, "
                 "answers it already");
    EXPECT_DEATH(lyr::test::Link<Lost>(),
                 "lyr: no other ILayer for a Nobody in this test: no such class is known");
    EXPECT_DEATH(lyr::test::Replace<FakeShape>("Nobody"),
                 "lyr: no other IPolygon for a Nobody in this test: no such class is known");
}

TEST(RuntimeTest, FreesTheTables) {
    UseDictionaryPath(LYR_KIT_DICTIONARY);
    {
        const lyr::Runtime runtime;
        EXPECT_EQ(lyr::Create<IShape>("Square")->Corners(), 4);
    }
    EXPECT_EQ(LYRSysTSDictionary::QueryDictionary("Square", "IShape", 0), nullptr);
    EXPECT_EQ(LYRSysTSDicoIIDName::QueryDicoIIDNameByName("IShape"), nullptr);
}

}  // namespace
