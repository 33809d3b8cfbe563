#include "TestRoads.h"

#include <thread>

namespace {

using lyr::Loading;

/// One way to go wrong: the line of the dictionary, and what is told of the request for I1 of a
/// Gadget, a part of the text.
struct Case {
    const char* name;
    const char* line;
    const char* root;
    const char* text;
};

std::ostream& operator<<(std::ostream& stream, const Case& one) {
    return stream << one.name;
}

class ExplainCase : public testing::TestWithParam<Case> {};

// LyrTestParts: tests/metaclass/Parts.cpp.
constexpr Case kCases[] = {
    {"leaf_unknown", "Gadget I1 LyrTestParts ITFLEAF ILost\n", "UnknownLeaf", "ILost"},
    {"leaf_not_derived", "Gadget I1 LyrTestParts ITFLEAF IStranger\n", "LeafNotDerived",
     "IStranger is not derived from I1"},
    {"extension_unknown", "Gadget I1 LyrTestParts EXTENDED_BY LostExt\n", "UnknownExtension",
     "LostExt"},
    {"extension_is_a_class", "Gadget I1 LyrTestParts EXTENDED_BY Plain\n", "NotAnExtension",
     "Plain"},
    {"extension_of_another", "Gadget I1 LyrTestParts EXTENDED_BY OtherExt\n", "NotExtended",
     "OtherExt does not extend Gadget"},
};

TEST_P(ExplainCase, TellsTheCauseAndThePlaceBeforeAndAfterTheRequest) {
    const Files files(std::string("# a comment\n") + GetParam().line);
    Class("IStranger", PlainClass);
    Class("Plain", ImplementationClass);
    Thing gadget(Class("Gadget", ImplementationClass));

    const Explanation before = lyr::ExplainRequest(&gadget, Iid(1), Loading::kYes);
    EXPECT_EQ(before.answer, Answer::kNo) << before.text;
    EXPECT_EQ(RootOf(before), GetParam().root) << before.text;
    EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);

    const Explanation after = lyr::ExplainRequest(&gadget, "I1", Loading::kYes);
    EXPECT_EQ(RootOf(after), GetParam().root) << after.text;
    EXPECT_TRUE(Has(after.text, GetParam().text)) << after.text;
    EXPECT_TRUE(Has(after.text, files.Pairs() + ":2")) << after.text;
    EXPECT_TRUE(Has(after.text, "stays \"none\"")) << after.text;
}

