// The one instance of the file destination, over loads of the library.

#include <sys/wait.h>
#include <unistd.h>

#include "fileCalls.h"
#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tTrace.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

bool startModules() {
  return vexkInitialize() == STATUS_SUCCESS && qelmkInitialize() == STATUS_SUCCESS &&
         oxdiagkInitialize(nullptr) == STATUS_SUCCESS;
}

void unloadModules() {
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
}

// Every load has a process of its own, whose first one it is. What `body` returns, or -1 when the
// process ended in another way.
template <class Body>
int inStartedModules(Body body) {
  pid_t const child = fork();
  if (child == 0) _exit(startModules() ? body() : 99);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class FileInstance : public tFileTest {};

}  // namespace

TEST_F(FileInstance, IsTriedAgainAfterExhaustedMemory) {
  EXPECT_EQ(inStartedModules([] {
              ntoshost::failFrom(ntoshost::kFaultMemory, 1);
              bool const isRefused = tFileTraceDestination::getInstance() == nullptr;
              ntoshost::clearFaults();
              return isRefused && tFileTraceDestination::getInstance() != nullptr ? 1 : 0;
            }),
            1);
}

TEST_F(FileInstance, IsCreatedByOneAllocation) {
  EXPECT_EQ(inStartedModules([] {
              ntoshost::watchCalls(ntoshost::kFaultMemory);
              tFileTraceDestination::getInstance();
              tFileTraceDestination::getInstance();
              return static_cast<int>(ntoshost::fallibleCallsSeen());
            }),
            1);
}

TEST_F(FileInstance, IsClosedAndDestroyedAtUnload) {
  EXPECT_EQ(inStartedModules([] {
              tFileTraceDestination::getInstance()->open();
              bool const isOpen = ntoshost::outstandingHandles() == 2;
              unloadModules();
              ntoshost::requireNoOutstanding("the instance");
              return isOpen && ntoshost::outstandingHandles() == 0 ? 1 : 0;
            }),
            1);
}

TEST_F(FileInstance, ThatWasNeverAskedForLeavesNothingToDestroy) {
  EXPECT_EQ(inStartedModules([] {
              ntoshost::forgetFileCalls();
              unloadModules();
              ntoshost::requireNoOutstanding("the library");
              return static_cast<int>(ntoshost::fileCallsSeen());
            }),
            0);
}

TEST_F(FileInstance, OptionOfAStreamWithoutMemoryForItChoosesNothing) {
  EXPECT_EQ(inStartedModules([] {
              nOXDIAG100::tTrace& trace = nOXDIAG100::tTrace::getInstance();
              char word[] = "--destination";
              char name[] = "file";
              char* words[] = {word, name};
              nOXDIAG100::iTraceDestination* const before = trace.getDestination();
              ntoshost::failFrom(ntoshost::kFaultMemory, 1);
              trace.configure(2, words);
              ntoshost::clearFaults();
              return trace.getDestination() == before ? 1 : 0;
            }),
            1);
}
