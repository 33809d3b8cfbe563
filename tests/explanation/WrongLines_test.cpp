#include "Wrong.h"

namespace {

// Ways to get it wrong that stand in the files: names, ids, libraries, entry points.

const std::string kGadget = Answering("LYRSysTSCreateI1Gadget");
const std::string kPrinter = Answering("LYRSysTSCreateIPrinterGadget");

const Wrong kWrongs[] = {
    {.name = "nothing",
     .code = kGadget,
     .pairs = "Gadget I1 libA\n",
     .root = "none",
     .place = "d/p.dicts:1",
     .told = "lyr: "},
    // Names.
    {.name = "line_for_another_class",
     .code = Answering("LYRSysTSCreateI1Other"),
     .pairs = "Other I1 libA\n",
     .root = "NoEntry",
     .told = "d/p.dicts:1  Other I1 libA  (another class)"},
    {.name = "class_letters",
     .code = kGadget,
     .pairs = "# ours\nGagdet I1 libA\n",
     .root = "NoEntry",
     .told = "d/p.dicts:2  Gagdet I1 libA  (the class is written Gagdet)",
     .found = "d/p.dicts:2 no-entry-point"},
    {.name = "class_case",
     .code = kGadget,
     .pairs = "gadget I1 libA\n",
     .root = "NoEntry",
     .told = "gadget: capitals and underscores count",
     .found = "d/p.dicts:1 no-entry-point"},
    {.name = "class_underscore",
     .code = kGadget,
     .pairs = "Gad_get I1 libA\n",
     .root = "NoEntry",
     .told = "Gad_get: capitals and underscores count",
     .found = "d/p.dicts:1 no-entry-point"},
    {.name = "interface_letters",
     .code = kPrinter,
     .pairs = "Gadget IPirnter libA\n",
     .root = "NoEntry",
     .told = "d/p.dicts:1  Gadget IPirnter libA  (the interface is written IPirnter)",
     .found = "d/p.dicts:1 no-entry-point",
     .number = 10},
    {.name = "interface_case",
     .code = kPrinter,
     .pairs = "Gadget Iprinter libA\n",
     .root = "NoEntry",
     .told = "Iprinter: capitals and underscores count",
     .found = "d/p.dicts:1 no-entry-point",
     .number = 10},
    {.name = "short_names_that_have_nothing_in_common",
     .code = Answering("LYRSysTSCreateI2Up"),
     .pairs = "Up I2 libA\n",
     .root = "NoEntry",
     .told = "no line for Gadget in 2 folders",
     .untold = "near"},
    // Files.
    {.name = "bad_line_before",
     .code = kGadget,
     .pairs = "Gadget\nGadget I1 libA\n",
     .root = "NoEntry",
     .told = "d/p.dicts:2  Gadget I1 libA  (line 1 has less than three words",
     .found = "d/p.dicts:1 bad-line"},
    {.name = "hidden_file",
     .code = kGadget,
     .pairs = "# none\n",
     .make = [](const Shop& shop) { shop.Write("e/p.dicts", "Gadget I1 libA\n"); },
     .root = "NoEntry",
     .told = "d/p.dicts hides this file"},
    {.name = "folder_that_is_not_there",
     .make = [](const Shop& shop) { shop.Run("rmdir e"); },
     .root = "NoEntry",
     .told = "/e  there is no such folder"},
    // Ids.
    {.name = "id_without_a_name",
     .root = "IdWithoutName",
     .told = "no line for the id in 2 folders",
     .number = 0x77},
    {.name = "name_with_another_id",
     .code = kPrinter,
     .pairs = "Gadget IPrinter libA\n",
     .root = "NameOfAnotherId",
     .told = "give IPrinter another id, {A000000A-",
     .number = 0x77,
     .interfaceName = "IPrinter"},
    {.name = "letter_in_an_id",
     .make =
         [](const Shop& shop) {
             shop.Write("d/j.iidts", "{A00007G0-0000-0000-0000-000000000000} IScanner\n");
         },
     .root = "NameOfAnotherId",
     .told = "IScanner",
     .found = "d/j.iidts:1 bad-id",
     .number = 0x70,
     .interfaceName = "IScanner"},
    {.name = "id_with_two_names",
     .make =
         [](const Shop& shop) {
             shop.Write("d/j.iidts",
                        "{A0000001-0000-0000-0000-000000000000} IOne\n"
                        "{A0000070-0000-0000-0000-000000000000} IScanner\n");
         },
     .root = "IdWithoutName",
     .told = "d/j.iidts:2  {A0000070-0000-0000-0000-000000000000} IScanner  (line 1 gives the id",
     .found = "d/j.iidts:1 two-names",
     .number = 0x70},
    // Libraries.
    {.name = "library_not_there",
     .pairs = "Gadget I1 libA\n",
     .root = "LibraryNotFound",
     .place = "d/p.dicts:1",
     .told = "/libs/libA.so",
     .found = "d/p.dicts:1 library-not-found"},
    {.name = "library_is_text",
     .pairs = "Gadget I1 libA\n",
     .make = [](const Shop& shop) { shop.Write("libs/libA.so", "text\n"); },
     .root = "LibraryNotLoading",
     .place = "d/p.dicts:1",
     .told = "file too short",
     .found = "d/p.dicts:1 no-library"},
    {.name = "library_of_another_processor",
     .code = kGadget,
     .pairs = "Gadget I1 libA\n",
     .make =
         [](const Shop& shop) {
             shop.Run("printf '\\010\\000' | dd of=libs/libA.so bs=1 seek=18 conv=notrunc");
         },
     .root = "LibraryNotLoading",
     .place = "d/p.dicts:1",
     .told = "/libs/libA.so",
     .found = "d/p.dicts:1 other-processor"},
    {.name = "library_is_a_folder",
     .pairs = "Gadget I1 libA\n",
     .make = [](const Shop& shop) { shop.Run("mkdir libs/libA.so"); },
     .root = "LibraryNotLoading",
     .place = "d/p.dicts:1",
     .told = "Is a directory",
     .found = "d/p.dicts:1 no-library"},
    {.name = "library_with_a_carriage_return",
     .code = kGadget,
     .pairs = "Gadget I1 libA\r\n",
     .root = "LibraryNotFound",
     .place = "d/p.dicts:1",
     .told = "remedy",
     .found = "d/p.dicts:1 library-not-found"},
    {.name = "dependency_not_there",
     .make =
         [](const Shop& shop) {
             shop.Library("D", "extern \"C\" int dependency = 1;\n");
             shop.Library("A", kGadget + "extern \"C\" int dependency; int* a = &dependency;\n",
                          "libs/libD.so");
             shop.Run("rm libs/libD.so");
             shop.Pairs("Gadget I1 libA\n");
         },
     .root = "LibraryNotLoading",
     .place = "d/p.dicts:1",
     .told = "libD.so: cannot open shared object file",
     .found = "d/p.dicts:1 missing-dependency"},
    {.name = "undefined_symbol",
     .code = kGadget + "extern \"C\" int gone; int* a = &gone;\n",
     .pairs = "Gadget I1 libA\n",
     .root = "LibraryNotLoading",
     .place = "d/p.dicts:1",
     .told = "undefined symbol: gone",
     .found = "d/p.dicts:1 undefined-symbol"},
    // Entry points.
    {.name = "function_missing",
     .code = Answering("LYRSysTSCreateI2Gadget"),
     .pairs = "Gadget I1 libA\n",
     .root = "NoFunction",
     .place = "d/p.dicts:1",
     .told = "A exports no LYRSysTSCreateI1Gadget",
     .found = "d/p.dicts:1 no-entry-point"},
    {.name = "function_hidden",
     .code = kGadget,
     .options = "-fvisibility=hidden",
     .pairs = "Gadget I1 libA\n",
     .root = "NoFunction",
     .place = "d/p.dicts:1",
     .told = "default visibility",
     .found = "d/p.dicts:1 no-entry-point"},
    {.name = "function_mangled",
     .code = "void* LYRSysTSCreateI1Gadget(void* object) { return object; }\n",
     .pairs = "Gadget I1 libA\n",
     .root = "NoFunction",
     .place = "d/p.dicts:1",
     .told = "extern \"C\"",
     .found = "d/p.dicts:1 no-entry-point"},
    {.name = "function_of_a_dependency",
     .make =
         [](const Shop& shop) {
             shop.Library("D", kGadget);
             shop.Library("A", "int a;\n", "-Wl,--no-as-needed libs/libD.so '-Wl,-rpath,$ORIGIN'");
             shop.Pairs("Gadget I1 libA\n");
         },
     .root = "FunctionElsewhere",
     .place = "d/p.dicts:1",
     .told = "only a library that it needs",
     .found = "d/p.dicts:1 no-entry-point"},
    // Creation.
    {.name = "creation_of_nothing_known",
     .root = "NoCreator",
     .told = "no line that makes a Gadget",
     .asked = Wrong::Asked::kCreation},
    {.name = "creation_misspelt",
     .code = Answering("fctLYRSysTSCreateGadget"),
     .pairs = "Gagdet CreateInterface libA\n",
     .root = "NoCreator",
     .told = "Gagdet CreateInterface libA  (the class is written Gagdet)",
     .found = "d/p.dicts:1 no-entry-point",
     .asked = Wrong::Asked::kCreation},
    {.name = "creation_of_an_abstract_class",
     .code = kGadget,
     .pairs = "Gadget I1 libA\n",
     .root = "NoCreator",
     .told = "write \"Gadget CreateInterface <library>\"",
     .asked = Wrong::Asked::kCreation},
    {.name = "creation_function_missing",
     .code = kGadget,
     .pairs = "Gadget CreateInterface libA\n",
     .root = "NoFunction",
     .place = "d/p.dicts:1",
     .told = "A exports no fctLYRSysTSCreateGadget",
     .found = "d/p.dicts:1 no-entry-point",
     .asked = Wrong::Asked::kCreation},
    {.name = "class_id_unknown",
     .root = "UnknownClassId",
     .told = "no line for the id in 2 folders",
     .asked = Wrong::Asked::kCreationById},
    {.name = "class_id_without_a_library",
     .make =
         [](const Shop& shop) {
             shop.Write("d/c.clsidts", "{A0000001-0000-0000-0000-000000000000} Gadget\n");
         },
     .root = "NoLibrary",
     .place = "d/c.clsidts:1",
     .told = "names no library for Gadget",
     .asked = Wrong::Asked::kCreationById},
    {.name = "class_object_function_missing",
     .code = kGadget,
     .make =
         [](const Shop& shop) {
             shop.Write("d/c.clsidts", "{A0000001-0000-0000-0000-000000000000} Gadget libA\n");
         },
     .root = "NoFunction",
     .place = "d/c.clsidts:1",
     .told = "A exports no LYRSysTSDllGetClassObject",
     .found = "d/c.clsidts:1 no-entry-point",
     .asked = Wrong::Asked::kCreationById},
};

class WrongLines : public testing::TestWithParam<Wrong> {};

TEST_P(WrongLines, AreToldAsTheyAre) {
    ExpectToldAsItIs(GetParam());
}

INSTANTIATE_TEST_SUITE_P(, WrongLines, testing::ValuesIn(kWrongs),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
