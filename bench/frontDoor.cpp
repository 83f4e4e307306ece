// What the front door costs: a handle taken and given back, a look-up, beside a registry of the
// standard library; a configuration and an inquiry by handle, beside the direct call of the object.

#include <benchmark/benchmark.h>

#include <mutex>
#include <unordered_map>

#include "ntos/types.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tTrace.h"

namespace {

using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;

constexpr int kOtherHandles = 32;  // that are in use all the while
constexpr char kOption[] = "--timestamp off";

// The same with what everybody has at hand: no names, no care for handles released just now.
class tFloorRegistry {
 public:
  u32 acquire(tConfigurable& instance) {
    std::lock_guard const guard(mutex);
    table.emplace(++last, &instance);
    return last;
  }

  void release(u32 handle) {
    std::lock_guard const guard(mutex);
    table.erase(handle);
  }

  void configure(u32 handle) {
    tConfigurable* const instance = find(handle);
    if (instance != nullptr) instance->configure();
  }

 private:
  tConfigurable* find(u32 handle) {
    std::lock_guard const guard(mutex);
    auto const found = table.find(handle);
    return found == table.end() ? nullptr : found->second;
  }

  std::mutex mutex;
  std::unordered_map<u32, tConfigurable*> table;
  u32 last = 0;
};

// Handles of the library's registry; the last one is for the benchmark.
class tOurHandles {
 public:
  tOurHandles() {
    for (u32& handle : handles) handle = nOXDIAG100::acquireInstance(nullptr);
  }
  ~tOurHandles() {
    for (u32 const handle : handles) nOXDIAG100::releaseInstance(handle);
  }
  tOurHandles(tOurHandles const&) = delete;
  tOurHandles& operator=(tOurHandles const&) = delete;

  u32 get() const { return handles[kOtherHandles]; }

 private:
  u32 handles[kOtherHandles + 1];
};

void takeOurs(benchmark::State& state) {
  tOurHandles const others;
  char name[] = "trace";
  for ([[maybe_unused]] auto run : state) {
    u32 const handle = nOXDIAG100::acquireInstance(name);
    if (handle == nOXDIAG100::kNoHandle) return state.SkipWithError("no handle");
    nOXDIAG100::releaseInstance(handle);
  }
}

void takeFloor(benchmark::State& state) {
  tFloorRegistry registry;
  for (int count = 0; count < kOtherHandles; ++count) registry.acquire(tTrace::getInstance());
  for ([[maybe_unused]] auto run : state) registry.release(registry.acquire(tTrace::getInstance()));
}

void findOurs(benchmark::State& state) {
  tOurHandles const handles;
  for ([[maybe_unused]] auto run : state) nOXDIAG100::configure(handles.get());
}

void findFloor(benchmark::State& state) {
  tFloorRegistry registry;
  u32 handle = 0;
  for (int count = 0; count <= kOtherHandles; ++count) {
    handle = registry.acquire(tTrace::getInstance());
  }
  for ([[maybe_unused]] auto run : state) registry.configure(handle);
}

void configureOurs(benchmark::State& state) {
  tOurHandles const handles;
  for ([[maybe_unused]] auto run : state) nOXDIAG100::configure(handles.get(), kOption);
}

void configureDirect(benchmark::State& state) {
  for ([[maybe_unused]] auto run : state) tTrace::getInstance().configure(kOption);
}

void inquireOurs(benchmark::State& state) {
  tOurHandles const handles;
  char text[512];
  for ([[maybe_unused]] auto run : state) {
    nOXDIAG100::inquire(handles.get(), text, sizeof(text), nullptr);
    benchmark::DoNotOptimize(text);
  }
}

void inquireDirect(benchmark::State& state) {
  char text[512];
  for ([[maybe_unused]] auto run : state) {
    tTrace::getInstance().inquire(text, sizeof(text), nullptr);
    benchmark::DoNotOptimize(text);
  }
}

BENCHMARK(takeOurs)->Name("handle taken and given/ours");
BENCHMARK(takeFloor)->Name("handle taken and given/floor");
BENCHMARK(findOurs)->Name("handle looked up/ours");
BENCHMARK(findFloor)->Name("handle looked up/floor");
BENCHMARK(configureOurs)->Name("switch by handle/ours");
BENCHMARK(configureDirect)->Name("switch by handle/direct");
BENCHMARK(inquireOurs)->Name("inquire by handle/ours");
BENCHMARK(inquireDirect)->Name("inquire by handle/direct");

}  // namespace
