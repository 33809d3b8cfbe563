#include "Workshop.h"

namespace {

const std::string kFirst = "{11111111-0000-0000-0000-00000000000A}";
const std::string kSecond = "{22222222-0000-0000-0000-00000000000B}";

using Texts = std::vector<std::string>;

const Texts kCircle = {"lyr1 class Circle - -", "lyr1 creatable Circle",
                       "lyr1 interface Circle IShape " + kFirst};
const Texts kCircleFunctions = {"fctLYRSysTSCreateCircle", "LYRSysTSCreateIShapeCircle"};

Texts operator+(Texts texts, const Texts& others) {
    texts.insert(texts.end(), others.begin(), others.end());
    return texts;
}

TEST(Manifest, RecordsAndHandWrittenLinesBecomeTheThreeFiles) {
    const Workshop shop;
    shop.Build(
        "libShapes.so",
        kCircle + Texts{"lyr1 class Round " + kFirst + " Circle", "lyr1 creatable Round",
                        "lyr1 extension ShapeLayer kept",
                        "lyr1 extends ShapeLayer Square ILayer " + kSecond},
        kCircleFunctions + Texts{"fctLYRSysTSCreateRound", "LYRSysTSDllGetClassObject",
                                 "LYRSysTSCreateILayerShapeLayer", "LYRSysTSCreateIOldRound"});
    shop.Write("old.dicts", "# by hand\nRound IOld Shapes\nCircle IShape libShapes\n");
    const Outcome outcome = shop.Lyr("manifest libShapes.so -o 'a new/folder' --with old.dicts");
    EXPECT_EQ(outcome.text, "");
    EXPECT_EQ(outcome.status, 0);
    const std::string head = "# Made from libShapes by lyr: changes here are lost.\n";
    EXPECT_EQ(shop.Read("a new/folder/libShapes.dicts"),
              head +
                  "Circle CreateInterface libShapes\n"
                  "Circle IShape libShapes\n"
                  "Round CreateInterface libShapes\n"
                  "Round IOld Shapes\n"
                  "Square ILayer libShapes EXTENDED_BY ShapeLayer\n");
    EXPECT_EQ(shop.Read("a new/folder/libShapes.iidts"),
              head + kFirst + " IShape\n" + kSecond + " ILayer\n");
    EXPECT_EQ(shop.Read("a new/folder/libShapes.clsidts"), head + kFirst + " Round libShapes\n");
}

/// A library with one fault, and the same without it; what a case leaves out is that of a sound
/// one.
struct Fault {
    std::string error;
    Texts records = kCircle, functions = kCircleFunctions;
    std::string code{}, options{}, line{};
    Texts mendedRecords = kCircle, mendedFunctions = kCircleFunctions;
    std::string mendedCode{}, mendedLine{};
};

const Fault kFaults[] = {
    {.error = "libA.so: error: LYRSysTSCreateIShapeCircle, for IShape of Circle, is missing in "
              "libA.so; perhaps its source is not linked in [no-entry-point]",
     .functions = {"fctLYRSysTSCreateCircle"}},
    {.error = "libA.so: error: fctLYRSysTSCreateCircle, for making a Circle, is hidden in libA.so; "
              "have the version script or the visibility let it out [no-entry-point]\n"
              "libA.so: note: so is LYRSysTSCreateIShapeCircle, for IShape of Circle",
     .options = "-Wl,--version-script=hide.map"},
    {.error =
         "libA.so: error: LYRSysTSCreateIShapeCircle, for IShape of Circle, is hidden in "
         "libA.so, perhaps because the interface IShapeCircle has that name, which clang keeps "
         "inside; give the interface or the class another name [no-entry-point]",
     .options = "-Wl,--version-script=one.map",
     .line = "Square IShapeCircle libOther"},
    {.error =
         "libA.so: error: LYRSysTSCreateIShapeCircle, for IShape of Circle, is not exported by "
         "libA.so, which has _Z26LYRSysTSCreateIShapeCirclePv; declare it extern \"C\" "
         "[no-entry-point]",
     .functions = {"fctLYRSysTSCreateCircle"},
     .code = "void LYRSysTSCreateIShapeCircle(void*) {}",
     .mendedFunctions = {"fctLYRSysTSCreateCircle"},
     .mendedCode = "extern \"C\" void LYRSysTSCreateIShapeCircle(void*) {}"},
    {.error =
         "libA.so: error: LYRSysTSDllGetClassObject, for making a Circle by its id, is missing",
     .records = {"lyr1 class Circle " + kFirst + " -", "lyr1 creatable Circle"},
     .functions = {"fctLYRSysTSCreateCircle"},
     .mendedRecords = {"lyr1 class Circle " + kFirst + " -"},
     .mendedFunctions = {"fctLYRSysTSCreateCircle"}},
    {.error = "libA.so: error: two classes are named Circle; give one of them another name, which "
              "is unique in a program [two-classes]",
     .records = kCircle + Texts{"lyr1 class Circle - -"},
     .mendedRecords = kCircle + Texts{"lyr1 class Round - -"}},
    {.error = "libA.so: error: the id " + kFirst +
              " is that of the class B, but already of A; give "
              "one of them an id of its own, from uuidgen [class-id]",
     .records = {"lyr1 class A " + kFirst + " -", "lyr1 class B " + kFirst + " -"},
     .functions = {},
     .mendedRecords = {"lyr1 class A " + kFirst + " -", "lyr1 class B " + kSecond + " -"},
     .mendedFunctions = {}},
    {.error = "libA.so: error: Round is named as an interface, but is a class; name the interface "
              "that is meant, or give one of them another name [class-as-interface]",
     .records = {"lyr1 class Round - -", "lyr1 interface Circle Round " + kFirst},
     .functions = {"LYRSysTSCreateRoundCircle"},
     .mendedRecords = {"lyr1 class Round - -", "lyr1 interface Circle IRound " + kFirst},
     .mendedFunctions = {"LYRSysTSCreateIRoundCircle"}},
    {.error = "libA.so: error: IShape of RoundCircle and IShapeRound of Circle have one entry "
              "point, LYRSysTSCreateIShapeRoundCircle; give one of the four another name "
              "[ambiguous-names]",
     .records = {"lyr1 interface Circle IShapeRound " + kFirst,
                 "lyr1 interface RoundCircle IShape " + kSecond},
     .functions = {"LYRSysTSCreateIShapeRoundCircle"},
     .mendedRecords = {"lyr1 interface Circle IShapeRound " + kFirst,
                       "lyr1 interface Circle IShape " + kSecond},
     .mendedFunctions = {"LYRSysTSCreateIShapeRoundCircle", "LYRSysTSCreateIShapeCircle"}},
    {.error = "libA.so: error: the interface IShape has the id " + kSecond + ", but already " +
              kFirst + "; a changed interface is a new one, with a name of its own [two-ids]",
     .records = kCircle + Texts{"lyr1 interface Square IShape " + kSecond},
     .functions = kCircleFunctions + Texts{"LYRSysTSCreateIShapeSquare"},
     .mendedRecords = kCircle + Texts{"lyr1 interface Square IShape " + kFirst},
     .mendedFunctions = kCircleFunctions + Texts{"LYRSysTSCreateIShapeSquare"}},
    {.error = "libA.so: error: the id " + kFirst +
              " is that of the interface IForm, but already of "
              "IShape; give one of them an id of its own, from uuidgen [two-names]",
     .records = kCircle + Texts{"lyr1 interface Circle IForm " + kFirst},
     .functions = kCircleFunctions + Texts{"LYRSysTSCreateIFormCircle"},
     .mendedRecords = kCircle + Texts{"lyr1 interface Circle IForm " + kSecond},
     .mendedFunctions = kCircleFunctions + Texts{"LYRSysTSCreateIFormCircle"}},
    {.error = "libA.so: error: MetaObject is a word of the component model's own",
     .records = {"lyr1 interface Circle MetaObject " + kFirst},
     .functions = {},
     .mendedRecords = {"lyr1 interface Circle IMetaObject " + kFirst},
     .mendedFunctions = {"LYRSysTSCreateIMetaObjectCircle"}},
    {.error =
         "libA.so: error: has no components, or their records are lost; perhaps they come from "
         "a static library, which the linker takes nothing from unasked: name the sources, or "
         "link an object library [no-records]",
     .records = {},
     .functions = {"LYRSysTSCreateIOldCircle"},
     .mendedRecords = {},
     .mendedFunctions = {"LYRSysTSCreateIOldCircle"},
     .mendedLine = "Circle IOld A.so"},
    {.error = "libA.so: error: its record \"lyr2 class A\" is not understood; take the lyr that "
              "belongs to the headers which the library was built with [bad-record]",
     .records = {"lyr2 class A"},
     .functions = {},
     .mendedRecords = {"lyr1 class A - -"},
     .mendedFunctions = {}},
    {.error =
         "libA.so: error: its record \"lyr1 interface Circle IShape {1-2}\" is not understood; "
         "build the library again [bad-record]",
     .records = {"lyr1 interface Circle IShape {1-2}"}},
    {.error =
         "by hand.dicts:1: error: \"Circle IShape libB\" contradicts \"Circle IShape libA\"; a "
         "class has an interface in one way, take one of them out [contradiction]\n"
         "libA.so: note: first said here\n1 error\n",
     .line = "Circle IShape libB",
     .mendedLine = "Circle IShape A"},
    {.error =
         "by hand.dicts:1: error: LYRSysTSCreateIShapecircel, for IShape of circel, is missing "
         "in libA.so, which has LYRSysTSCreateIShapeCircle; perhaps a name is not spelled as "
         "in the code [no-entry-point]\n1 error\n",
     .line = "circel IShape libA\ncircel IShape A",
     .mendedLine = "Circle IShape libA"},
    {.error = "by hand.dicts:1: error: LYRSysTSCreateIFormSquare, for IShape of Square, is missing",
     .line = "Square IShape libA ITFLEAF IForm",
     .mendedLine = "Square IShape libA EXTENDED_BY Circle"},
    {.error = "by hand.dicts:1: error: a line is CLASS INTERFACE LIBRARY, and perhaps ITFLEAF or "
              "EXTENDED_BY with a name [bad-line]",
     .line = "Circle ICircle",
     .mendedLine = "Circle ICircle libB"},
};

Outcome Try(const Workshop& shop, const Texts& records, const Texts& functions,
            const std::string& code, const std::string& options, const std::string& line) {
    shop.Write("hide.map", "{ local: *; };");
    shop.Write("one.map", "{ local: LYRSysTSCreateIShapeCircle; };");
    shop.Build("libA.so", records, functions, code, options);
    shop.Write("by hand.dicts", line + "\n");
    return shop.Lyr("manifest libA.so --with 'by hand.dicts'");
}

TEST(Manifest, EachFaultIsRefusedAndTheSameWithoutItAccepted) {
    for (const Fault& fault : kFaults) {
        SCOPED_TRACE(fault.error);
        const Workshop shop;
        Outcome outcome = Try(shop, fault.mendedRecords, fault.mendedFunctions, fault.mendedCode,
                              "", fault.mendedLine);
        EXPECT_EQ(outcome.text, "");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(shop.Read("libA.dicts"), "none");

        outcome = Try(shop, fault.records, fault.functions, fault.code, fault.options, fault.line);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.text.substr(0, fault.error.size()), fault.error) << outcome.text;
        for (const char* file : {"libA.dicts", "libA.iidts", "libA.clsidts"}) {
            EXPECT_EQ(shop.Read(file), "none") << file;
        }
    }
}

