#include "Interfaces.h"
#include <atomic>

LYR_KEPT_EXTENSION(Bookmark, (Note, Letter), IBookmark) {
    int Place() override { return _place; }
    void SetPlace(int place) override { _place = place; }
    bool IsAtEnd() override { return _place >= lyr::As<IText>(this)->Length(); }

private:
    std::atomic<int> _place{0};
};

LYR_TRANSIENT_EXTENSION(Cursor, (Note, Letter), ICursor) {
    int Place() override { return _place; }
    void Forward(int characters) override { _place += characters; }

private:
    std::atomic<int> _place{0};
};
