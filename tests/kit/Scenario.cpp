// Uses every kind of implementation, and prints what it meets: the same in each build.

#include "Workshop.h"

#include <cstdio>
#include <thread>
#include <vector>

namespace {

void Print(const char* what, long long value) {
    std::printf("%-44s %lld\n", what, value);
}

template <class J, class I>
bool Has(const lyr::Ref<I>& object) {
    return object.template TryAs<J>() != nullptr;
}

/// The base interface is asked for first, before the library of the class is loaded.
void BaseFirst() {
    const auto hexagon = lyr::TryCreate<IShape>("Hexagon");
    Print("a hexagon's corners", hexagon->Corners());
    Print("its diagonals", hexagon.TryAs<workshop::IPolygon>()->Diagonals());
    Print("its colour, from its base component", hexagon.TryAs<IColor>()->Color());
    Print("it is missing what nobody answers", !Has<IMissing>(hexagon));
    std::printf("%-44s %s\n", "its name, from a TIE on an extension",
                hexagon.TryAs<INamed>()->Name());
    Print("one object behind them", SameObject(hexagon, hexagon.TryAs<INamed>()));
}

void ByClassId() {
    const auto color = lyr::TryCreate<IColor>(kSquareId);
    Print("a square's colour, from its constructor", color->Color());
    const auto title = color.TryAs<ITitled>();
    std::printf("%-44s %s, %s\n", "its title and name, from a TIE", title->Title(), title->Name());
    Print("each request has a TIE of its own", title != color.TryAs<ITitled>());
    Print("an unknown class id", lyr::TryCreate<IColor>(lyr::IdOf<IColor>()) != nullptr);
}

void Extensions() {
    const auto square = lyr::TryCreate<IShape>("Square");
    square.TryAs<ILayer>()->SetLayer(5);
    Print("the layer, from a kept extension", square.TryAs<ILayer>()->Layer());
    const auto view = square.TryAs<IView>();
    view->VisibleCorners();
    Print("a view, from a transient extension", view->VisibleCorners());
    Print("another view", square.TryAs<IView>()->VisibleCorners());
    Print("a view leads to the layer", Has<ILayer>(view));
    Print("base components are not extended", Has<ILayer>(lyr::TryCreate<IColor>("Shape")));
}

void Making() {
    Print("corners of what is made inside", lyr::TryCreate<IShape>("StarMaker")->Corners());
    Print("what is made inside, by name", lyr::TryCreate<IShape>("Star") != nullptr);
}

void Threads() {
    const auto square = lyr::TryCreate<IShape>("Square");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([square] {
            for (int n = 0; n < 200; ++n) {
                const auto layer = square.TryAs<ILayer>();
                layer->SetLayer(layer->Layer());
                if (!Has<ITitled>(layer) || !Has<IView>(square)) std::abort();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    Print("threads are done with the square", square->Corners());
}

}  // namespace

int main() {
    BaseFirst();
    ByClassId();
    Extensions();
    Making();
    Threads();
    for (const char* name : {"Counts", "AdditionCounts"}) {
        const auto counts = lyr::TryCreate<ICounts>(name);
        Print("objects left", counts->Living());
        Print("objects deleted", counts->Deleted());
    }
}