TEST(Manifest, LibrariesOfOneApplicationAreComparedWithEachOther) {
    const Workshop shop;
    shop.Build("libA.so", kCircle, kCircleFunctions);
    shop.Build("libB.so", Texts{"lyr1 class Square - -", "lyr1 interface Square IShape " + kFirst},
               {"LYRSysTSCreateIShapeSquare"});
    EXPECT_EQ(shop.Lyr("manifest --check libB.so libA.so").text, "");
    EXPECT_EQ(shop.Read("libA.dicts"), "none");

    // What follows from the class of one name is not told again for its interface.
    shop.Build("libB.so", kCircle, kCircleFunctions);
    EXPECT_EQ(shop.Lyr("manifest --check libB.so libA.so").text,
              "libB.so: error: two classes are named Circle; give one of them another name, which "
              "is unique in a program [two-classes]\n"
              "libA.so: note: the other is declared here\n"
              "1 error\n");
    shop.Build("libB.so", {"lyr1 interface Square IShape " + kSecond},
               {"LYRSysTSCreateIShapeSquare"});
    EXPECT_NE(shop.Lyr("manifest --check libB.so libA.so").text.find("[two-ids]"),
              std::string::npos);

    ASSERT_EQ(shop.Run("mkdir other && cp libA.so other").status, 0);
    EXPECT_NE(shop.Lyr("manifest --check other/libA.so libA.so").text.find("[two-libraries]"),
              std::string::npos);
}

