#include "TestRoads.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What a process tells that LYRDebug is set in: here, from now on.
std::string TextWith(const char* words, const std::function<void()>& action) {
    return ErrorsOf([&] {
        lyr::SetDebug(words);
        action();
        lyr::SetDebug(nullptr);
    });
}

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(Debug, UnsetNothingIsTold) {
    const Files files("Gadget I1 LyrNoSuchLibrary\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    ExpectErrors("", [&] {
        EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);
        EXPECT_EQ(LYRSysTSCreateExternalObject("Nobody", nullptr, nullptr), nullptr);
    });
}

TEST(Debug, TellsEachObjectThatIsNotMadeOnce) {
    const Files files(
        "Lost CreateInterface LyrNoSuchLibrary\nEmpty CreateInterface LyrTestParts\n");
    const std::string text = TextWith("explain", [] {
        for (int i = 0; i < 3; ++i) {
            LYRSysTSCreateExternalObject("Lost", nullptr, nullptr);
            LYRSysTSCreateExternalObject("Nobody", nullptr, nullptr);
            void* out = nullptr;
            LYRSysTSCreateInstance(Iid(1), IID_IUnknown, &out);
        }
    });
    EXPECT_EQ(Count(text, "lyr: "), 3U) << text;
    EXPECT_TRUE(Has(text, files.Pairs() + ":1  Lost CreateInterface LyrNoSuchLibrary")) << text;
}

TEST(Debug, QuestionsAreToldWithAllAndByPattern) {
    const Files files("");
    Thing gadget(Class("Gadget", ImplementationClass));
    EXPECT_EQ(TextWith("explain", [&] { Ask(gadget, Iid(1)); }), "");
    const std::string text = TextWith("explain=all,*/I*,-*/I3", [&] {
        Ask(gadget, Iid(2));
        Ask(gadget, Iid(3));
    });
    EXPECT_TRUE(Has(text, "lyr: no I2 for a Gadget: no dictionary line")) << text;
    EXPECT_FALSE(Has(text, "I3")) << text;
}

TEST(Debug, WhatIsRequiredIsToldOnceWhereItIsAskedFor) {
    const Files files("");
    Thing gadget(Class("Gadget", ImplementationClass));
    const auto require = [&] {
        for (int i = 0; i < 2; ++i) lyr::Report(lyr::ExplainRequest(&gadget, "I1"));
    };
    Ask(gadget, Iid(1));
    ExpectErrors("", require);
    EXPECT_EQ(TextWith("explain=Other/*", require), "");
    EXPECT_EQ(Count(TextWith("explain", require), "lyr: no I1 for a Gadget"), 1U);
}

TEST(Debug, OneCauseIsToldOnceAndSummedUp) {
    const Files files(
        "Gadget I1 LyrNoSuchLibrary\nGadget I2 LyrNoSuchLibrary\n"
        "Gadget I3 LyrNoSuchLibrary\n");
    // At its end a process tells the sum.
    const pid_t child = ::fork();
    if (child == 0) {
        std::freopen((files.path + "/told").c_str(), "w", stderr);
        lyr::SetDebug("explain=all");
        Thing gadget(Class("Gadget", ImplementationClass));
        for (unsigned i = 1; i <= 3; ++i) Ask(gadget, Iid(i));
        std::exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    std::ifstream file(files.path + "/told");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(Count(text, "remedy"), 1U) << text;
    EXPECT_TRUE(Has(text, ": 3 requests need it\n")) << text;
}

TEST(Debug, RemembersWhatWasMetAtTheFirstRequest) {
    const Files files("Gadget I1 LyrNoSuchLibrary\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    lyr::SetDebug("explain");
    EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);
    const Explanation explanation = lyr::ExplainRequest(&gadget, Iid(1));
    EXPECT_EQ(RootOf(explanation), "LibraryNotFound") << explanation.text;
    EXPECT_TRUE(Has(explanation.text, "looked      at the first request")) << explanation.text;
    // What has been registered since, answers.
    dynamic_cast<LYRSysTSMetaClassImpl*>(gadget.metaObject)
        ->_AddInterfaceFactory(Iid(1), Creator(1));
    EXPECT_EQ(lyr::ExplainRequest(&gadget, Iid(1)).answer, Answer::kYes);
}

TEST(Debug, TellsWhatAFactoryOrItsTieHasRefused) {
    const Files files("");
    auto* const stranger = Class("Stranger", ImplementationClass);
    static LYRSysTSMetaClass* theStranger = stranger;
    auto* const meta = dynamic_cast<LYRSysTSMetaClassImpl*>(Class("Gadget", ImplementationClass));
    meta->_AddInterfaceFactory(Iid(1), [](LYRSysTSBaseUnknown* object, unsigned char) -> IUnknown* {
        return LYRSysTSBOAInternal::CreateBOA(object, theStranger, nullptr);
    });
    Thing gadget(meta);
    const std::string text = TextWith("explain=all", [&] {
        EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);
        EXPECT_EQ(RootOf(lyr::ExplainRequest(&gadget, Iid(1))), "NotOfClass");
    });
    EXPECT_TRUE(Has(text, "of the class Stranger, from which Gadget is not derived")) << text;
    EXPECT_TRUE(Has(text, "also        the function that answers it gave null")) << text;
}

