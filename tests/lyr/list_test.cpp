#include "Workshop.h"

namespace {

TEST(List, TellsWhatAProcessWouldHaveOfTheDictionaries) {
    const Workshop shop;
    shop.Build("libA.so", {}, {});
    shop.Run("mkdir d");
    shop.Write("d/a.dicts",
               "Circle IShape libA\nCircle ILayer A EXTENDED_BY Layer\nCircle IShape B\n");
    shop.Write("d/a.iidts", "{11111111-0000-0000-0000-00000000000a} IShape\n");
    shop.Write("d/b.clsidts", "{22222222-0000-0000-0000-00000000000b} Circle\n");
    EXPECT_EQ(shop.Lyr("list -d d -l .").text,
              "classes:\n"
              "Circle  id {22222222-0000-0000-0000-00000000000B}  d/a.dicts:1\n"
              "extensions:\n"
              "Layer  d/a.dicts:2\n"
              "interfaces:\n"
              "ILayer  d/a.dicts:2\n"
              "IShape  id {11111111-0000-0000-0000-00000000000A}  d/a.dicts:1\n"
              "libraries:\n"
              "libA  file ./libA.so  d/a.dicts:1\n"
              "files:\n"
              "d/a.dicts\nd/a.iidts\nd/b.clsidts\n");
    EXPECT_EQ(shop.Lyr("list extensions -d d").text, "Layer  d/a.dicts:2\n");
    EXPECT_EQ(shop.Lyr("list boxes -d d").status, 2);
}

TEST(Show, FindsNamesAndIdsHoweverTheyAreWritten) {
    const Workshop shop;
    shop.Run("mkdir d");
    shop.Write("d/a.dicts", "Circle IShape libA\n");
    shop.Write("d/a.iidts", "{11111111-0000-0000-0000-00000000000A} IShape\n");
    const std::string shape =
        "interface IShape\n"
        "  id {11111111-0000-0000-0000-00000000000A}\n"
        "  d/a.dicts:1: Circle IShape libA\n"
        "  d/a.iidts:1: {11111111-0000-0000-0000-00000000000A} IShape\n";
    for (const char* name : {"IShape", "11111111-0000-0000-0000-00000000000a",
                             "'{11111111-0000-0000-0000-00000000000A}'"}) {
        EXPECT_EQ(shop.Lyr(std::string("show -d d ") + name).text, shape) << name;
    }
    EXPECT_EQ(shop.Lyr("show -d d A").text,
              "library libA\n  no file is found\n  d/a.dicts:1: Circle IShape libA\n");
    const Outcome outcome = shop.Lyr("show -d d ISquare");
    EXPECT_EQ(outcome.text, "lyr: nothing is called ISquare in 2 files\n");
    EXPECT_EQ(outcome.status, 1);
}

/// Lines name libA, which needs libD; libB has lines and no file.
void BuildChain(const Workshop& shop) {
    shop.Build("libD.so", {}, {}, "int d;", "-Wl,-soname,libD.so.1");
    shop.Build("libA.so", {}, {}, "extern int d; int* a = &d;", "libD.so");
    shop.Run("mv libD.so libD.so.1; mkdir d");
    shop.Write("d/a.dicts",
               "Circle IShape libA\nCircle ILayer A EXTENDED_BY Layer\nOval IShape libB\n");
}

TEST(Why, FollowsWhatLibrariesNeedBackToALine) {
    const Workshop shop;
    BuildChain(shop);
    EXPECT_EQ(shop.Lyr("why -d d -l . libD.so.1").text,
              "d/a.dicts:1: Circle IShape libA\n"
              "  and 1 line more\n"
              "  loads libA.so (./libA.so)\n"
              "  which needs libD.so.1 (./libD.so.1)\n");
    EXPECT_EQ(shop.Lyr("why -d d -l . A --all").text,
              "d/a.dicts:1: Circle IShape libA\n"
              "d/a.dicts:2: Circle ILayer A EXTENDED_BY Layer\n"
              "  loads libA.so (./libA.so)\n");
    const Outcome outcome = shop.Lyr("why -d d -l . libgone.so");
    EXPECT_EQ(outcome.text, "lyr: no line and no library leads to libgone.so\n");
    EXPECT_EQ(outcome.status, 1);
}

TEST(Graph, IsOfTheClassesOrOfTheLibraries) {
    const Workshop shop;
    BuildChain(shop);
    EXPECT_EQ(shop.Lyr("graph -d d -l .").text,
              "digraph classes {\n"
              "    rankdir=LR;\n"
              "    \"Circle\" -> \"Layer\" [label=\"ILayer\"];\n"
              "    \"Circle\" -> \"libA\" [label=\"IShape\"];\n"
              "    \"Layer\" -> \"libA\";\n"
              "    \"Oval\" -> \"libB\" [label=\"IShape\"];\n"
              "    \"libA\" [shape=box];\n"
              "    \"libB\" [shape=box];\n"
              "}\n");
    EXPECT_EQ(shop.Lyr("graph libraries -d d -l .").text,
              "digraph libraries {\n"
              "    rankdir=LR;\n"
              "    \"libA.so\" -> \"libD.so.1\";\n"
              "    \"libA.so\" [shape=box];\n"
              "    \"libB\" [shape=box];\n"
              "}\n");
}

}  // namespace
