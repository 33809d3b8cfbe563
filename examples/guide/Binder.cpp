#include "Interfaces.h"
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

// What a binder and its pages both need belongs to neither.
struct Pages {
    std::atomic<int> count{0};
};

LYR_COMPONENT(Page, lyr::Inner, IPage) {
    int Number() override { return _number; }
    int Of() override { return _pages->count; }

private:
    friend lyr::Making;
    explicit Page(const std::shared_ptr<Pages>& pages) : _number(++pages->count), _pages(pages) {}

    const int _number;
    const std::shared_ptr<Pages> _pages;
};

LYR_COMPONENT(Binder, IBinder) {
    lyr::Ref<IPage> AddPage() override {
        const lyr::Ref<Page> page = lyr::Make<Page>(_shared);
        const std::lock_guard<std::mutex> guard(_mutex);
        _pages.emplace_back(page);
        return page;
    }

private:
    const std::shared_ptr<Pages> _shared = std::make_shared<Pages>();
    std::mutex _mutex;  // guards the list
    std::vector<lyr::Ref<IPage>> _pages;
};