TEST(Debug, TellsBothSidesOfAContradiction) {
    const Files files("Point IPoint LyrTestParts\nPoint IPoint libOther\n");
    const std::string text = TextWith("explain", [] { Dictionary::EnsureInitDictionary(); });
    EXPECT_TRUE(Has(text, kRefused)) << text;
    EXPECT_TRUE(Has(text, files.Pairs() + ":2: \"Point IPoint\" is said twice, with another "
                                          "library libOther, first libLyrTestParts"))
        << text;
    EXPECT_TRUE(Has(text, "first       " + files.Pairs() + ":1")) << text;
    const std::string shared = TextWith("explain", [] {
        Class("Twice", ImplementationClass);
        Class("Twice", KeptExtension);
    });
    EXPECT_TRUE(Has(shared, "\"Twice MetaObject\" is said twice, with another kind of class"))
        << shared;
}

TEST(Debug, ContradictionsByIdsHaveNamesAndARefusedLineIsNobodysPlace) {
    const Files files("Point I2 libOther\n");
    Dictionary::AddDictionaryTS("Point", "I2", "LyrTestParts", nullptr, nullptr, nullptr, nullptr);
    Dictionary::AddDictionaryTS(Iid(8), Iid(1), Creator(1), nullptr);
    const std::string text = TextWith("explain", [] {
        Dictionary::EnsureInitDictionary();
        Dictionary::AddDictionaryTS("Point", "I2", "LyrTestThird", nullptr, nullptr, nullptr,
                                    nullptr);
        Dictionary::AddDictionaryTS(Iid(8), Iid(1), Creator(2), nullptr);
    });
    EXPECT_EQ(Count(text, "is said twice"), 3U) << text;
    EXPECT_FALSE(Has(text, "first       ")) << text;
    EXPECT_TRUE(Has(text, "} I1 {")) << text;
}

TEST(Debug, WritesToAFileAndTellsUnknownWords) {
    const Files files("");
    const std::string path = files.path + "/report";
    const std::string words = "explain,explain-file=" + path + ",explian";
    const std::string text =
        TextWith(words.c_str(), [] { LYRSysTSCreateExternalObject("Nobody", nullptr, nullptr); });
    EXPECT_EQ(text, "lyr: LYRDebug has no word \"explian\"; LYRDebug=help lists them\n");
    std::ifstream file(path);
    const std::string report{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(Has(report, "lyr: no Nobody is made")) << report;
}

TEST(Debug, AHandlerTakesAllMessages) {
    const Files files("Point IPoint LyrTestParts\nPoint IPoint libOther\nbad\n");
    std::string taken;
    lyr::SetMessageHandler(
        [](const char* text, void* context) { *static_cast<std::string*>(context) += text; },
        &taken);
    ExpectErrors("", [] { Dictionary::EnsureInitDictionary(); });
    lyr::SetMessageHandler(nullptr, nullptr);
    EXPECT_EQ(taken, kRefused + "Problem reading dico : " + files.Pairs() + " line 3\n");
    ExpectErrors("back\n", [] { lyr::Say("back\n"); });
}

}  // namespace
