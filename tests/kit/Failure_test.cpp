#include "TestSupport.h"
#include "Workshop.h"

namespace {

/// What `action` throws, as "reason text" up to the end of the first line. `more` is the rest.
template <class Action>
std::string FailureOf(Action action, std::string* more = nullptr) {
    try {
        static_cast<void>(action());
    } catch (const lyr::Failure& failure) {
        const std::string text = failure.what();
        const bool failed = failure.Result() < 0;
        if (more != nullptr) *more = text.substr(text.find('\n') + 1);
        return std::to_string(static_cast<int>(failure.Why())) + (failed ? " " : " ? ") +
               text.substr(0, text.find('\n'));
    }
    return "nothing";
}

constexpr CLSID kLostId = LYR_ID("c0000000-0000-4000-8000-000000000001");
constexpr CLSID kEmptyId = LYR_ID("c0000000-0000-4000-8000-000000000002");
constexpr CLSID kUnknownId = LYR_ID("c0000000-0000-4000-8000-000000000003");

class FailureTest : public testing::Test {
protected:
    FailureTest() {
        _directory.Write("more.dicts",
                         "Lost CreateInterface LyrNoSuchLibrary\n"
                         "Empty CreateInterface LyrTestWorkshop\n");
        _directory.Write("more.clsidts",
                         "{C0000000-0000-4000-8000-000000000001} Lost LyrNoSuchLibrary\n"
                         "{C0000000-0000-4000-8000-000000000002} Empty LyrTestWorkshop\n");
        UseDictionaryPath(LYR_KIT_DICTIONARY ":" + _directory.path);
    }

private:
    TempDirectory _directory;
};

TEST_F(FailureTest, ByNameSaysWhichItWas) {
    const auto create = [](const char* name) {
        return FailureOf([=] { return lyr::Create<IColor>(name); });
    };
    EXPECT_EQ(create("Nobody"),
              "2 lyr: no Nobody is made: no dictionary line and no code says what makes a Nobody");
    EXPECT_EQ(create(nullptr), "2 lyr: no object is made: no class was named");
    EXPECT_EQ(
        create("Lost"),
        "3 lyr: no Lost is made: LyrNoSuchLibrary is not found: libLyrNoSuchLibrary.so: cannot "
        "open shared object file: No such file or directory");
    EXPECT_EQ(create("Empty"),
              "4 lyr: no Empty is made: LyrTestWorkshop exports no fctLYRSysTSCreateEmpty");
    EXPECT_EQ(create("Failing"),
              "5 lyr: no Failing is made: the function that makes it gave no object");
    EXPECT_EQ(create("StarMaker"),
              "1 lyr: no IColor for a StarMaker: no dictionary line for StarMaker and IColor");
    EXPECT_EQ(create("Square"), "nothing");
    std::string more;
    FailureOf([] { return lyr::Create<IColor>("Failing"); }, &more);
    EXPECT_EQ(more, "  perhaps     its constructor; the latest that failed threw: no luck today");
    // The object of the failed constructor was deleted once.
    EXPECT_EQ(lyr::Create<ICounts>("Counts")->Living(), 0);
}

TEST_F(FailureTest, ByIdSaysWhichItWas) {
    const auto create = [](const CLSID& clsid) {
        return FailureOf([&] { return lyr::Create<ICounts>(clsid); });
    };
    EXPECT_EQ(create(kUnknownId),
              "2 lyr: no object is made: no dictionary line names the class of the id");
    EXPECT_EQ(
        create(kLostId),
        "3 lyr: no Lost is made: LyrNoSuchLibrary is not found: libLyrNoSuchLibrary.so: cannot "
        "open shared object file: No such file or directory");
    EXPECT_EQ(create(kEmptyId),
              "5 lyr: no Empty is made: the function that makes it gave no object");
    EXPECT_EQ(create(kSquareId),
              "1 lyr: no ICounts for a Square: no dictionary line for Square and ICounts");
}

TEST_F(FailureTest, RequestsSayOfWhichClass) {
    const auto square = lyr::Create<IShape>(kSquareId);
    const std::string missing =
        "1 lyr: no IMissing for a Square: no dictionary line for Square and IMissing";
    EXPECT_EQ(FailureOf([&] { return square.As<IMissing>(); }), missing);
    // An extension answers for the object that it extends.
    const auto view = square.As<IView>();
    EXPECT_EQ(FailureOf([&] { return view.As<IMissing>(); }), missing);
    EXPECT_EQ(FailureOf([] { return lyr::Ref<IShape>().As<IColor>(); }),
              "0 lyr: no IColor: a null reference was asked");
}

}  // namespace
