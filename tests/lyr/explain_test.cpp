#include "Workshop.h"

#include <nlohmann/json.hpp>

namespace {

const std::string kId = "{11111111-0000-0000-0000-00000000000A}";

/// A shop with IShape's id, and one line of a dictionary after the other.
Workshop& Fill(Workshop& shop, const std::string& lines) {
    shop.Run("mkdir -p d");
    shop.Write("d/i.iidts", kId + " IShape\n");
    shop.Write("d/p.dicts", lines);
    return shop;
}

Outcome Explain(const Workshop& shop, const std::string& arguments) {
    return shop.Run("LD_LIBRARY_PATH= '" LYR_PROGRAM "' explain -d d -l . " + arguments);
}

bool Holds(const Outcome& outcome, const std::string& text) {
    return outcome.text.find(text) != std::string::npos;
}

TEST(Explain, TellsTheCauseThenTheRoadThenTheRemedy) {
    Workshop shop;
    shop.Build("libShapes.so", {}, {"LYRSysTSCreateIShapeCircle"});
    const Outcome missing = Explain(Fill(shop, "Circle IShape libShape\n"), "Circle IShape");
    EXPECT_EQ(missing.text,
              "lyr: no IShape for a Circle: libShape is not found\n"
              "  asked for   IShape {11111111-0000-0000-0000-00000000000A}\n"
              "  looked      now, in 2 files, without loading any library\n"
              "  named       d/i.iidts:1  {11111111-0000-0000-0000-00000000000A} IShape\n"
              "  found       d/p.dicts:1  Circle IShape libShape\n"
              "  tried       libShape.so in ., the program's old run path, the loader's cache and "
              "the system's folders\n"
              "  near        libShapes.so\n"
              "  not known   what programs and libraries register by their code\n"
              "  remedy      put it where the loader looks, name its folder with --libraries if "
              "the program finds it there, or correct the line\n");
    EXPECT_EQ(missing.status, 1);

    const Outcome found = Explain(Fill(shop, "Circle IShape libShapes\n"),
                                  "Circle 11111111-0000-0000-0000-00000000000a");
    EXPECT_EQ(found.text.substr(0, found.text.find('\n')), "lyr: IShape for a Circle: yes");
    EXPECT_TRUE(Holds(found,
                      "  library     libShapes.so (./libShapes.so)\n"
                      "  function    LYRSysTSCreateIShapeCircle\n"));
    EXPECT_EQ(found.status, 0);

    const auto json = nlohmann::json::parse(Explain(shop, "Circle IRound --json").text);
    EXPECT_EQ(json["format"], 1);
    EXPECT_EQ(json["answer"], "no");
    EXPECT_EQ(json["cause"], "no dictionary line for Circle and IRound");
    EXPECT_EQ(Explain(shop, "Circle").status, 2);
}

TEST(Explain, BaseClassesAreAskedAsFarAsRecordsNameThem) {
    Workshop shop;
    shop.Build("libA.so",
               {"lyr1 class Round - -", "lyr1 class Circle - Round", "lyr1 class Dot - Circle"},
               {"LYRSysTSCreateIShapeRound"});
    Fill(shop, "Round IShape libA\nSquare IOther libA\n");
    const Outcome outcome = Explain(shop, "Dot IShape");
    EXPECT_EQ(outcome.status, 0) << outcome.text;
    EXPECT_TRUE(Holds(outcome, "  then        ./libA.so  its base class Circle"));
    EXPECT_TRUE(Holds(outcome, "  found       d/p.dicts:1  Round IShape libA\n"));

    // A class without records may derive from one that answers, or from none.
    EXPECT_EQ(Explain(shop, "Square IShape").status, 3);
    EXPECT_EQ(Explain(shop, "Round IOther").status, 1);
    EXPECT_EQ(
        Explain(Fill(shop, "Round IShape libA\nSquare IShape libGone\n"), "Square IShape").status,
        3);
    EXPECT_EQ(
        Explain(Fill(shop, "Oval IShape libGone\nSquare IShape libGone\n"), "Square IShape").status,
        1);
    // What every component derives from is a class, too.
    shop.Build("libA.so", {"lyr1 class Dot - -"}, {"LYRSysTSCreateIShapeLYRSysTSBaseUnknown"});
    EXPECT_EQ(Explain(Fill(shop, "LYRSysTSBaseUnknown IShape libA\n"), "Dot IShape").status, 0);
}

TEST(Explain, ExtensionsAnswerForWhatTheirRecordsList) {
    Workshop shop;
    shop.Build("libA.so", {"lyr1 extension Layer kept", "lyr1 extends Layer Circle IShape " + kId},
               {"LYRSysTSCreateIShapeLayer", "LYRSysTSCreateIShapeRim"});
    shop.Build("libB.so", {}, {"LYRSysTSCreateIShapeLayer"});
    Fill(shop, "Circle IShape libA EXTENDED_BY Layer\nSquare IShape libA EXTENDED_BY Layer\n");
    EXPECT_EQ(Explain(shop, "Circle IShape").status, 0);
    EXPECT_TRUE(Holds(Explain(shop, "Square IShape"), "Layer does not extend Square"));
    EXPECT_TRUE(Holds(Explain(shop, "Layer IShape"), "pass each request on"));
    Fill(shop, "Circle IShape libA EXTENDED_BY Rim\nOval IOther libA\n");
    EXPECT_EQ(Explain(shop, "Circle IShape").status, 3);
    // The library that the line names does not bring the extension's description.
    Fill(shop, "Circle IShape libB EXTENDED_BY Layer\nOval IOther libA\n");
    EXPECT_EQ(Explain(shop, "Circle IShape").status, 3);
}

TEST(Explain, WhatIsNearOrPassedOverIsShown) {
    Workshop shop;
    shop.Build("libA.so", {}, {"LYRSysTSCreateIShapeCircle"});
    Fill(shop, "Circle IShape libA\nbad line\nSquare IShape libA\n");
    Outcome outcome = Explain(shop, "Cirlce IShape");
    EXPECT_TRUE(Holds(outcome,
                      "  near        d/p.dicts:1  Circle IShape libA  (the class is "
                      "written Circle)\n"))
        << outcome.text;
    EXPECT_EQ(outcome.status, 3);
    outcome = Explain(shop, "Circle I_shape");
    EXPECT_TRUE(Holds(outcome, "(the interface is written IShape)\n")) << outcome.text;
    EXPECT_EQ(outcome.status, 1);
    outcome = Explain(shop, "Square IShape");
    EXPECT_TRUE(Holds(outcome,
                      "  passed over d/p.dicts:3  Square IShape libA  (line 2 ends the "
                      "reading)\n"))
        << outcome.text;
    // An id without a name, and a name without an id, code may register.
    EXPECT_EQ(Explain(shop, "Circle 22222222-0000-0000-0000-00000000000a").status, 3);
    shop.Write("d/i.iidts", "# none\n");
    EXPECT_EQ(Explain(shop, "Circle IShape").status, 3);
    EXPECT_EQ(Explain(shop, "Circle IUnknown").status, 0);
}

}  // namespace