TEST(Manifest, AStrippedLibraryKeepsItsRecords) {
    const Workshop shop;
    shop.Build("libA.so", kCircle, kCircleFunctions, "", "-Wl,--gc-sections -s");
    EXPECT_EQ(shop.Lyr("manifest libA.so").text, "");

    shop.Build("libA.so", kCircle, kCircleFunctions, "", "-fvisibility=hidden -s");
    EXPECT_NE(shop.Lyr("manifest libA.so").text.find("or it is hidden"), std::string::npos);
}

TEST(Manifest, WhatIsNoLibraryIsNamedForWhatItIs) {
    const Workshop shop;
    shop.Build("libA.so", kCircle, kCircleFunctions);
    ASSERT_EQ(shop.Run("head -c 4000 libA.so >libCut.so; ar rc libStatic.so libA.so; touch "
                       "libEmpty.so; cp libA.so 'lib A.so'; mkdir libFolder.so; '" LYR_COMPILER
                       "' -c -x c++ /dev/null -o libObject.so")
                  .status,
              0);
    const std::pair<const char*, const char*> cases[] = {
        {"libCut.so", "libCut.so: error: has no sections: it is cut short, or all are stripped "},
        {"libStatic.so", "libStatic.so: error: is a static library; "},
        {"libEmpty.so", "libEmpty.so: error: is no shared library "},
        {"libObject.so", "libObject.so: error: is an object file or a program, and no shared "},
        {"libFolder.so", "libFolder.so: error: "},
        {"libGone.so", "libGone.so: error: cannot be opened: No such file or directory "},
        {"'lib A.so'", "lib A.so: error: no dictionary can name this file; a library's name has "},
    };
    for (const auto& [file, error] : cases) {
        const Outcome outcome = shop.Lyr(std::string("manifest ") + file);
        EXPECT_EQ(outcome.status, 1) << outcome.text;
        EXPECT_EQ(outcome.text.find(error), 0U) << outcome.text;
    }
}

TEST(Manifest, FilesThatCannotBeWrittenAreToldAndNoneIsLeft) {
    const Workshop shop;
    shop.Build("libA.so", kCircle, kCircleFunctions);
    ASSERT_EQ(shop.Run("mkdir -p out/N.clsidts/in && echo old >out/N.dicts").status, 0);
    const Outcome outcome = shop.Lyr("manifest libA.so -o out --name N");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text.find("out/N.clsidts: error: cannot be written: "), 0U) << outcome.text;
    EXPECT_EQ(shop.Run("ls out").text, "N.clsidts\n");
}

TEST(Manifest, WrongUsageHasAStatusOfItsOwn) {
    const Workshop shop;
    for (const char* arguments :
         {"", "manifest", "manifest libA.so libB.so", "manifest a.so --name a/b"}) {
        EXPECT_EQ(shop.Lyr(arguments).status, 2) << arguments;
    }
    EXPECT_EQ(shop.Lyr("manifest --help").status, 0);
}

}  // namespace
