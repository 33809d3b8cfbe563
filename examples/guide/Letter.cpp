#include "Document.h"
#include <atomic>

LYR_COMPONENT(Letter, lyr::From<Document>, IText) {
    Letter() : Component("a letter") {}
    void Add(const char* words) override { _length += static_cast<int>(std::string(words).size()); }
    int Length() override { return _length; }

private:
    std::atomic<int> _length{0};
};
