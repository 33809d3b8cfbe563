// The library of the workshop's components.

#include "Workshop.h"

#include "Lives.h"

LYR_DEFINE_COMPONENT(Shape);

Shape::Shape(int color) : _color(color) {
    lives::Begin();
}
// References to an object that is being deleted do no harm.
Shape::~Shape() {
    static_cast<void>(lyr::Share(this));
    lives::End();
}
int Shape::Color() {
    return _color;
}
void Shape::SetColor(int color) {
    _color = color;
}

/// Answers a chain of interfaces by itself, its base component's, and one by a TIE.
LYR_COMPONENT(Square, LYR_CLASS_ID(kSquareId), lyr::From<Shape>, workshop::IPolygon) {
    Square() : Component(3) {}
    ~Square() override {
        static_cast<void>(lyr::Share(this));
        // Nor is an extension made that nobody would delete.
        static_cast<void>(lyr::TryAs<ILayer>(this));
    }
    int Corners() override {
        return 4;
    }
    int Diagonals() override {
        return 2;
    }
};

LYR_TIE(SquareTitle, Square, ITitled) {
    SquareTitle() = default;
    ~SquareTitle() override {
        const auto self = lyr::Share(this);
        static_cast<void>(self.Get());
    }
    const char* Name() override {
        return Object().Corners() == 4 ? "square" : "?";
    }
    const char* Title() override {
        return "The Square";
    }
};

namespace {

LYR_COMPONENT(Counts, ICounts, lyr::OneThread) {
    int Living() override {
        return lives::begun - lives::ended;
    }
    int Deleted() override {
        return lives::ended;
    }
};

LYR_COMPONENT(Failing, IShape) {
    Failing() {
        const lyr::Ref<IShape> self = lyr::Share(this);
        lives::FailOnPurpose();
    }
    int Corners() override {
        return 0;
    }

private:
    lives::Life _life;
};

/// Made in here alone.
LYR_COMPONENT(Star, lyr::Inner, IShape) {
    int Corners() override {
        return _corners;
    }

private:
    friend lyr::Making;
    explicit Star(int corners) : _corners(corners) {}

    lives::Life _life;
    const int _corners;
};

/// The dictionary's name is another one.
LYR_NAMED_COMPONENT(Compass, StarMaker, IShape) {
    int Corners() override {
        const lyr::Ref<Star> star = lyr::Make<Star>(5);
        const lyr::Ref<IShape> shape = star;
        return shape->Corners();
    }
};

}  // namespace
