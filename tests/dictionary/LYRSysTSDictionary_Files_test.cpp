#include "TableWalk.h"
#include "TestSupport.h"

#include <barrier>
#include <fcntl.h>
#include <iomanip>
#include <sstream>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

TEST(DictionaryFiles, EveryRequestAsksAgainUntilThePathIsSetAndNotBanned) {
    const auto noPath = "Error in reading dictionaries : LYRDictionaryPath is not defined.\n";
    const auto request = [] { Dictionary::QueryDictionary("C", "I", 1); };
    ::unsetenv("LYRDictionaryPath");
    ExpectErrors("", [] { Dictionary::QueryMetaObject("C"); });
    ExpectErrors(noPath, request);
    ExpectErrors(noPath, [] { Dictionary::GetInterfaceName(G(1)); });
    UseDictionaryPath("");
    ::setenv("LYRDictionaryNoPathNoFallback", "", 1);
    ExpectErrors(noPath, request);
    UseDictionaryPath("");
    ExpectErrors("", request);
    ::unsetenv("LYRDictionaryPath");
    ExpectErrors("", request);
}

TEST(DictionaryFiles, TheStepsOfTheScanAnswerOutsideItToo) {
    static const int file = ::dup(0);
    ::close(file);
    struct : LYRSysTSDictionaryReader {
        HRESULT PutInfo(char**, int, const char*, int) override {
            EXPECT_EQ(::fcntl(file, F_GETFD), FD_CLOEXEC) << "others inherit the file";
            return E_FAIL;
        }
    } refuser;
    const TempDirectory files;
    const std::string path = files.Write("a.dicts", "C I L\n");
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(nullptr, &refuser), E_FAIL);
    EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), nullptr), E_FAIL);
    EXPECT_EQ(Dictionary::_DicoIsAlreadyRead("a.dicts"), 0);
}

TEST(DictionaryFiles, AreReadAgainWhenFileDescriptorsWereShort) {
    const TempDirectory files;
    files.Write("a.dicts", "C I L\n");
    UseDictionaryPath(files.path);
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const auto findWith = [&](rlim_t descriptors) {
        const rlimit limit{descriptors, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &limit);
        const Record* const found = Dictionary::QueryDictionary("C", "I", 1);
        ::setrlimit(RLIMIT_NOFILE, &before);
        return found;
    };
    ExpectErrors("Error : scandir on " + files.path + "\n--> scandir(): Too many open files\n",
                 [&] { EXPECT_EQ(findWith(0), nullptr); });
    ExpectErrors("", [&] { EXPECT_NE(findWith(before.rlim_cur), nullptr); });
}

TEST(DictionaryFiles, ReadByTwoThreadsLoseNoLine) {
    const TempDirectory files;
    std::barrier start(2);
    const auto read = [&](int first, const std::string& name, LYRSysTSDictionaryReader&& reader) {
        std::ostringstream lines;  // ids of one bucket, in whose chain both threads seek the end
        for (int id = first; id < first + 128; ++id) {
            lines << "{000000" << std::hex << std::setw(2) << std::setfill('0') << id
                  << "-0000-0000-0000-000000000000} N" << id << "\n";
        }
        const std::string path = files.Write(std::to_string(first) + name, lines.str());
        start.arrive_and_wait();
        EXPECT_EQ(Dictionary::_ReadDictionary(path.c_str(), &reader), S_OK);
    };
    const auto readBoth = [&](int first) {
        read(first, ".iidts", LYRSysTSIidReader());
        read(first, ".clsidts", LYRSysTSClsidReader());
    };
    {
        const std::jthread other(readBoth, 128);
        readBoth(0);
    }
    const auto count = [](int, const auto&) {};
    EXPECT_EQ(Walk<IIDNameLink>(kInterfacesById, count, 1024), 256U);
    EXPECT_EQ(Walk<IIDNameLink>(kInterfacesByName, count, 1024), 256U);
    EXPECT_EQ(Walk<CLSIDNameLink>(kClassesById, count, 1024), 256U);
}
