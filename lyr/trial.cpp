// lyr try-libraries: the process in which libraries are loaded for `lyr check --load` and `lyr
// explain --load`. Whatever they do there, it tells what has been found before.

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoString.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSMetaClassExt.h"
#include "inspection/DictionaryLines.h"
#include "lyr/ChildProcess.h"
#include "lyr/Commands.h"
#include "lyr/TrialRecords.h"
#include "lyr/explain.h"

#include <array>
#include <csignal>
#include <dlfcn.h>
#include <link.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace lyr::program {

namespace {

std::string ReadInput() {
    std::string text;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count <= 0) return text;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

void Reply(std::initializer_list<std::string_view> record) {
    const std::string text = TextOf(record);
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(kReplyDescriptor, text.data() + done, text.size() - done);
        if (count <= 0) return;
        done += static_cast<std::size_t>(count);
    }
}

/// As the component model loads libraries. An exception that leaves an initialiser ends the process
/// here, as it does there; so the compiler must not see that dlopen is declared not to throw.
[[gnu::noinline]] void* Load(const char* path) noexcept {
    void* (*volatile const open)(const char*, int) = &::dlopen;
    return open(path, RTLD_NOW | RTLD_LOCAL);
}

/// Whether the library itself has the function, and not one that it needs.
bool HasFunction(void* library, const char* symbol) {
    void* const address = ::dlsym(library, symbol);
    link_map* map = nullptr;
    void* owner = nullptr;
    Dl_info info{};
    return address != nullptr && ::dlinfo(library, RTLD_DI_LINKMAP, &map) == 0 &&
           ::dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) != 0 && owner == map;
}

LYRSysTSMetaClassExt* ToExtension(LYRSysTSMetaClass& metaObject) {
    LYRSysTSMetaClassBase* const base = metaObject.ToMetaClassBase();
    return base != nullptr ? base->CastToMetaExtension() : nullptr;
}

const char* StateOfExtension(const std::string& name, const std::string& className) {
    LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(name.c_str());
    if (metaObject == nullptr) return "absent";
    LYRSysTSMetaClassExt* const extension = ToExtension(*metaObject);
    if (extension == nullptr) return "class";
    const char* const interned = LYRSysTSDicoString::AddStringInDico(className.c_str());
    return extension->_IsExtensionOf(interned) ? "extends" : "other";
}

const char* StateOfLeaf(const std::string& name, const std::string& id) {
    GUID iid;
    const LYRSysTSMetaClass* const leaf = LYRSysTSDictionary::QueryMetaObject(name.c_str());
    if (leaf == nullptr || LYRSysTSConvertStringToGUID(id.c_str(), iid) != 0) return "absent";
    return leaf->IsAKindOf(iid) != 0 ? "derived" : "other";
}

void Explain(const std::string& className, const std::string& interfaceNameOrId) {
    const char* const asked = className.c_str();
    const std::string id = inspection::IdFromUser(interfaceNameOrId);
    Explanation explanation;
    GUID iid;
    if (interfaceNameOrId == "CreateInterface") {
        explanation = ExplainCreation(asked, Loading::kYes);
    } else if (!id.empty() && LYRSysTSConvertStringToGUID(id.c_str(), iid) == 0) {
        explanation = ExplainRequest(asked, iid, Loading::kYes);
    } else {
        explanation = ExplainRequest(asked, interfaceNameOrId.c_str(), Loading::kYes);
    }
    constexpr std::array<const char*, 3> kAnswers = {"no", "yes", "unknown"};
    Reply({"answer", kAnswers.at(static_cast<std::size_t>(explanation.answer)), explanation.text});
}

/// Does what it is told, piece by piece.
class Trial {
public:
    void Do(const TrialRecord& told) {
        if (told.size() < 2) return;
        if (told[0] == "library") return DoLoad(told[1]);
        if (told[0] == "function") return DoLookUp(told[1]);
        if (told.size() < 3) return;
        if (told[0] == "extension") {
            Reply({told[0], told[1], told[2], StateOfExtension(told[1], told[2])});
        } else if (told[0] == "leaf") {
            Reply({told[0], told[1], told[2], StateOfLeaf(told[1], told[2])});
        } else if (told[0] == "explain") {
            Explain(told[1], told[2]);
        }
    }

private:
    void DoLoad(const std::string& path) {
        _library = Load(path.c_str());
        if (_library != nullptr) return Reply({"loaded"});
        const char* const words = ::dlerror();
        Reply({"refused", words != nullptr ? words : "the loader does not say why"});
    }

    void DoLookUp(const std::string& symbol) const {
        if (_library == nullptr || HasFunction(_library, symbol.c_str())) return;
        Reply({"missing", symbol});
    }

    void* _library = nullptr;
};

/// Without traces: no core file, and no process that outlives the one that waits for it.
void LiveQuietly() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
}

[[noreturn]] void Run() {
    LiveQuietly();
    Trial trial;
    for (const TrialRecord& told : RecordsOf(ReadInput())) trial.Do(told);
    Reply({"end"});
    ::_exit(0);  // what libraries do when a program ends is not tried
}

}  // namespace

void AddTrial(CLI::App& program) {
    CLI::App* const command = program.add_subcommand(kTrialCommand, "Tries libraries");
    command->group("");
    command->final_callback([] { Run(); });
}

}  // namespace lyr::program
