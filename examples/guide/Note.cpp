#include "Document.h"
#include <algorithm>
#include <mutex>

LYR_COMPONENT(Note, lyr::From<Document>, IDraft, LYR_CLASS_ID(kNoteId)) {
    Note() : Component("a note") {}

    void Add(const char* words) override {
        const std::lock_guard<std::mutex> guard(_mutex);
        _text += words;
    }
    int Length() override {
        const std::lock_guard<std::mutex> guard(_mutex);
        return static_cast<int>(_text.size());
    }
    void Clear() override {
        const std::lock_guard<std::mutex> guard(_mutex);
        _text.clear();
    }
    int CountOf(char wanted) {
        const std::lock_guard<std::mutex> guard(_mutex);
        return static_cast<int>(std::count(_text.begin(), _text.end(), wanted));
    }

private:
    std::mutex _mutex;  // guards the text
    std::string _text;
};

LYR_TIE(NoteStatistics, Note, IStatistics) {
    int Words() override { return Object().CountOf(' ') + 1; }
};
