#define OXDIAG_COMPONENT "serving"
#define OXDIAG_COMPONENT_VERSION tSSVersion(0x01000000)

#include "control/tServingProgram.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/traceMacros.h"
#include "qelmk/module.h"
#include "vexk/module.h"
#include "vexkhost/requestServer.h"

namespace {

enum tExit : int { kGood = 0, kNoModules = 1, kNoServer = 2, kNoTest = 3 };

bool startModules() {
  return vexkInitialize() == STATUS_SUCCESS && qelmkInitialize() == STATUS_SUCCESS &&
         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

void stopModules() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the serving program");
  ntoshost::requireNoHandles("the serving program");
}

// A line for each command, until there are no more.
bool traceOnCommand(int commands, int answers) {
  char command = 's';
  for (u32 line = 0; write(answers, &command, 1) == 1;) {
    if (read(commands, &command, 1) != 1) return true;
    OXDIAG_TRACE(150, put("line ").put(++line, 10));
  }
  return false;
}

}  // namespace

tServingProgram::tServingProgram() : tServingProgram(geteuid()) {
}

tServingProgram::tServingProgram(uid_t user) {
  std::string name = (std::filesystem::temp_directory_path() / "serving-XXXXXX").string();
  EXPECT_NE(mkdtemp(name.data()), nullptr);
  folder = name;
  EXPECT_EQ(chown(name.c_str(), user, static_cast<gid_t>(-1)), 0);
  path = (folder / "socket").string();
  int toProgram[2];
  int toTest[2];
  EXPECT_EQ(pipe(toProgram) + pipe(toTest), 0);
  child = fork();
  if (child == 0) {
    close(toProgram[1]);
    close(toTest[0]);
    serve(user, toProgram[0], toTest[1]);
  }
  close(toProgram[0]);
  close(toTest[1]);
  commands = toProgram[1];
  answers = toTest[0];
  char answer;
  EXPECT_EQ(read(answers, &answer, 1), 1) << "the program does not serve";
}

tServingProgram::~tServingProgram() {
  if (child != 0) {
    EXPECT_EQ(stop(), 0);
  }
  close(answers);
  std::filesystem::remove_all(folder);
}

void tServingProgram::serve(uid_t user, int toProgram, int toTest) const {
  ntoshost::setDebugPrintSink([](void*, char const*, size_t) {}, nullptr);
  if (!ntoshost::mountDrive('C', folder.c_str()) || !startModules()) _exit(kNoModules);
  bool const isServing = setuid(user) == 0 && vexkhost::startRequestServer(path.c_str());
  if (!isServing) _exit(kNoServer);
  bool const isGood = traceOnCommand(toProgram, toTest);
  vexkhost::stopRequestServer();
  stopModules();
  _exit(isGood ? kGood : kNoTest);
}

std::string tServingProgram::readFile(std::string const& name) const {
  std::ifstream file(pathOf(name), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void tServingProgram::trace() const {
  char byte = 't';
  EXPECT_EQ(write(commands, &byte, 1), 1);
  EXPECT_EQ(read(answers, &byte, 1), 1);
}

int tServingProgram::stop() {
  close(commands);
  int status = 0;
  waitpid(child, &status, 0);
  child = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void tServingProgram::kill() {
  ::kill(child, SIGKILL);
  stop();
}
