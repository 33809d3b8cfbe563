#include "Bookmark.cpp"  // NOLINT(bugprone-suspicious-include): nobody else sees the class
#include <lyr/test.h>
#include <cstdio>

// In the place of a class that is extended, whose library this program does not need.
LYR_COMPONENT(Note, ITitled) {
    const char* Title() override { return "a note"; }
};

// In the place of what answers IText for notes.
LYR_FAKE(FakeText, IText) {
    void Add(const char*) override {}
    int Length() override { return length; }

    static inline int length = 10;
};

namespace {

int failures = 0;

void Expect(bool isTrue, const char* what) {
    if (isTrue) return;
    ++failures;
    std::printf("not true: %s\n", what);
}

}  // namespace

int main() {
    const lyr::Runtime runtime;
    lyr::test::Link<Note, Bookmark, Cursor>();
    lyr::test::Replace<FakeText>("Note");

    const auto bookmark = lyr::Create<ITitled>("Note").As<IBookmark>();
    Expect(!bookmark->IsAtEnd(), "a new bookmark is at the beginning");
    bookmark->SetPlace(10);
    Expect(bookmark->IsAtEnd(), "a text of ten characters ends there");
    FakeText::length = 11;
    Expect(!bookmark->IsAtEnd(), "the text has grown");
    return failures;
}
