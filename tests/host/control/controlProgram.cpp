// The settings of a running library, shown and changed from outside.

#include <sys/socket.h>
#include <sys/un.h>

#include "control/controlTest.h"
#include "options/toolVersion.h"

namespace {

class Control : public tControlTest {};

constexpr char kReport[] = OXDIAG_BINARY_DIR "/tools/oxdiagreport/oxdiagreport";

char const* const kFirstSettings =
    "--on --destination vex --compname on --compver off --linenumber on --filename on "
    "--filepath off --threadid off --timestamp off --timedelta off --verbosity off --indent on "
    "--truncation on --prefixwidth 50 --filter \"verbosity>=100\" --mutex off --calibrate 0 0 0";

}  // namespace

TEST_F(Control, ListsWhatCanBeSet) {
  EXPECT_EQ(told({"list"}), "trace\nassert\n");
}

TEST_F(Control, ShowsTheTraceAsATable) {
  EXPECT_EQ(told({"trace"}),
            "--on|--off     on              whether lines are written\n"
            "--destination  vex             where the lines go\n"
            "--compname     on              prefix: component\n"
            "--compver      off             prefix: its version\n"
            "--linenumber   on              prefix: source line\n"
            "--filename     on              prefix: source file\n"
            "--filepath     off             prefix: source file with its path\n"
            "--threadid     off             prefix: thread\n"
            "--timestamp    off             prefix: clock ticks\n"
            "--timedelta    off             prefix: ticks since the last line\n"
            "--verbosity    off             prefix: level of the line\n"
            "--indent       on              two blanks for each open block\n"
            "--truncation   on              cut the prefix to its width\n"
            "--prefixwidth  50              least width of the prefix\n"
            "--filter       verbosity>=100  which lines are shown\n"
            "--mutex        off             a line belongs to its thread\n"
            "--calibrate    0 0 0           time deltas leave out the cost of tracing\n");
}

TEST_F(Control, ShowsTheAssertionsByCategory) {
  EXPECT_EQ(told({"assert"}),
            "                   default  statusFatal  statusWarning  warning\n"
            "--terminate        off      off          off            off\n"
            "--break            on       on           on             off\n"
            "--preconditions    on       on           on             on\n"
            "--postconditions   on       on           on             on\n"
            "--classinvariants  on       on           on             on\n"
            "--loopinvariants   on       on           on             on\n"
            "--checks           on       on           on             on\n"
            "--exceptions       on       off          off            on\n");
}

TEST_F(Control, NothingThatItShowsSteersATerminal) {
  std::string const term = "compname==\x1B[2J\xC2\x9B";
  EXPECT_EQ(told({"trace", "--filter", term}), "--filter  verbosity>=100 -> compname==?[2J?\n");
  EXPECT_NE(told({"trace"}).find("compname==?[2J?  which"), std::string::npos);
  EXPECT_NE(told({"trace", "--raw"}).find(term), std::string::npos);
}

TEST_F(Control, ShowsTheTextOfTheLibraryAsItIs) {
  EXPECT_EQ(told({"trace", "--raw"}), std::string(kFirstSettings) + "\n");
}

TEST_F(Control, ChangesWhatItIsToldAndShowsTheChanges) {
  EXPECT_EQ(told({"trace", "--timestamp", "on", "--destination", "file", "C:/x.out"}),
            "--destination  vex -> file C:/x.out\n"
            "--timestamp    off -> on\n");
  EXPECT_EQ(told({"trace", "--timestamp", "on"}), "nothing has changed\n");
  EXPECT_EQ(told({"trace", "--off", "--filter"}),
            "--on|--off  on -> off\n--filter    verbosity>=100 -> (none)\n");
  EXPECT_EQ(told({"trace", "--on", "--filter", "verb>=60 && line<100"}),
            "--on|--off  off -> on\n--filter    (none) -> verbosity>=60 && linenumber<100\n");
}

TEST_F(Control, ChangesAssertionsOfACategory) {
  EXPECT_EQ(told({"assert", "--category", "warning", "--checks", "off", "--break"}),
            "warning  --break   off -> on\n"
            "warning  --checks  on -> off\n");
  std::string const changes = told({"assert", "--category", "trace", "--terminate"});
  EXPECT_NE(changes.find("trace  --terminate        (none) -> on\n"), std::string::npos) << changes;
}

TEST_F(Control, TracesIntoAFileAndBack) {
  EXPECT_EQ(told({"trace", "--push", "--destination", "file", "C:/x.out"}),
            "--destination  vex -> file C:/x.out\n");
  program.trace();
  program.trace();
  EXPECT_EQ(told({"trace", "--pop"}), "--destination  file C:/x.out -> vex\n");
  program.trace();
  std::string const text = program.readFile("x.out");
  EXPECT_NE(text.find("line 1"), std::string::npos) << text;
  EXPECT_NE(text.find("line 2"), std::string::npos) << text;
  EXPECT_EQ(text.find("line 3"), std::string::npos) << text;
}

