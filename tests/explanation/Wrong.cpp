#include "Wrong.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

using lyr::Loading;

/// The question of a row, in the process that asks it.
class Question {
public:
    explicit Question(const Wrong& wrong)
        : _wrong(wrong), _gadget(new Thing(Class("Gadget", ImplementationClass))) {}

    Explanation Explained(Loading loading) const {
        switch (_wrong.asked) {
            case Wrong::Asked::kCreation:
                return lyr::ExplainCreation("Gadget", loading);
            case Wrong::Asked::kCreationById:
                return lyr::ExplainCreation(Iid(_wrong.number), loading);
            default:
                return lyr::ExplainRequest(_gadget, Iid(_wrong.number), loading,
                                           _wrong.interfaceName);
        }
    }

    bool IsAnswered() const {
        void* out = nullptr;
        switch (_wrong.asked) {
            case Wrong::Asked::kCreation:
                return LYRSysTSCreateExternalObject("Gadget", nullptr, nullptr) != nullptr;
            case Wrong::Asked::kCreationById:
                return LYRSysTSCreateInstance(Iid(_wrong.number), IID_IUnknown, &out) == S_OK;
            default:
                return Ask(*_gadget, Iid(_wrong.number)) == S_OK;
        }
    }

private:
    const Wrong& _wrong;
    Thing* const _gadget;  // of a process that ends with its question
};

/// No explanation contradicts the answer. One that may not load need not know it.
void ExpectAgrees(const Explanation& explanation, bool isAnswered, bool mayBeOpen) {
    SCOPED_TRACE(explanation.text);
    const Answer answer = explanation.answer;
    EXPECT_TRUE(answer != Answer::kYes || isAnswered);
    EXPECT_TRUE(answer != Answer::kNo || !isAnswered);
    EXPECT_TRUE(answer != Answer::kUnknown || mayBeOpen);
}

std::string PlaceOf(const Explanation& explanation, const std::string& folder) {
    for (const lyr::Step& step : explanation.steps) {
        if (step.line == 0) continue;
        const std::string place = step.file + ":" + std::to_string(step.line);
        return place.substr(place.find(folder) == 0 ? folder.size() + 1 : 0);
    }
    return "";
}

void ExpectTold(const Wrong& wrong, const Explanation& explanation, const std::string& folder) {
    SCOPED_TRACE(explanation.text);
    EXPECT_EQ(RootOf(explanation), wrong.root);
    EXPECT_EQ(PlaceOf(explanation, folder), wrong.place);
    EXPECT_TRUE(Has(explanation.text, wrong.told)) << wrong.told;
    EXPECT_FALSE(Has(explanation.text, wrong.untold)) << wrong.untold;
}

void Prepare(const Shop& shop) {
    UseDictionaryPath(shop.path + "/d:" + shop.path + "/e");
    LYRThrLibraryManager::AddFolder((shop.path + "/libs").c_str(), nullptr);
}

void AskFirstDry(const Wrong& wrong, const Shop& shop) {
    Prepare(shop);
    const Question question(wrong);
    const Explanation before = question.Explained(Loading::kNo);
    const bool isAnswered = question.IsAnswered();
    EXPECT_EQ(isAnswered, std::string(wrong.root) == "none");
    ExpectAgrees(before, isAnswered, true);
    ExpectAgrees(question.Explained(Loading::kNo), isAnswered, true);
    const Explanation after = question.Explained(Loading::kYes);
    ExpectAgrees(after, isAnswered, false);
    if (!isAnswered) ExpectTold(wrong, after, shop.path);
}

void AskFirstLoading(const Wrong& wrong, const Shop& shop) {
    Prepare(shop);
    const Question question(wrong);
    const Explanation before = question.Explained(Loading::kYes);
    const bool isAnswered = question.IsAnswered();
    ExpectAgrees(before, isAnswered, false);
    ExpectTold(wrong, before, shop.path);
}

/// Listening changes no answer, and what was heard is recalled.
void AskHeard(const Wrong& wrong, const Shop& shop) {
    lyr::SetMessageHandler([](const char*, void*) {}, nullptr);
    Prepare(shop);
    lyr::SetDebug("explain=all");
    const Question question(wrong);
    const bool isAnswered = question.IsAnswered();
    EXPECT_EQ(isAnswered, std::string(wrong.root) == "none");
    EXPECT_EQ(question.IsAnswered(), isAnswered);
    if (wrong.asked == Wrong::Asked::kRequest) {
        const Explanation after = question.Explained(Loading::kYes);
        ExpectAgrees(after, isAnswered, false);
        EXPECT_EQ(RootOf(after), wrong.root) << after.text;
    }
    lyr::SetDebug(nullptr);
    lyr::SetMessageHandler(nullptr, nullptr);
}

/// In a process of its own: the tables are filled once in each.
template <typename Action>
void InProcess(const char* what, Action action) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        action();
        std::fflush(nullptr);
        ::_exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << what;
}

/// Whether the check tells the error, "FILE:LINE kind".
bool Finds(const std::string& text, const std::string& error) {
    const std::size_t blank = error.find(' ');
    const std::string start = error.substr(0, blank) + ": error: ";
    const std::string end = " [" + error.substr(blank + 1) + "]\n";
    for (std::size_t at = text.find(start); at != std::string::npos;
         at = text.find(start, at + 1)) {
        const std::size_t lineEnd = text.find('\n', at) + 1;
        if (text.substr(at, lineEnd - at).ends_with(end)) return true;
    }
    return false;
}

void ExpectFound(const Wrong& wrong, const Shop& shop) {
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    const Outcome checked = shop.Lyr("check -d d:e -l libs -p '" + self + "'");
    const std::string found = wrong.found;
    EXPECT_EQ(checked.status, found.empty() ? 0 : 1) << checked.text;
    EXPECT_TRUE(found.empty() || Finds(checked.text, found)) << checked.text;
}

}  // namespace

Shop::Shop() {
    Run("mkdir d e libs");
    Write("d/i.iidts", NamesOfIds() + "{A000000A-0000-0000-0000-000000000000} IPrinter\n");
}

void Shop::Library(const std::string& name, const std::string& code,
                   const std::string& options) const {
    Build("libs/lib" + name + ".so", {}, {}, code, "-Wl,-soname,lib" + name + ".so " + options);
}

std::string Answering(const std::string& entryPoint) {
    return "extern \"C\" void* " + entryPoint +
           "(void* object, unsigned char) { return object; }\n";
}

void ExpectToldAsItIs(const Wrong& wrong) {
    const Shop shop;
    if (!wrong.code.empty()) shop.Library("A", wrong.code, wrong.options);
    shop.Pairs(wrong.pairs);
    wrong.make(shop);
    ExpectFound(wrong, shop);
    InProcess("nothing loaded before", [&] { AskFirstDry(wrong, shop); });
    InProcess("loaded for the explanation", [&] { AskFirstLoading(wrong, shop); });
    InProcess("heard", [&] { AskHeard(wrong, shop); });
}
