#include "ntoshost/faults.h"

namespace ntoshost {
namespace {

constexpr u64 kNever = ~u64{0};

// Calls number `first` to `last` of the kinds fail.
constinit u32 g_kinds = kFaultAll;
constinit u64 g_first = kNever;
constinit u64 g_last = kNever;
constinit u64 g_seen = 0;
constinit u64 g_injected = 0;

template <class T>
T load(T const& value) {
  return __atomic_load_n(&value, __ATOMIC_ACQUIRE);
}

template <class T>
void store(T& value, T newValue) {
  __atomic_store_n(&value, newValue, __ATOMIC_RELEASE);
}

void arm(u32 kinds, u64 first, u64 last) {
  store(g_kinds, 0u);
  store(g_seen, u64{0});
  store(g_injected, u64{0});
  store(g_first, first);
  store(g_last, last);
  store(g_kinds, kinds);
}

}  // namespace

void failNth(u32 kinds, u64 n) {
  arm(kinds, n, n);
}
void failNth(u64 n) {
  failNth(kFaultAll, n);
}

void failFrom(u32 kinds, u64 n) {
  arm(kinds, n, kNever);
}
void failFrom(u64 n) {
  failFrom(kFaultAll, n);
}

void watchCalls(u32 kinds) {
  arm(kinds, kNever, kNever);
}

void clearFaults() {
  store(g_kinds, 0u);
}

u64 fallibleCallsSeen() {
  return load(g_seen);
}
u64 faultsInjected() {
  return load(g_injected);
}

bool injectFault(u32 kind) {
  if ((load(g_kinds) & kind) == 0) return false;
  u64 const number = __atomic_add_fetch(&g_seen, 1, __ATOMIC_ACQ_REL);
  if (number < load(g_first) || number > load(g_last)) return false;
  __atomic_add_fetch(&g_injected, 1, __ATOMIC_ACQ_REL);
  return true;
}

}  // namespace ntoshost
