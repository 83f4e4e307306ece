#pragma once

// A sanitizer's runtime, when one is in the program. The executive itself may have been built
// without it: a driver and its tests link the installed one.
extern "C" {
[[gnu::weak]] void __asan_init();
[[gnu::weak]] void __tsan_init();
}

namespace ntoshost {

// Whether a sanitizer is in the program: frames are bigger there, and stacks and memory faults are
// the sanitizer's.
inline bool isSanitized() {
  return __asan_init != nullptr || __tsan_init != nullptr;
}

}  // namespace ntoshost
