// A library of extensions and of a class derived from another library's base component.

#include "Lives.h"
#include "Workshop.h"

#include <atomic>

LYR_KEPT_EXTENSION(Layering, (Square, Hexagon), ILayer) {
    ~Layering() override {
        // Its own count is that of the object, which is being deleted too.
        const lyr::Ref<ILayer> self = lyr::Share(this);
        const auto object = lyr::TryAs<IShape>(this);
    }
    int Layer() override {
        return _layer;
    }
    void SetLayer(int layer) override {
        _layer = layer;
    }

private:
    std::atomic<int> _layer{0};
    lives::Life _life;
};

LYR_TRANSIENT_EXTENSION(Viewing, (Square), IView) {
    ~Viewing() override {
        const lyr::Ref<IView> self = lyr::Share(this);
        static_cast<void>(self.Get());
    }
    int VisibleCorners() override {
        const auto shape = lyr::TryAs<IShape>(this);
        return (shape ? shape->Corners() : 0) + _asked++;
    }

private:
    int _asked = 0;
    lives::Life _life;
};

/// A kept extension whose interface a TIE gives.
LYR_KEPT_EXTENSION(Naming, (Hexagon, Counts), lyr::TiesOnly) {
    const char* const name = "named from outside";
};
LYR_TIE(NamingTie, Naming, INamed) {
    const char* Name() override {
        return Object().name;
    }
};

LYR_COMPONENT(Hexagon, lyr::From<Shape>, workshop::IPolygon) {
    int Corners() override {
        return 6;
    }
    int Diagonals() override {
        return 9;
    }
};

LYR_COMPONENT(AdditionCounts, ICounts) {
    int Living() override {
        return lives::begun - lives::ended;
    }
    int Deleted() override {
        return lives::ended;
    }
};
