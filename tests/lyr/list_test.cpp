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

}  // namespace
