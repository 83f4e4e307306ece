// The crash of the demo: what is said, and what is in the dump.

#include <cstring>

#include "demoTest.h"
#include "oxdiagk/tRecorderTraceDestination.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;

constexpr size_t kDumpHead = 16 + 8;  // GUID and length in front of the ring

class SlotbusCrash : public tDemoTest {
 protected:
  tRun crash(std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.end(), {"--crash", "--dump", pathOf("dump")});
    return run(std::move(arguments));
  }

  // The text of the ring in the dump. It has not come round.
  std::string text() const {
    std::string const dump = readFile("dump");
    tRecorderRing ring;
    if (dump.size() < kDumpHead + sizeof(ring)) return "(no ring)";
    std::memcpy(&ring, dump.data() + kDumpHead, sizeof(ring));
    EXPECT_EQ(std::memcmp(ring.signature, tRecorderRing::kSignature, sizeof(ring.signature)), 0);
    EXPECT_LE(ring.written, ring.capacity);
    return dump.substr(kDumpHead + ring.headSize, ring.written);
  }
};

}  // namespace

TEST_F(SlotbusCrash, DumpHasTheLinesAndTheOneThatWasNotEnded) {
  tRun const done = crash();
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(text(), "devices: 18, failures: 0, lines: 44\n")) << text();
  EXPECT_TRUE(contains(text(), "slot 3 tells its line ")) << text();
  EXPECT_TRUE(text().ends_with("] slot 4 has a temperature of \n")) << text();
}

TEST_F(SlotbusCrash, TheUnfinishedLineIsInTheDumpAlone) {
  tRun const done = crash();
  EXPECT_TRUE(contains(done.output, "slot 3 tells its line ")) << done.output;
  EXPECT_FALSE(contains(done.output, "has a temperature"));
}

TEST_F(SlotbusCrash, SaysWhereTheDumpIsAndHowToLookAtIt) {
  std::string const errors = crash().errors;
  EXPECT_TRUE(errors.starts_with("ntos: bug check 0xE2 (0x4, 0x0, 0x0, 0x0)\n")) << errors;
  std::string const size = std::to_string(std::filesystem::file_size(pathOf("dump")));
  EXPECT_TRUE(contains(errors, " is " + pathOf("dump") + ", " + size + " bytes;")) << errors;
  EXPECT_TRUE(errors.ends_with("oxdiag-view --dump " + pathOf("dump") + "\n")) << errors;
}

TEST_F(SlotbusCrash, TheCommandThatIsSaidShowsTheLastLines) {
  for (char const* name : {"dump", "a dump", "it's $(a) \"dump\""}) {
    std::string const errors = run({"--crash", "--dump", pathOf(name)}).errors;
    std::string const command = errors.substr(errors.rfind("\n  ") + 3);
    tRun const done = runProgram({"sh", "-c", command});
    EXPECT_EQ(done.exitCode, 0) << command;
    EXPECT_TRUE(contains(done.output, "devices: 18, failures: 0, lines: 44\n")) << done.output;
    EXPECT_TRUE(contains(done.output, "slot 3 tells its line ")) << done.output;
    EXPECT_TRUE(done.output.ends_with("slot 4 has a temperature of \n")) << done.output;
  }
}

TEST_F(SlotbusCrash, WithoutANameTheDumpIsATemporaryFile) {
  std::string const errors = run({"--crash"}).errors;
  size_t const begin = errors.rfind(" --dump ") + 8;
  std::string const name = errors.substr(begin, errors.size() - begin - 1);
  EXPECT_TRUE(name.ends_with(".dump")) << errors;
  EXPECT_GT(std::filesystem::file_size(name), sizeof(tRecorderRing));
  std::filesystem::remove(name);
}

TEST_F(SlotbusCrash, ARecorderOfTheUsersOwnSizeStays) {
  EXPECT_EQ(crash({"--trace", "--destination recorder 1"}).exitCode, 0);
  EXPECT_EQ(std::filesystem::file_size(pathOf("dump")), kDumpHead + sizeof(tRecorderRing) + 1024);
}

TEST_F(SlotbusCrash, AFilterThatHidesTheLineDoesNotKeepTheMachineAlive) {
  tRun const done = crash({"--filter", "verbosity>=150"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(text().ends_with("devices: 18, failures: 0, lines: 44\n")) << text();
}

TEST_F(SlotbusCrash, ADumpThatCannotBeMadeGetsOneSentence) {
  for (std::string const& name : {pathOf("absent/dump"), pathOf("")}) {
    tRun const done = run({"--crash", "--dump", name});
    EXPECT_EQ(done.exitCode, 4);
    EXPECT_EQ(done.output, "");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(SlotbusCrash, ADumpThatCannotBeWrittenIsNotAnnounced) {
  tRun const done = run({"--crash", "--dump", "/dev/full"});
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(done.errors.ends_with("slotbus_demo: cannot write the dump '/dev/full'.\n"))
      << done.errors;
}

TEST_F(SlotbusCrash, OutputThatCannotBeWrittenGetsOneSentence) {
  tRun const done = run({"--crash", "--dump", pathOf("dump")}, "/dev/full");
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(SlotbusCrash, ADumpWithoutCrashAndACrashOfAServerAreWrongUsage) {
  EXPECT_EQ(run({"--dump", pathOf("dump")}).exitCode, 64);
  EXPECT_EQ(run({"--crash", "--serve"}).exitCode, 64);
  EXPECT_EQ(run({"--crash", "--capture"}).exitCode, 64);
}
