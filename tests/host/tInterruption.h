#pragma once

#include <signal.h>
#include <stddef.h>
#include <sys/mman.h>

#include <functional>
#include <utility>

// Pages of memory, all zero.
class tPages {
 public:
  static constexpr size_t kPage = 4096;

  explicit tPages(size_t pageCount)
      : size(pageCount * kPage),
        bytes(static_cast<char*>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
  ~tPages() { munmap(bytes, size); }
  tPages(tPages const&) = delete;
  tPages& operator=(tPages const&) = delete;

  char* at(size_t place) const { return bytes + place; }

 private:
  size_t const size;
  char* const bytes;
};

// Whoever is the first to touch these pages is interrupted there: `action` runs, and the memory is
// as any other from then on.
class tInterruption {
 public:
  tInterruption(char* firstPage, size_t pageCount, std::function<void()> interrupt)
      : first(firstPage), size(pageCount * tPages::kPage), action(std::move(interrupt)) {
    struct sigaction handling = {};
    handling.sa_sigaction = &interruptAt;
    handling.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigaction(SIGSEGV, &handling, nullptr);
    next = all;
    all = this;
    mprotect(first, size, PROT_NONE);
  }
  ~tInterruption() {
    all = next;
    mprotect(first, size, PROT_READ | PROT_WRITE);
    if (all == nullptr) signal(SIGSEGV, SIG_DFL);
  }
  tInterruption(tInterruption const&) = delete;
  tInterruption& operator=(tInterruption const&) = delete;

 private:
  static void interruptAt(int, siginfo_t* fault, void*) {
    auto const* const place = static_cast<char const*>(fault->si_addr);
    for (tInterruption* each = all; each != nullptr; each = each->next) {
      if (place < each->first || place >= each->first + each->size) continue;
      mprotect(each->first, each->size, PROT_READ | PROT_WRITE);
      return each->action();
    }
    signal(SIGSEGV, SIG_DFL);  // a fault of the test's own
  }

  static inline tInterruption* all = nullptr;
  char* const first;
  size_t const size;
  std::function<void()> const action;
  tInterruption* next = nullptr;
};
