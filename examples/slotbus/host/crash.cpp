#include "slotbus/host/crash.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "ntos/bugCheck.h"
#include "ntoshost/bugCheck.h"
#include "slotbus/component/component.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/toolPlace.h"

using namespace nSLOTBUS100;

namespace {

constexpr u32 kManuallyInitiatedCrash = 0xE2;
constexpr u32 kSlot = 4;
constexpr int kDevicesBefore = 3;

// The trace is seen before the machine stops.
[[noreturn]] void stopMachine() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fputs("slotbus_demo: cannot write to standard output.\n", stderr);
    _exit(kExitNoOutput);
  }
  KeBugCheckEx(kManuallyInitiatedCrash, kSlot, 0, 0, 0);
}

u32 readTemperature() {
  stopMachine();
}

// The file for the dump, made or emptied now: a machine that has stopped tells nobody that it could
// not.
std::optional<std::string> makeFile(std::optional<std::string> const& wanted) {
  std::string name =
      wanted.value_or((std::filesystem::temp_directory_path() / "slotbus-XXXXXX.dump").string());
  int const file =
      wanted ? open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR)
             : mkstemps(name.data(), static_cast<int>(std::strlen(".dump")));
  if (file >= 0) {
    close(file);
    return name;
  }
  std::fprintf(stderr, "slotbus_demo: cannot make the dump '%s': %s.\n", name.c_str(),
               std::strerror(errno));
  return std::nullopt;
}

// The executive ends its program in a way that makes a core file.
void wantNoCoreFile() {
  rlimit const none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
}

[[noreturn]] void runChild(std::function<int()> const& machine, std::string const& dump) {
  wantNoCoreFile();
  ntoshost::setDumpFile(dump.c_str());
  int const result = machine();
  std::fflush(stdout);
  _exit(result);
}

int complain(char const* format, std::string const& name, int exitCode) {
  std::fprintf(stderr, format, name.c_str());
  return exitCode;
}

// For a shell: in quotes if there is more in it than in most names.
std::string shellWord(std::string const& name) {
  constexpr char kUsual[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./-+";
  if (name.find_first_not_of(kUsual) == name.npos) return name;
  std::string word = "'";
  for (char const character : name) {
    if (character == '\'') word += "'\\'";
    word += character;
  }
  return word + "'";
}

int announce(std::string const& dump) {
  std::error_code problem;
  auto const size = std::filesystem::file_size(dump, problem);
  if (problem || size == 0) {
    return complain("slotbus_demo: cannot write the dump '%s'.\n", dump, kExitNoOutput);
  }
  std::fprintf(stderr,
               "The machine has stopped. Its crash dump is %s, %llu bytes; the last lines in it:\n"
               "  %s --dump %s\n",
               dump.c_str(), static_cast<unsigned long long>(size),
               shellWord(findTool("oxdiag-view")).c_str(), shellWord(dump).c_str());
  return kExitGood;
}

}  // namespace

void crashInLine(tRackMachine& machine, nOXDIAG100::tTrace& trace) {
  for (int device = 0; device < kDevicesBefore; ++device) machine.askNextDevice();
  OXDIAG_TRACE(kTraceProgress,
               putf("slot %u has a temperature of ", kSlot).put(readTemperature(), 10));
  stopMachine();  // the filter hides the line
}

int runUntilCrash(std::function<int()> const& machine, std::optional<std::string> const& dump) {
  auto const file = makeFile(dump);
  if (!file) return kExitNoOutput;
  std::fflush(stdout);
  pid_t const child = fork();
  if (child == 0) runChild(machine, *file);
  int state = 0;
  if (child < 0 || waitpid(child, &state, 0) != child) {
    return complain("slotbus_demo: cannot start a process: %s.\n", std::strerror(errno),
                    kExitNoModule);
  }
  if (WIFEXITED(state)) return WEXITSTATUS(state);
  if (WTERMSIG(state) == SIGABRT) return announce(*file);
  return complain("slotbus_demo: the machine ended in another way: %s.\n",
                  strsignal(WTERMSIG(state)), kExitNoModule);
}
