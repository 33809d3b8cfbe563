#include "Interfaces.h"
#include <LYRSysTSConvertStringToGUID.h>
#include <cstdio>
#include <thread>

namespace {

// A class id that stands in a file.
lyr::Ref<IText> FromFile(const char* idInBraces) {
    CLSID id{};
    if (LYRSysTSConvertStringToGUID(idInBraces, id) != 0) return nullptr;
    return lyr::TryCreate<IText>(id);
}

void Creation() {
    const auto byName = lyr::Create<IText>("Note");
    const auto byId = lyr::Create<IText>(kNoteId);
    byName->Add("two words");
    std::printf("creation: %d characters and %d\n", byName->Length(), byId->Length());
    if (FromFile("{9961B330-9129-44B3-AEB1-5C563DE03ED1}")) std::printf("creation: by a text\n");
    if (!lyr::TryCreate<IText>("Scroll")) std::printf("creation: no Scroll\n");
    try {
        lyr::Create<IText>("Scroll")->Add("");
    } catch (const lyr::Failure& failure) {
        if (failure.Why() == lyr::Reason::kUnknownClass) std::printf("creation: unknown class\n");
    }
}

// What has become of an interface since, and what to do where it is not there yet.
void Empty(const lyr::Ref<IText>& text) {
    if (const auto draft = text.TryAs<IDraft>()) {
        draft->Clear();
    } else {
        std::printf("interfaces: this text can't be cleared\n");
    }
}

void Interfaces() {
    const auto note = lyr::Create<IDraft>("Note");
    const lyr::Ref<IText> text = note;          // a base interface: the compiler converts
    const auto titled = note.As<ITitled>();     // any other: the object is asked
    text->Add("three small words");
    std::printf("interfaces: %s of %d words\n", titled->Title(), note.As<IStatistics>()->Words());
    Empty(text);
    Empty(lyr::Create<IText>("Letter"));
    std::printf("interfaces: %d characters are left\n", text->Length());
}

// Each component answers for the base class of all with itself.
void PrintClassOf(IUnknown* object) {
    const auto base = lyr::TryAs<LYRSysTSBaseUnknown>(object);
    if (base == nullptr) return;
    std::printf("classes: %s, %s Document\n", base->IsA(),
                base->IsAKindOf("Document") ? "a" : "no");
}

void Classes() {
    PrintClassOf(lyr::Create<ITitled>("Letter").Get());
    PrintClassOf(lyr::Create<ISpelling>("Spelling").Get());
}

void Extensions() {
    const auto letter = lyr::Create<IText>("Letter");
    letter.As<IBookmark>()->SetPlace(5);
    letter.As<ICursor>()->Forward(5);
    const auto bookmark = letter.As<IBookmark>();
    std::printf("extensions: bookmark %d, cursor %d, one object: %d\n", bookmark->Place(),
                letter.As<ICursor>()->Place(), SameObject(letter, bookmark));
}

void Threads() {
    const auto note = lyr::Create<IText>("Note");
    std::thread other([note] {          // each thread has a Ref of its own
        for (int i = 0; i < 100; ++i) note->Add("a");
    });
    for (int i = 0; i < 100; ++i) note->Add("b");
    other.join();
    std::printf("threads: %d characters\n", note->Length());
}

void Owners() {
    lyr::Ref<IPage> page;
    {
        const auto binder = lyr::Create<IBinder>("Binder");
        page = binder->AddPage();
        page = binder->AddPage();
    }
    std::printf("owners: page %d of %d outlives its binder\n", page->Number(), page->Of());
}

void ExistingClasses() {
    const auto spelling = lyr::Create<ISpelling>("Spelling");
    std::printf("existing classes: \"receive\" is %s\n",
                spelling->IsRight("receive") ? "right" : "wrong");
}

// Classes that are named on the command line, of whatever plug-in there is.
void PlugIns(int count, char** names) {
    for (int i = 1; i < count; ++i) {
        const auto titled = lyr::TryCreate<ITitled>(names[i]);
        std::printf("plug-ins: %s\n", titled ? titled->Title() : "none of that name");
    }
}

}  // namespace

int main(int count, char** words) {
    const lyr::Runtime runtime;
    Creation();
    Interfaces();
    Classes();
    Extensions();
    Threads();
    Owners();
    ExistingClasses();
    PlugIns(count, words);
}
