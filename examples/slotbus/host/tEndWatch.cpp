#include "slotbus/host/tEndWatch.h"

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <string_view>

#include "slotbus/host/demoOptions.h"

namespace {

constexpr std::string_view kAbandoned =
    "slotbus_demo: ended in the middle of its output, which nobody takes.\n";

// Whoever starts a program that is to survive its terminal has SIGHUP ignored.
bool survivesTerminal() {
  struct sigaction atHangup = {};
  return sigaction(SIGHUP, nullptr, &atHangup) == 0 && atHangup.sa_handler == SIG_IGN;
}

sigset_t endSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  if (!survivesTerminal()) sigaddset(&set, SIGHUP);
  return set;
}

// A terminal that has been stopped takes no sentence either.
[[noreturn]] void abandon() {
  pollfd errors = {STDERR_FILENO, POLLOUT, 0};
  if (poll(&errors, 1, 0) == 1 && (errors.revents & POLLOUT) != 0) {
    [[maybe_unused]] auto const written =
        write(STDERR_FILENO, kAbandoned.data(), kAbandoned.size());
  }
  _exit(kExitNoOutput);
}

}  // namespace

tEndWatch::tEndWatch() {
  sigset_t const set = endSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  thread = std::thread(&tEndWatch::watch, this);
}

tEndWatch::~tEndWatch() {
  {
    std::lock_guard const held(lock);
    isOver = true;
  }
  changed.notify_all();
  // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread): the thread waits for it.
  pthread_kill(thread.native_handle(), SIGTERM);
  thread.join();
}

bool tEndWatch::waitForEnd(std::chrono::milliseconds longest) {
  std::unique_lock held(lock);
  return changed.wait_for(held, longest, [this] { return isAskedFor; });
}

void tEndWatch::watch() {
  sigset_t const set = endSignals();
  int signal = 0;
  while (sigwait(&set, &signal) != 0) {
  }
  std::unique_lock held(lock);
  isAskedFor = true;
  changed.notify_all();
  if (!changed.wait_for(held, kPatience, [this] { return isOver; })) abandon();
}
