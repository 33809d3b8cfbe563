#include "TestSupport.h"

TEST(Readers, ExplainEveryRefusalAndLeaveTheNextFileAlone) {
    const std::string a = "{0000000A-0000-0000-0000-000000000000} ";
    const std::string b = "{0000000b-0000-0000-0000-000000000000} ";
    const std::string error = "Error in dictionary ", canNot = " line 1\nCan not add ";
    const std::string taken = "The iid is already defined with interface name 'I'\n";
    const std::string named = "The interface name is already defined with another iid\n";
    TempDirectory files;
    files.Write("a.dicts", "C I libL ITFLEAF X EXTENDED_BY Y\nC I M\nD I L EXTENDED_BY Y\n");
    std::string expected = kRefused;
    const auto file = [&](auto name, auto text, auto message, std::string rest = " line 1\n") {
        expected += message + files.Write(name, text) + rest;
    };
    file("b.dicts", "E I L\n#\nF I\nG I L\n", "Problem reading dico : ", " line 3\n");
    file("c.dicts", "C I L ITFLEAF\n", "Problem reading dico : ");
    file("d.dicts", "C I L itfleaf X\n", "Problem reading dico : ");
    file("e.iidts", a + "I\n" + a + "I\n" + a + "I x\n", "Error in IId dictionary ", " line 3\n");
    file("f.iidts", a, "Error in IId dictionary ");
    file("g.iidts", "x I\n", error, " line 1\nInvalid iid :x\n\n");
    file("h.iidts", a + "J\n", error,
         canNot + "interface '" + a + "J'\n" + taken + "Check dictionaries.\n\n");
    file("i.iidts", b + "I\n", error, canNot + "interface '" + b + "I'\n" + named);
    file("j.clsidts", a + "A libA\n" + b + "A\n" + a, "Problem reading dico name ", " line 3\n");
    file("k.clsidts", a + "A libA x\n", "Problem reading dico name ");
    file("l.clsidts", "{1} A\n", "Problem converting CLSID in ");
    file("m.clsidts", a + "A libB\n", error, canNot + "class 'A " + a + "libB'\n");
    file("n.clsidts", a + "B\n", error, canNot + "class 'B " + a + "(null)'\n");
    UseDictionaryPath(files.path);
    ExpectErrors(expected, [] { Dictionary::EnsureInitDictionary(); });
    EXPECT_EQ(Entry("C") + ", " + Entry("D"), "L X (null), L (null) Y");
    EXPECT_EQ(Entry("E") + ", " + Entry("G"), "L (null) (null), none");
}
