#include "tWorkers.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <thread>

#include "tDrive.h"

namespace {

constexpr unsigned kSecondsOfARound = 60;  // the longest takes 3 on an idle machine
constexpr u64 kNone = ~u64{0};

struct tWorker {
  u64* job;  // shared; the one that it does, or shall do first
  int output;
};

struct tTask {
  u64 count;
  u64* next;  // shared
  tWorkers::tJob const& job;
};

// Of a process that works.
int standardError = -1;
tDrive* driveOfJobs = nullptr;

u64 takeNext(tTask const& task) {
  u64 const index = __atomic_fetch_add(task.next, 1, __ATOMIC_RELAXED);
  return index < task.count ? index : kNone;
}

void doJobs(tTask const& task, tWorker const& worker) {
  u64& current = *worker.job;
  if (current == kNone) current = takeNext(task);
  while (current != kNone) {
    tWorkers::beginRound();
    bool const isWanted = task.job(current);
    current = isWanted ? takeNext(task) : kNone;
  }
}

[[noreturn]] void work(tTask const& task, tWorker const& worker) {
  standardError = worker.output;
  dup2(worker.output, STDERR_FILENO);
  {
    tDrive drive;
    if (!drive.mount()) _exit(1);
    driveOfJobs = &drive;
    doJobs(task, worker);
  }
  _exit(0);
}

std::string readOutput(int output) {
  std::string text(1 << 16, '\0');
  ssize_t const length = pread(output, text.data(), text.size(), 0);
  text.resize(length < 0 ? 0 : static_cast<size_t>(length));
  return text;
}

std::string reasonOf(int status, int output) {
  std::string const end = WIFSIGNALED(status) ? std::string(strsignal(WTERMSIG(status)))
                                              : "exit code " + std::to_string(WEXITSTATUS(status));
  return end + "\n" + readOutput(output);
}

}  // namespace

void* tWorkers::shareBytes(size_t size) {
  return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
}

void tWorkers::beginRound() {
  alarm(kSecondsOfARound);
  if (ftruncate(standardError, 0) != 0) _exit(1);
  driveOfJobs->empty();
}

void tWorkers::run(u64 count, tJob const& job, tEnd const& died) {
  tTask const task = {count, share<u64>(), job};
  std::map<pid_t, tWorker> workers;
  auto const start = [&](tWorker const& worker) {
    std::fflush(nullptr);
    pid_t const process = fork();
    if (process == 0) work(task, worker);
    workers[process] = worker;
  };
  for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) {
    tWorker const worker = {share<u64>(), memfd_create("output", MFD_CLOEXEC)};
    fcntl(worker.output, F_SETFL, O_APPEND);
    *worker.job = kNone;
    start(worker);
  }
  while (!workers.empty()) {
    int status = 0;
    auto const ended = workers.find(wait(&status));
    if (ended == workers.end()) continue;
    tWorker const worker = ended->second;
    workers.erase(ended);
    if (*worker.job == kNone && status == 0) {
      close(worker.output);
      continue;
    }
    bool const again = died(*worker.job, reasonOf(status, worker.output));
    if (!again) *worker.job = kNone;
    start(worker);
  }
}
