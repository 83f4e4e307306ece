// Call stacks with the modules that were saved with them, and with symbols.

#include <nlohmann/json.hpp>

#include "oxdiagreport/savedModules.h"
#include "oxdiagreport/tSymbolFolder.h"
#include "oxdiagreport/tSymbolizer.h"
#include "report/reportTest.h"
#include "vexk/loadedModule.h"

namespace {

using nlohmann::json;

class OxdiagReportModules : public tReportTest {
 protected:
  json reportJson(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--format", "json"});
    tRun const done = report(std::move(arguments));
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.errors, "");
    return json::parse(done.output, nullptr, false);
  }

  std::string const kRack = "1O | 1 | A | d\n1 | 1 | A | d\n";
  std::string const kDemoFolder = std::filesystem::path(kDemo).parent_path().string();
};

template <class tNumber>
std::string bytesOf(tNumber number) {
  return std::string(reinterpret_cast<char const*>(&number), sizeof(number));
}

std::string entry(u64 base, u64 size, std::string const& identity, std::string const& name,
                  std::string const& more = "") {
  std::string const content = bytesOf(base) + bytesOf(size) + bytesOf(u8{1}) +
                              bytesOf(static_cast<u8>(identity.size())) +
                              bytesOf(static_cast<u8>(name.size())) + identity + name + more;
  return bytesOf(static_cast<u16>(content.size())) + content;
}

std::string listOf(u8 count, std::string const& entries) {
  return "MODS" + bytesOf(static_cast<u32>(entries.size() + 1)) + bytesOf(count) + entries;
}

}  // namespace

TEST_F(OxdiagReportModules, AreShownWithOffsetsWithoutSymbols) {
  std::string const text = report({save(kRack, true)}).output;
  EXPECT_TRUE(contains(text, "\n  Call stack:\n    slotbus_demo+0x")) << text;
  EXPECT_FALSE(contains(text, "tRackLine.cpp:65)")) << text;
  json const data = reportJson({save(kRack, true)});
  json const& frame = data[0]["origin"]["frames"][0];
  EXPECT_EQ(frame["module"], "slotbus_demo");
  json const& module = data[0]["origin"]["modules"][0];
  EXPECT_EQ(frame["address"].get<u64>(), module["base"].get<u64>() + frame["offset"].get<u64>());
  EXPECT_EQ(module["identityKind"], "build id");
  size_t const digits = module["identity"].get<std::string>().size();
  EXPECT_TRUE(digits == 40 || digits == 16) << digits;  // lld makes short ones
}

TEST_F(OxdiagReportModules, AreNotThereWhenTheyWereNotSaved) {
  EXPECT_FALSE(contains(report({save(kRack)}).output, "Call stack"));
  json const data = reportJson({save(kRack)});
  EXPECT_TRUE(data[0]["origin"]["modules"].empty());
  EXPECT_TRUE(data[0]["origin"]["frames"][0]["module"].is_null());
  std::string const text = report({save(kRack), "--symbols", kDemoFolder}).output;
  EXPECT_TRUE(contains(text, "(unknown module)\n")) << text;
}

// The truth is what the status itself says of its origin, and the order of the calls.
TEST_F(OxdiagReportModules, SymbolsAreThoseOfTheFrames) {
  json const data = reportJson({save(kRack, true), "--symbols", kDemoFolder});
  json const& origin = data[0]["origin"];
  std::vector<std::string> const calls = {
      "nOXDIAG100::tStatus2::_allocateImplementationObject(",
      "nOXDIAG100::tStatusSetter::setWithStackTrace(", "nSLOTBUS100::tRackLine::readSlot(",
      "nSLOTBUS100::tRackLine::read(", "nSLOTBUS100::tRackReader::readLine("};
  for (size_t index = 0; index < calls.size(); ++index) {
    json const& place = origin["frames"][index]["places"][0];
    EXPECT_EQ(place["function"].get<std::string>().substr(0, calls[index].size()), calls[index]);
  }
  json const& setter = origin["frames"][2]["places"][0];
  std::string const file = setter["file"];
  EXPECT_TRUE(file.ends_with(origin["file"].get<std::string>())) << file;
  EXPECT_EQ(setter["line"], origin["line"]);
  std::string const text = report({save(kRack, true), "--symbols", kDemoFolder}).output;
  EXPECT_TRUE(contains(text, "tRackLine.cpp:" + std::to_string(origin["line"].get<u32>()) + ")\n"))
      << text;
}