TEST_F(Control, PushesAndPopsOnly) {
  EXPECT_EQ(told({"trace", "--push"}), "saved\n");
  told({"trace", "--threadid"});
  EXPECT_EQ(told({"trace", "--pop"}), "--threadid  on -> off\n");
  told({"trace", "--push"});
  EXPECT_EQ(told({"trace", "--pop"}), "restored, nothing is different\n");
}

TEST_F(Control, APopOfNothingSaysThatNothingIsSaved) {
  std::string const nothing = ", so there was nothing to take back";
  expectFailure(control({"trace", "--pop"}), 1, "nothing is saved of trace" + nothing);
  told({"assert", "--push"});
  expectFailure(control({"trace", "--pop"}), 1, "nothing is saved of trace" + nothing);
  told({"assert", "--pop"});
  expectFailure(control({"assert", "--pop"}), 1, "nothing is saved of assert" + nothing);
}

TEST_F(Control, SaysTheVersionsOfBothSides) {
  std::string const version = getToolVersion();
  EXPECT_EQ(told({"--version"}), "oxdiagctl " + version + "\n");
  std::string const both = told({"version"});
  EXPECT_TRUE(both.starts_with("oxdiagctl  " + version + "\nlibrary    " + version + " ")) << both;
  EXPECT_EQ(countLines(both), 2U);
}

TEST_F(Control, EveryToolSaysItsVersion) {
  std::string const version = getToolVersion();
  std::string const executive = "executive: strict\n";
  EXPECT_EQ(run({"--version"}).output, "slotbus_demo " + version + "\n" + executive);
  EXPECT_EQ(runProgram({kReport, "--version"}).output,
            "oxdiagreport " + version + "\n" + executive);
}

TEST_F(Control, HelpThatCannotBeWrittenFails) {
  for (char const* what : {"--help", "--version"}) {
    EXPECT_EQ(control({what}, "/dev/full").exitCode, 5);
    EXPECT_EQ(run({what}, "/dev/full").exitCode, 4);
    EXPECT_EQ(runProgram({kReport, what}, "/dev/full").exitCode, 4);
  }
  tRun const done = control({"trace", "--help"}, "/dev/full");
  EXPECT_EQ(done.exitCode, 5);
  EXPECT_EQ(done.errors, "oxdiagctl: cannot write to standard output.\n");
}

TEST_F(Control, AWordThatIsNoCommandIsNamedWithTheNearest) {
  auto const firstLine = [this](std::vector<std::string> const& arguments) {
    tRun const run = control(arguments);
    EXPECT_EQ(run.exitCode, 64);
    return run.errors.substr(0, run.errors.find('\n'));
  };
  std::string const commands = " is no command (list, trace, assert, version)";
  EXPECT_EQ(firstLine({"bogus"}), "'bogus'" + commands);
  EXPECT_EQ(firstLine({"trase"}), "'trase'" + commands + ", perhaps trace");
  EXPECT_EQ(firstLine({"asserts", "--off"}), "'asserts'" + commands + ", perhaps assert");
  EXPECT_EQ(firstLine({"--off", "trace"}),
            "'--off' is no option here; words for the library come behind trace or assert");
  EXPECT_EQ(firstLine({}), "a command is needed: list, trace, assert or version");
}

TEST_F(Control, WordsThatWouldHaveNoEffectAreRefusedAndNothingChanges) {
  expectFailure(control({"trace", "--timestamp", "--timestmp"}), 4,
                "'--timestmp' is no option, perhaps --timestamp");
  expectFailure(control({"trace", "--break", "off"}), 4,
                "'--break' belongs to assert, not to trace");
  expectFailure(control({"assert", "--terminate", "maybe"}), 4,
                "'maybe' behind --terminate is neither on nor off");
  expectFailure(control({"trace", "--destination", "fil"}), 4,
                "'fil' is no destination (vex, serial, file, recorder), perhaps file");
  expectFailure(control({"assert", "--category", "two \"words\""}), 4,
                "no word can have blanks and double quotes in it");
  EXPECT_EQ(told({"trace", "--raw"}), std::string(kFirstSettings) + "\n");
}

TEST_F(Control, ADestinationWithoutANameIsTheDebuggerPrint) {
  EXPECT_EQ(told({"trace", "--destination", "file", "C:/x.out"}),
            "--destination  vex -> file C:/x.out\n");
  EXPECT_EQ(told({"trace", "--destination", "serial", "--destination"}),
            "--destination  file C:/x.out -> vex\n");
}