INSTANTIATE_TEST_SUITE_P(All, ExplainCase, testing::ValuesIn(kCases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(Explain, LeavesEverythingAsItIsUnlessItMayLoad) {
    const Files files("Gadget I1 LyrTestParts\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    EXPECT_EQ(RootOf(lyr::ExplainRequest(&gadget, Iid(1))), "FilesNotRead");
    // Were they read by now, this one would not be.
    std::filesystem::rename(files.path + "/a.dicts", files.path + "/b.dicts");

    EXPECT_EQ(Ask(gadget, Iid(2)), E_NOINTERFACE);
    const Explanation unloaded = lyr::ExplainRequest(&gadget, Iid(1));
    EXPECT_EQ(unloaded.answer, Answer::kUnknown) << unloaded.text;
    EXPECT_EQ(RootOf(unloaded), "LibraryNotLoaded");
    EXPECT_TRUE(Has(unloaded.text, "b.dicts:1")) << unloaded.text;
    EXPECT_EQ(LYRSysTSDictionary::QueryMetaObject("GadgetExt"), nullptr);

    EXPECT_EQ(lyr::ExplainRequest(&gadget, Iid(1), Loading::kYes).answer, Answer::kYes);
    EXPECT_NE(LYRSysTSDictionary::QueryMetaObject("GadgetExt"), nullptr);
    const auto* const table = dynamic_cast<LYRSysTSMetaClassImpl*>(gadget.metaObject);
    EXPECT_EQ(const_cast<LYRSysTSMetaClassImpl*>(table)->_GetInterfaceFactory(Iid(1)), nullptr);
}

TEST(Explain, GoesTheRoadOfTheBases) {
    const Files files("Shape I1 LyrNoSuchLibrary\nGadget I2 LyrTestParts\n");
    LYRSysTSMetaClass* const shape = Class("Shape", ImplementationClass);
    Thing circle(Class("Circle", ImplementationClass, shape));
    const Explanation ofBase = lyr::ExplainRequest(&circle, Iid(1), Loading::kYes);
    EXPECT_EQ(RootOf(ofBase), "LibraryNotFound") << ofBase.text;
    EXPECT_TRUE(Has(ofBase.text, "Shape I1 LyrNoSuchLibrary")) << ofBase.text;
    const Explanation none = lyr::ExplainRequest(&circle, Iid(2), Loading::kYes);
    EXPECT_TRUE(Has(none.text, "no line for Circle or its base Shape in 1 folder, 2 files"))
        << none.text;
}

TEST(Explain, SaysWhyALineIsPassedOver) {
    const Files files("bad line\nGadget I1 LyrTestParts\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);
    const Explanation explanation = lyr::ExplainRequest(&gadget, Iid(1));
    EXPECT_EQ(RootOf(explanation), "NoEntry") << explanation.text;
    EXPECT_TRUE(Has(explanation.text, ":2  Gadget I1 LyrTestParts  (line 1 has less than"))
        << explanation.text;
}

TEST(Explain, ALineOfABaseThatIsPassedOverIsNoStrangers) {
    const Files files("Gadget I5 X FOO bar\nShape I1 LyrTestParts\n");
    Thing gadget(Class("Gadget", ImplementationClass, Class("Shape", ImplementationClass)));
    const std::string text = lyr::ExplainRequest(&gadget, Iid(1), Loading::kYes).text;
    EXPECT_TRUE(Has(text, "not read    " + files.Pairs() + ":1  has more behind")) << text;
    EXPECT_TRUE(Has(text, "passed over " + files.Pairs() + ":2  Shape I1")) << text;
    EXPECT_FALSE(Has(text, "another class")) << text;
}

TEST(Explain, ByNameBeforeTheFilesAreReadNothingIsCertain) {
    const Files files("Gadget I1 LyrTestParts\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    const Explanation before = lyr::ExplainRequest(&gadget, "I1");
    EXPECT_EQ(before.answer, Answer::kUnknown) << before.text;
    EXPECT_EQ(RootOf(before), "FilesNotRead") << before.text;
}

TEST(Explain, AnAbsenceThatIsKeptOutweighsWhatHasComeSince) {
    const Files files("");
    Thing gadget(Class("Gadget", ImplementationClass));
    EXPECT_EQ(Ask(gadget, Iid(1)), E_NOINTERFACE);
    Add("Gadget", "I1", "LyrTestParts");
    for (const Loading loading : {Loading::kNo, Loading::kYes}) {
        const Explanation explanation = lyr::ExplainRequest(&gadget, Iid(1), loading);
        EXPECT_EQ(explanation.answer, Answer::kNo);
        EXPECT_EQ(RootOf(explanation), "KnownAbsence") << explanation.text;
    }
}

TEST(Explain, IdsAndNamesThatDoNotAgree) {
    const Files files("");
    files.Write("b.iidts", "no id\n{A0000010-0000-0000-0000-000000000000} I10\n");
    files.Write("b.clsidts",
                "{A0000011-0000-0000-0000-000000000000}\n"
                "{A0000012-0000-0000-0000-000000000000} Thing LyrTestParts\n");
    Thing gadget(Class("Gadget", ImplementationClass));
    const Explanation other = lyr::ExplainRequest(&gadget, Iid(0x20), Loading::kYes, "I1");
    EXPECT_EQ(RootOf(other), "NameOfAnotherId") << other.text;
    EXPECT_TRUE(Has(other.text, "give I1 another id, {A0000001-")) << other.text;

    const std::string unread = "b.iidts:2  {A0000010-0000-0000-0000-000000000000} I10  (line 1 ";
    EXPECT_TRUE(Has(lyr::ExplainRequest(&gadget, Iid(0x10)).text, unread));
    const std::string byName = lyr::ExplainRequest(&gadget, "I10").text;
    EXPECT_TRUE(Has(byName, unread)) << byName;
    EXPECT_TRUE(Has(byName, "not read    " + files.path + "/b.clsidts:1  has neither")) << byName;
    EXPECT_TRUE(Has(byName, "the name is written I1)")) << byName;
    EXPECT_TRUE(Has(lyr::ExplainCreation(Iid(0x12)).text, "b.clsidts:2  {A0000012-"));
}

TEST(Explain, WhatIsAskedMayBeTheFault) {
    const Files files("");
    Thing plain(Class("Plain", PlainClass));
    Thing none(nullptr);
    Thing gadget(Class("Gadget", ImplementationClass));
    const auto root = [](auto asked, auto what) {
        return RootOf(lyr::ExplainRequest(asked, what, Loading::kYes));
    };
    EXPECT_EQ(root(static_cast<IUnknown*>(nullptr), Iid(1)), "NullObject");
    EXPECT_EQ(root(static_cast<IUnknown*>(&none), Iid(1)), "NoMetaObject");
    EXPECT_EQ(root(static_cast<IUnknown*>(&plain), Iid(1)), "NoFactories");
    EXPECT_EQ(root(static_cast<IUnknown*>(&gadget), G(99)), "IdWithoutName");
    EXPECT_EQ(root(static_cast<IUnknown*>(&gadget), "INobody"), "UnknownInterface");
    EXPECT_EQ(lyr::ExplainRequest("Nobody", "I1").answer, Answer::kUnknown);
    EXPECT_EQ(lyr::ExplainRequest(&gadget, IID_IUnknown).answer, Answer::kYes);
    EXPECT_TRUE(Has(LYRExplain(nullptr, "I1"), "no object was given"));
}

TEST(Explain, TellsThatNoFolderIsNamedAndSaysNothingItself) {
    ::unsetenv("LYRDictionaryPath");
    Thing gadget(Class("Gadget", ImplementationClass));
    ExpectErrors("", [&] {
        EXPECT_EQ(RootOf(lyr::ExplainRequest(&gadget, Iid(1))), "NoFolders");
        EXPECT_EQ(RootOf(lyr::ExplainCreation("Gadget")), "NoFolders");
    });
}

TEST(Explain, CreationGoesTheSameRoad) {
    const Files files(
        "Thing CreateInterface LyrTestParts\nLost CreateInterface LyrNoSuchLibrary\n"
        "Empty CreateInterface LyrTestHook\n");
    files.Write("a.clsidts",
                "{A0000001-0000-0000-0000-000000000000} Thing LyrTestParts\n"
                "{A0000002-0000-0000-0000-000000000000} Other LyrTestHook\n");
    const auto root = [](auto what) { return RootOf(lyr::ExplainCreation(what, Loading::kYes)); };
    EXPECT_EQ(root("Thing"), "none");
    EXPECT_EQ(root("Lost"), "LibraryNotFound");
    EXPECT_EQ(root("Empty"), "NoFunction");
    EXPECT_EQ(root("Nobody"), "NoCreator");
    EXPECT_EQ(root(Iid(1)), "none");
    EXPECT_EQ(root(Iid(2)), "NoFunction");
    EXPECT_EQ(root(Iid(3)), "UnknownClassId");
}

TEST(Explain, MayBeAskedWhileOthersLoadAndRequest) {
    std::string lines;
    for (char i = '0'; i <= '9'; ++i) lines += std::string("Gadget I") + i + " LyrTestParts\n";
    const Files files(lines);
    Thing gadget(Class("Gadget", ImplementationClass));
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (unsigned i = 2; i <= 9; ++i) {
                EXPECT_EQ(t % 2 == 0 ? Ask(gadget, Iid(i)) : E_NOINTERFACE, E_NOINTERFACE);
                const Explanation explanation = lyr::ExplainRequest(&gadget, Iid(i), Loading::kYes);
                EXPECT_EQ(RootOf(explanation), "NoFunction") << explanation.text;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(NearNames, AreNearInTheirLettersAndNeverTheNameItself) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(lyr::NearNames("Circle", {"Circle", "Square", "Cirlce", "circle", "CIRCLE_"}),
              (Names{"circle", "CIRCLE_", "Cirlce"}));
    EXPECT_EQ(lyr::NearNames("MYCIRCLE", {"MYCIRCLA", "MYCIRCLB", "MYCIRCLC", "mycircle"}).front(),
              "mycircle");
    EXPECT_EQ(lyr::NearNames("Io", {"Up", "In"}), Names{});
}

}  // namespace