TEST_F(OxdiagReportModules, SymbolsThatAreMissingAreToldOf) {
  std::string const file = save(kRack, true);
  tRun const nothing = report({file, "--symbols", pathOf("")});
  EXPECT_EQ(nothing.exitCode, 0);
  EXPECT_TRUE(contains(nothing.output, "(no such file in the folder)\n")) << nothing.output;
  std::filesystem::copy_file(kReport, pathOf("slotbus_demo"));
  EXPECT_TRUE(contains(report({file, "--symbols", pathOf("")}).output,
                       "(the file in the folder is of another build)\n"));
}

TEST_F(OxdiagReportModules, SymbolsAreFoundInFoldersInsideAndBesideLinksThatLeadNowhere) {
  std::string const file = save(kRack, true);
  std::filesystem::create_directories(pathOf("a/b"));
  std::filesystem::create_directory_symlink(pathOf("a"), pathOf("a/b/up"));
  std::filesystem::create_symlink(pathOf("absent"), pathOf("a/slotbus_demo"));
  std::filesystem::copy_file(kDemo, pathOf("a/b/slotbus_demo"));
  std::string const text = report({file, "--symbols", pathOf("a")}).output;
  EXPECT_TRUE(contains(text, "nSLOTBUS100::tRackLine::readSlot(")) << text;
}

TEST_F(OxdiagReportModules, AFileWithTheDebuggingInformationApartIsTaken) {
  std::string const file = save(kRack, true);
  std::string const apart = pathOf("slotbus_demo.debug");
  ASSERT_EQ(runProgram({"objcopy", "--only-keep-debug", kDemo, apart}).exitCode, 0);
  ASSERT_EQ(runProgram({"objcopy", "--strip-debug", kDemo, pathOf("slotbus_demo")}).exitCode, 0);
  std::string const text = report({file, "--symbols", pathOf("")}).output;
  EXPECT_TRUE(contains(text, "component/tRackLine.cpp:")) << text;
}

TEST_F(OxdiagReportModules, ABrokenModuleIsToldOf) {
  std::string const file = save(kRack, true);
  std::filesystem::copy_file(kDemo, pathOf("slotbus_demo"));
  std::filesystem::resize_file(pathOf("slotbus_demo"), 4096);
  tRun const done = report({file, "--symbols", pathOf("")});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "(no symbols for it)\n")) << done.output;
}

TEST_F(OxdiagReportModules, WithoutSymbolizerThereAreOffsetsAndOneSentence) {
  std::string const command =
      "PATH= " + std::string(kReport) + " --symbols " + kDemoFolder + " " + save(kRack, true);
  tRun const done = runProgram({"/bin/sh", "-c", command});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "llvm-symbolizer is not on PATH")) << done.errors;
  EXPECT_TRUE(contains(done.output, "    slotbus_demo+0x")) << done.output;
}

TEST_F(OxdiagReportModules, ASymbolizerThatEndsOrTalksNonsenseDoesNoHarm) {
  for (char const* program : {"exit 3", "echo nonsense; echo '[1,{}'; sleep 0.3", "yes '{}'",
                              "echo '{\"Symbol\": [3, {\"Line\": -1}]}'"}) {
    write("llvm-symbolizer", "#!/bin/sh\n" + std::string(program) + "\n");
    std::filesystem::permissions(pathOf("llvm-symbolizer"), std::filesystem::perms::owner_all);
    std::string const command = "PATH=" + pathOf("") + ":$PATH " + kReport + " --symbols " +
                                kDemoFolder + " " + save("1O | 1 | A | d\n1 | 1 | A | d", true);
    tRun const done = runProgram({"/bin/sh", "-c", command});
    EXPECT_EQ(done.exitCode, 0) << program;
    EXPECT_TRUE(contains(done.output, "    slotbus_demo+0x")) << done.output;
  }
}

// It notes what it is asked, and ends at whatever has "bad" in its name.
TEST_F(OxdiagReportModules, ASymbolizerThatEndsIsStartedAgainForAnotherModule) {
  write("llvm-symbolizer",
        "#!/bin/sh\nwhile read -r line; do echo \"$line\" >>" + pathOf("asked") +
            "; case $line in *bad*) exit 1;; esac; "
            "echo '{\"Symbol\":[{\"FunctionName\":\"read\",\"Line\":7}]}'; done\n");
  std::filesystem::permissions(pathOf("llvm-symbolizer"), std::filesystem::perms::owner_all);
  std::string const path = std::getenv("PATH");
  setenv("PATH", (pathOf("") + ":" + path).c_str(), 1);
  tSymbolizer symbolizer;
  std::string problem;
  EXPECT_TRUE(symbolizer.start(problem)) << problem;
  setenv("PATH", path.c_str(), 1);
  for (char const* name : {"good", "bad", "good", "bad", "bad two", "good"}) {
    bool const isGood = std::string(name) == "good";
    EXPECT_EQ(symbolizer.find(name, 1).size(), isGood ? 1u : 0u) << name;
  }
  EXPECT_EQ(readFile("asked"),
            "CODE \"good\" 0x1\nCODE \"bad\" 0x1\nCODE \"good\" 0x1\n"
            "CODE \"bad two\" 0x1\nCODE \"good\" 0x1\n");
}

