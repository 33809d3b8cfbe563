#include "lyr/test.h"

#include "LYRSysTSMetaClassImpl.h"
#include "lyr/explain.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace lyr {
inline namespace v1 {
namespace detail {

namespace {

[[noreturn]] void Refuse(const char* interfaceName, const char* className, const char* why) {
    char text[1024];
    std::snprintf(text, sizeof text, "lyr: no other %s for a %s in this test: %s\n", interfaceName,
                  className, why);
    Say(text);
    std::abort();
}

/// What was made to answer.
class Answers {
public:
    struct Entry {
        const LYRSysTSMetaClass* meta;
        GUID iid;
        LYRSysTSInterfaceFactory factory;
    };

    void Add(const Entry& entry) {
        const std::lock_guard guard(_mutex);
        _entries.push_back(entry);
    }
    /// Null when nothing answers.
    LYRSysTSInterfaceFactory Find(const LYRSysTSMetaClass* meta, const GUID& iid) {
        const std::lock_guard guard(_mutex);
        const auto found = std::find_if(_entries.begin(), _entries.end(), [&](const Entry& entry) {
            return entry.meta == meta && entry.iid == iid;
        });
        return found != _entries.end() ? found->factory : nullptr;
    }

private:
    std::mutex _mutex;
    std::vector<Entry> _entries;
};

Answers& InThisTest() {
    static Answers answers;
    return answers;
}

}  // namespace

void AnswerInTest(LYRSysTSMetaClass* meta, const char* className, const GUID& iid,
                  const char* interfaceName, LYRSysTSInterfaceFactory factory) {
    auto* const table = dynamic_cast<LYRSysTSMetaClassImpl*>(meta);
    if (table == nullptr) {
        Refuse(interfaceName, className,
               "no such class is known; link it before, or have a dictionary file name it");
    }
    if (const LYRSysTSInterfaceFactory linked = InThisTest().Find(meta, iid)) {
        if (linked == factory) return;
        Refuse(interfaceName, className,
               "a class that is linked, or a fake, answers it already; take that out or change it");
    }
    if (table->_GetInterfaceFactory(iid) != nullptr) {
        Refuse(interfaceName, className,
               "the class was asked for it before, and that answer stays; say it earlier");
    }
    table->_AddInterfaceFactory(iid, factory);
    InThisTest().Add({meta, iid, factory});
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