TEST_F(Control, ADestinationThatCannotBeOpenedIsTold) {
  tRun const run = control({"trace", "--destination", "file", "C:/missing/x.out"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errors, "oxdiagctl: the destination cannot be opened, it is vex.\n");
}

TEST_F(Control, NobodyListensWhereNothingIs) {
  std::string const path = pathOf("nothing");
  expectFailure(runProgram({kControl, "--at", path, "list"}), 2, "nobody listens at " + path);
  expectFailure(runProgram({kControl, "list", "--at", path}), 2, "nobody listens at " + path);
  expectFailure(runProgram({kControl, "--at", write("file", ""), "trace"}), 2,
                "nobody listens at " + pathOf("file"));
}

TEST_F(Control, NobodyListensWhereAProgramHasDied) {
  program.kill();
  expectFailure(control({"trace"}), 2, "nobody listens at " + program.getPath());
}

TEST_F(Control, PathsThatCannotBeAreRefused) {
  expectFailure(runProgram({kControl, "--at", "", "list"}), 64,
                "the path of a socket has 1 to 107 bytes");
  expectFailure(runProgram({kControl, "--at", std::string(108, 'x'), "list"}), 64,
                "the path of a socket has 1 to 107 bytes");
}

TEST_F(Control, TheDefaultPathIsInTheUsersRuntimeFolder) {
  setenv("XDG_RUNTIME_DIR", pathOf("").c_str(), 1);
  tRun const run = runProgram({kControl, "list"});
  unsetenv("XDG_RUNTIME_DIR");
  expectFailure(run, 2, "nobody listens at " + pathOf("") + "/oxdiag.socket");
}

TEST_F(Control, AnotherUserIsRefused) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  std::filesystem::permissions(std::filesystem::path(program.getPath()).parent_path(),
                               std::filesystem::perms{0755});
  std::string const as = "setpriv --reuid 65534 --clear-groups ";
  std::string const call = as + kControl + " --at " + program.getPath() + " list";
  expectFailure(runProgram({"sh", "-c", call}), 3, "access to " + program.getPath() + " is denied");
  std::filesystem::permissions(program.getPath(), std::filesystem::perms{0666});
  expectFailure(
      runProgram({"sh", "-c", call}), 3,
      "at " + program.getPath() + ", the program there serves its own user and root only");
}

TEST_F(Control, AnOrdinaryUserSetsAProgramOfHis) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  tServingProgram const others(65534);
  auto const callAs = [&](std::string const& user) {
    return runProgram({"sh", "-c",
                       "setpriv --reuid " + user + " --clear-groups " + kControl + " --at " +
                           others.getPath() + " trace --timestamp"});
  };
  tRun const run = callAs("65534");
  EXPECT_EQ(run.output, "--timestamp  off -> on\n");
  EXPECT_EQ(run.errors, "");
  expectFailure(callAs("65533"), 3, "access to " + others.getPath() + " is denied");
}

TEST_F(Control, AnotherUsersProgramIsNotLetIn) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  std::filesystem::permissions(pathOf(""), std::filesystem::perms{0777});
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  pathOf("other").copy(address.sun_path, sizeof(address.sun_path) - 1);
  int const listener = socket(AF_UNIX, SOCK_SEQPACKET, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  pid_t const child = fork();
  if (child == 0) _exit(setuid(65534) == 0 && listen(listener, 1) == 0 ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  expectFailure(runProgram({kControl, "--at", pathOf("other"), "list"}), 3,
                "at " + pathOf("other") + ", another user's program listens; call it as that user");
  close(listener);
}

TEST_F(Control, WrongCommandLinesAreRefused) {
  for (std::vector<std::string> const& arguments : {std::vector<std::string>{},
                                                    {"traces"},
                                                    {"list", "trace"},
                                                    {"trace", "--push", "--pop"},
                                                    {"trace", "--pop", "--off"},
                                                    {"--off", "trace"},
                                                    {"words"}}) {
    tRun const run = control(arguments);
    EXPECT_EQ(run.exitCode, 64);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors, "");
  }
}

TEST_F(Control, OutputThatCannotBeWrittenIsTold) {
  EXPECT_EQ(control({"trace"}, "/dev/full").exitCode, 5);
}

TEST_F(Control, HelpsAtEveryCommand) {
  for (std::vector<std::string> const& arguments : {std::vector<std::string>{"--help"},
                                                    {"list", "--help"},
                                                    {"trace", "--help"},
                                                    {"assert", "-h"}}) {
    EXPECT_NE(told(arguments).find("Usage: oxdiagctl"), std::string::npos);
  }
  EXPECT_NE(told({"trace", "--help"}).find("  --timestamp [on|off] "), std::string::npos);
  EXPECT_EQ(told({"assert", "--help"}).find("--timestamp"), std::string::npos);
}

TEST_F(Control, SeveralCallersAreServedAtOnce) {
  std::string const each = std::string(kControl) + " --at " + program.getPath();
  std::string const script = "for i in 1 2 3 4 5 6 7 8; do (for j in 1 2 3 4 5; do " + each +
                             " assert >/dev/null || echo failed; " + each +
                             " trace --raw; done) & done; wait";
  tRun const run = runProgram({"sh", "-c", script});
  std::string expected;
  for (int calls = 0; calls < 40; ++calls) expected += std::string(kFirstSettings) + "\n";
  EXPECT_EQ(run.output, expected) << run.errors;
}