TEST_F(OxdiagReportModules, AFolderOnThePathIsNoSymbolizer) {
  std::filesystem::create_directories(pathOf("bin/llvm-symbolizer"));
  std::string const command = "PATH=" + pathOf("bin") + ":$PATH " + kReport + " --symbols " +
                              kDemoFolder + " " + save(kRack, true);
  tRun const done = runProgram({"/bin/sh", "-c", command});
  EXPECT_EQ(done.errors, "");
  EXPECT_TRUE(contains(done.output, "nSLOTBUS100::tRackLine::readSlot(")) << done.output;
}

// The output would go into the stream of the symbolizer.
TEST_F(OxdiagReportModules, AClosedStandardOutputIsNotThatOfTheSymbolizer) {
  for (char const* closed : {">&-", "<&- >&-"}) {
    std::string const command =
        std::string(kReport) + " --symbols " + kDemoFolder + " " + save(kRack, true) + " " + closed;
    tRun const done = runProgram({"/bin/sh", "-c", command});
    EXPECT_EQ(done.exitCode, 4) << closed;
    EXPECT_EQ(done.errors, "oxdiagreport: cannot write to standard output.\n") << closed;
  }
}

TEST_F(OxdiagReportModules, AFolderThatIsNoneGetsOneSentence) {
  for (std::string const& name : {pathOf("absent"), write("file", "x")}) {
    tRun const done = report({save(kRack, true), "--symbols", name});
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_EQ(done.output, "");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(OxdiagReportModules, AnImageNeedsItsOwnPdbBesideIt) {
  std::string const identity = "0123456789abcdef" + bytesOf(u32{1});
  tSavedModule const module = {0x1000, 0x1000, kModulePdbIdentity, identity, "slotbus"};
  auto const found = [&] {
    tSymbolFolder folder;
    std::string problem;
    EXPECT_TRUE(folder.open(pathOf(""), problem)) << problem;
    std::string const name = folder.find(module, problem);
    return name.empty() ? problem : std::filesystem::path(name).filename().string();
  };
  EXPECT_EQ(found(), "no such file in the folder");
  write("slotbus.pdb", "PDB " + identity.substr(0, 16));
  EXPECT_EQ(found(), "no such file in the folder");
  write("SlotBus.SYS", "MZ RSDS");
  EXPECT_EQ(found(), "the file in the folder is of another build");
  write("SlotBus.SYS", "MZ RSDS" + identity);
  EXPECT_EQ(found(), "SlotBus.SYS");
  write("slotbus.pdb", "PDB 0123456789abcdeX");
  EXPECT_EQ(found(), "the PDB beside the file is of another build");
  std::filesystem::remove(pathOf("slotbus.pdb"));
  EXPECT_EQ(found(), "there is no PDB beside the file");
}

TEST_F(OxdiagReportModules, ALongNameIsFoundByWhatIsSavedOfIt) {
  std::string const identity = "0123456789abcdef" + bytesOf(u32{1});
  std::string const stem = std::string(40, 'a') + std::string(40, 'b');
  write(stem + ".sys", "MZ RSDS" + identity);
  write(stem + ".pdb", "PDB " + identity.substr(0, 16));
  std::string const end = stem.substr(stem.size() - 63);
  for (std::string const& name : {end, (end + ".sys").substr(4)}) {
    tSymbolFolder folder;
    std::string problem;
    ASSERT_TRUE(folder.open(pathOf(""), problem)) << problem;
    std::string const found = folder.find({1, 1, kModulePdbIdentity, identity, name}, problem);
    EXPECT_EQ(found, pathOf(stem + ".sys")) << problem;
  }
}

// However many names and identities a stranger's status has.
TEST_F(OxdiagReportModules, AFileIsReadOnceForAllModules) {
  std::string const identity = "0123456789abcdef" + bytesOf(u32{1});
  write("rack.sys", std::string(3'000'000, '-').replace(0, 2, "MZ") + "RSDS" + identity);
  write("rack.pdb", std::string(3'000'000, '-') + identity.substr(0, 16));
  tSymbolFolder folder;
  std::string problem;
  ASSERT_TRUE(folder.open(pathOf(""), problem)) << problem;
  auto const bytesRead = [] {
    std::ifstream status("/proc/self/io");
    std::string word;
    u64 count = 0;
    status >> word >> count;
    return count;
  };
  u64 const before = bytesRead();
  for (u32 number = 0; number < 100; ++number) {
    std::string const other = "0123456789abcdef" + bytesOf(number);
    std::string const name = number % 2 == 0 ? "rack.sys" : "RACK.sys";
    problem.clear();
    EXPECT_EQ(folder.find({1, 1, kModulePdbIdentity, other, name}, problem).empty(), number != 1);
  }
  EXPECT_LT(bytesRead() - before, 20'000'000u);
}

// Part of an identity would fit more than one build.
TEST_F(OxdiagReportModules, AnIdentityHasAKindAndAllOfItsBytes) {
  std::string const identity = "0123456789abcdef" + bytesOf(u32{1});
  write("slotbus.pdb", "PDB " + identity.substr(0, 16));
  write("slotbus.sys", "MZ RSDS" + identity);
  std::string const note("\x14\0\0\0\3\0\0\0GNU\0", 12);
  write("demo",
        "\x7F"
        "ELF" +
            note + identity);
  auto const problemOf = [&](u8 kind, std::string const& saved, char const* name) {
    tSymbolFolder folder;
    std::string problem;
    EXPECT_TRUE(folder.open(pathOf(""), problem)) << problem;
    bool const isFound = !folder.find({1, 1, kind, saved, name}, problem).empty();
    EXPECT_EQ(isFound, problem.empty());
    return problem;
  };
  std::string const kNone = "its identity is none that this program knows";
  EXPECT_EQ(problemOf(kModulePdbIdentity, identity, "slotbus"), "");
  EXPECT_EQ(problemOf(kModulePdbIdentity, identity.substr(0, 3), "slotbus"), kNone);
  EXPECT_EQ(problemOf(kModulePdbIdentity, "", "slotbus"), "no identity was saved");
  EXPECT_EQ(problemOf(kModuleBuildId, identity, "demo"), "");
  EXPECT_EQ(problemOf(kModuleUnidentified, identity, "demo"), kNone);
  EXPECT_EQ(problemOf(3, identity, "demo"), kNone);
}

TEST(SavedModules, AreReadFieldByField) {
  auto const modules =
      modulesIn(listOf(2, entry(0x1000, 0x200, "id", "a.dll") + entry(1, 2, "", "")));
  ASSERT_EQ(modules.size(), 2U);
  EXPECT_EQ(modules[0].base, 0x1000U);
  EXPECT_EQ(modules[0].size, 0x200U);
  EXPECT_EQ(modules[0].identityKind, 1);
  EXPECT_EQ(modules[0].identity, "id");
  EXPECT_EQ(modules[0].name, "a.dll");
  EXPECT_EQ(modules[1].name + modules[1].identity, "");
}

TEST(SavedModules, WhatANewerWriterAddsIsPassedOver) {
  auto const modules = modulesIn(listOf(1, entry(1, 2, "id", "a", "more")) + "NEXT record");
  ASSERT_EQ(modules.size(), 1U);
  EXPECT_EQ(modules[0].name, "a");
}

TEST(SavedModules, AListThatIsCutAnywhereIsNone) {
  std::string const list = listOf(2, entry(1, 2, "id", "a.dll") + entry(3, 4, "xy", "b"));
  for (size_t size = 0; size < list.size(); ++size) {
    EXPECT_TRUE(modulesIn(list.substr(0, size)).empty()) << size;
  }
  EXPECT_EQ(modulesIn(list).size(), 2U);
}

TEST(SavedModules, AListThatContradictsItselfIsNone) {
  EXPECT_TRUE(modulesIn(listOf(3, entry(1, 2, "id", "a") + entry(3, 4, "", "b"))).empty());
  EXPECT_TRUE(modulesIn("MODX" + listOf(1, entry(1, 2, "", "")).substr(4)).empty());
  std::string lying = listOf(1, entry(1, 2, "id", "a"));
  lying[9 + 2 + 8 + 8 + 2] = '\xFF';  // the length of the name
  EXPECT_TRUE(modulesIn(lying).empty());
}

TEST(SavedModules, AreFoundByAddress) {
  std::vector<tSavedModule> const modules = {{0x1000, 0x100, 0, "", "a"},
                                             {~u64{0} - 9, 10, 0, "", "b"}};
  EXPECT_EQ(findModule(modules, 0xFFF), nullptr);
  EXPECT_EQ(findModule(modules, 0x1000), &modules[0]);
  EXPECT_EQ(findModule(modules, 0x10FF), &modules[0]);
  EXPECT_EQ(findModule(modules, 0x1100), nullptr);
  EXPECT_EQ(findModule(modules, ~u64{0} - 1), &modules[1]);
}
