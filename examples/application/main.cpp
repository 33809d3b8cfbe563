#include "ICircle.h"
#include "IColor.h"
#include "ILayer.h"
#include "IPrint.h"
#include "IView.h"
#include "Story.h"

#include <utility>

namespace {

Ref<IUnknown> CreateById(const CLSID& clsid) {
    void* out = nullptr;
    if (LYRSysTSCreateInstance(clsid, IID_IUnknown, &out) != S_OK) return nullptr;
    return Ref<IUnknown>(static_cast<IUnknown*>(out));
}

Ref<IUnknown> CreateByName(const char* name, void* argument) {
    void* object = LYRSysTSCreateExternalObject(name, nullptr, argument);
    return Ref<IUnknown>(static_cast<IUnknown*>(object));
}

void UseShape(const Ref<IUnknown>& circle) {
    std::printf("\n2. An interface implemented by a TIE, a small object of its own\n");
    const auto shape = Ask<IShape>(circle, IID_IShape, "IShape");
    std::printf("     its area is %.2f; the TIE's count is %u, the circle's %u\n", shape->Area(),
                CountOf(shape.get()), CountOf(circle.get()));
    const auto again = Ask<IShape>(circle, IID_IShape, "IShape");
    const auto leaf = Ask<ICircle>(circle, IID_ICircle, "ICircle");
    leaf->SetRadius(2);
    std::printf("     with the radius 2 the area is %.2f; the circle's count is %u\n",
                again->Area(), CountOf(circle.get()));
}

void UseColor(const Ref<IUnknown>& circle) {
    std::printf("\n3. An interface implemented by a BOA, the circle itself\n");
    const auto color = Ask<IColor>(circle, IID_IColor, "IColor");
    color->SetColor(0xFF8000);
    std::printf("     its colour is %06X; its count is the circle's, %u\n", color->Color(),
                CountOf(color.get()));
}

void UseExtensions(const Ref<IUnknown>& circle) {
    std::printf("\n4. A kept extension, from a library that circles know nothing of\n");
    Ask<ILayer>(circle, IID_ILayer, "ILayer")->SetLayer(7);
    const auto layer = Ask<ILayer>(circle, IID_ILayer, "ILayer");
    std::printf("     the same instance: the layer is %d; the circle's count is %u\n",
                layer->Layer(), CountOf(circle.get()));

    std::printf("\n5. A transient extension\n");
    const auto normal = Ask<IView>(circle, IID_IView, "IView");
    const auto large = Ask<IView>(circle, IID_IView, "IView");
    large->Zoom(10);
    std::printf(
        "     a new instance each time: they show %.2f and %.2f; the circle's count is %u\n",
        normal->VisibleArea(), large->VisibleArea(), CountOf(circle.get()));
}

/// Registers in code what a line of a ".dicts" file would say, and traces it.
void LetSquaresHaveLayers() {
    std::printf(
        "   the application registers that ShapeLayer serves squares too; the trace of it:\n");
    const char* library = "libDrawingAnnotations";
    LYRSysTSDictionary::AddDictionaryTS("Square", "ILayer", library, nullptr, "ShapeLayer", nullptr,
                                        nullptr);
    const int key = LYRSysTSDictionary::_ComputeHashKey("Square", "ILayer");
    DumpTSAddDicEntry(nullptr, nullptr, "Square", "ILayer", key, nullptr, nullptr, library);
}

}  // namespace

int main() {
    std::printf("1. A circle, by its class id\n");
    Ref<IUnknown> circle = CreateById(CLSID_Circle);
    if (!circle) {
        std::fprintf(stderr, "No circle; start the example with examples/run. %s\n",
                     LYRThrLibraryManager::LastFailure().c_str());
        return 1;
    }
    std::printf("     its count is %u\n", CountOf(circle.get()));
    UseShape(circle);
    UseColor(circle);
    UseExtensions(circle);

    std::printf("\n6. An interface that nobody implements\n");
    Ask<IPrint>(circle, IID_IPrint, "IPrint");
    Ask<IPrint>(circle, IID_IPrint, "IPrint");

    std::printf(
        "\n7. A circle, by its class name, from the function that its library registered\n");
    double size = 3;
    Ref<IUnknown> other = CreateByName("Circle", &size);
    std::printf("     its area is %.2f\n", Ask<IShape>(other, IID_IShape, "IShape")->Area());

    std::printf(
        "\n8. A square, by its class name, from the library that a dictionary file names\n");
    Ref<IUnknown> square = CreateByName("Square", &size);
    std::printf("     its area is %.2f\n", Ask<IShape>(square, IID_IShape, "IShape")->Area());
    LetSquaresHaveLayers();
    auto layer = Ask<ILayer>(square, IID_ILayer, "ILayer");

    std::printf("\n9. Everything is given back\n");
    GiveBack(std::move(circle), "the first circle");
    GiveBack(std::move(other), "the second circle");
    GiveBack(std::move(square), "the square, which the TIE of its layer still holds");
    GiveBack(std::move(layer), "the TIE of its layer");

    // The tables are freed last, in this order; leaving them to the end of the process is as good.
    LYRSysTSDictionary::_DeleteDictionary();
    LYRSysTSMetaClassBase::Destruct();
    LYRSysTSDicoIIDName::_FreeDictionary();
    LYRSysTSDicoCLSIDName::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary();
    LYRSysTSDicoString::_FreeDictionary();
}
