#pragma once

// Memory of this process that arrives late, or never.

#include <fcntl.h>
#include <linux/userfaultfd.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "requests/tChild.h"

constexpr size_t kPage = 4096;

inline void* newPages(size_t size) {
  return mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

inline void* newPage() {
  return newPages(kPage);
}

// Pages of this process that are there when this says so: until then, or the end of the process,
// whoever touches one waits for it.
class tWithheldPages {
 public:
  tWithheldPages(void* begin, size_t size)
      : faults(static_cast<int>(syscall(SYS_userfaultfd, O_CLOEXEC))) {
    uffdio_api interface = {UFFD_API, 0, 0};
    uffdio_register registration = {};
    registration.range = {reinterpret_cast<u64>(begin), size};
    registration.mode = UFFDIO_REGISTER_MODE_MISSING;
    isWithheld = faults >= 0 && ioctl(faults, UFFDIO_API, &interface) == 0 &&
                 ioctl(faults, UFFDIO_REGISTER, &registration) == 0;
  }

  // Until somebody waits for one of them.
  void awaitTouch() const {
    uffd_msg touch = {};
    while (read(faults, &touch, sizeof(touch)) != ssize_t{sizeof(touch)}) {
    }
  }

  // With that at the start of the page, and zeros behind.
  template <class tContent>
  bool deliver(void* page, tContent const& start) const {
    alignas(kPage) u8 content[kPage] = {};
    memcpy(content, &start, sizeof(start));
    uffdio_copy filling = {reinterpret_cast<u64>(page), reinterpret_cast<u64>(content), kPage, 0,
                           0};
    return ioctl(faults, UFFDIO_COPY, &filling) == 0;
  }

  // Withholds no more.
  void end() const { ::close(faults); }

  bool isWithheld;  // false when the system does not let this program do that

 private:
  int faults;
};

inline bool withhold(void* page) {
  return tWithheldPages(page, kPage).isWithheld;
}

inline bool canWithhold() {
  return tChild([] { return withhold(newPage()) ? 0 : 1; }).await() == 0;
}
