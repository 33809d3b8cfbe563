// messages
//
// Standard error is a pipe that is full, so that whoever writes there waits. Meanwhile every other
// thread can go on: no message is written while a lock is held. Each message in a process of its
// own.
#include "../support/MutexGuard.h"
#include "../tests/metaclass/TestClasses.h"
#include "Must.h"

#include <fcntl.h>
#include <future>
#include <sys/wait.h>

struct Message {
    void (*say)();
    const char* file = nullptr;  // one of these in the dictionary path,
    const char* text = nullptr;  // with this text; a directory without one
};

static const GUID id = Id(1);

/// About what says otherwise than is known: the class "Known", whose entry is of the library "L",
/// by its id Id(1), and the creator of Id(1) and Id(1).
static const Message kMessages[] = {
    {[] { Add("Known", "I", "Other"); }},
    {[] { Dictionary::AddDictionaryTS(id, id, Creator(2), nullptr); }},
    {[] { Dictionary::AddDictionaryTS(&id, &id, "Known", "I", "L", Creator(2), 0); }},
    {[] { Class("Other", PlainClass, nullptr, 1); }},
    {[] { LYRSysTSDicReader().PutInfo(nullptr, 0, "file", 1); }},
    {[] { LYRSysTSIidReader().PutInfo(nullptr, 0, "file", 1); }},
    {[] { LYRSysTSClsidReader().PutInfo(nullptr, 0, "file", 1); }},
    {[] { ::unsetenv("LYRDictionaryPath"), Dictionary::EnsureInitDictionary(); }},
    {&Dictionary::EnsureInitDictionary, "a.dicts", "C I\n"},
    {&Dictionary::EnsureInitDictionary, "a.dicts", "Known I Other\n"},
    {&Dictionary::EnsureInitDictionary, "a.iidts", "C I\n"},
    {&Dictionary::EnsureInitDictionary, "a.clsidts", "C\n"},
    {&Dictionary::EnsureInitDictionary, "a.dicts"},
};

/// The reading end of what is standard error from now on, with no room left.
static int FillErrors() {
    int ends[2];
    MUST(::pipe(ends) == 0 && ::dup2(ends[1], STDERR_FILENO) >= 0);
    const std::vector<char> page(4096);
    ::fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK);
    while (::write(STDERR_FILENO, page.data(), page.size()) > 0) continue;
    ::fcntl(STDERR_FILENO, F_SETFL, 0);
    return ends[0];
}

static void UseEverything() {
    for (auto* const mutex :
         {GetGlobalDicoMutex(), GetGlobalStringDicoMutex(), GetGlobalGUIDDicoMutex(),
          GetGlobalIIDDicoMutex(), GetGlobalCLSIDDicoMutex()}) {
        const lyr::internal::MutexGuard guard(*mutex);
    }
    MUST(Add("New", "I", "L") == Find("New") && Class("New") == Dictionary::QueryMetaObject("New"));
}

static void Check(const Message& message) {
    const TempDirectory files;
    if (message.text != nullptr) {
        files.Write(message.file, message.text);
    } else if (message.file != nullptr) {
        std::filesystem::create_directory(files.path + "/" + message.file);
    }
    UseDictionaryPath(files.path);
    Class("Known", PlainClass, nullptr, 1);
    MUST(Add("Known", "I", "L") && Dictionary::AddDictionaryTS(id, id, Creator(1), nullptr));

    using namespace std::chrono_literals;
    const int errors = FillErrors();
    const auto speaker = std::async(std::launch::async, message.say);
    MUST(speaker.wait_for(100ms) == std::future_status::timeout);
    const auto other = std::async(std::launch::async, UseEverything);
    const bool goesOn = other.wait_for(2s) == std::future_status::ready;
    const bool stillSpeaks = speaker.wait_for(0s) == std::future_status::timeout;
    std::vector<char> all(1 << 20);
    while (speaker.wait_for(10ms) == std::future_status::timeout) {
        MUST(::read(errors, all.data(), all.size()) > 0);
    }
    MUST(goesOn && stillSpeaks);
}

int main() {
    int failed = 0;
    for (const Message& message : kMessages) {
        const pid_t child = ::fork();
        if (child == 0) return Check(message), 0;
        int status = 0;
        ::waitpid(child, &status, 0);
        if (status == 0) continue;
        ++failed;
        ::dprintf(STDOUT_FILENO, "message %td: failed\n", &message - kMessages);
    }
    return failed;
}
