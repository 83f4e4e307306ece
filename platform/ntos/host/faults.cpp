#include "ntoshost/faults.h"

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "compiler/compiler.h"
#include "ntoshost/violation.h"
#include "standardError.h"

namespace ntoshost {
namespace {

using nCompiler::loadAcquire;
using nCompiler::storeRelease;

constexpr u64 kNever = ~u64{0};

// Calls number `first` to `last` of the kinds fail.
constinit u32 g_kinds = kFaultAll;
constinit u64 g_first = kNever;
constinit u64 g_last = kNever;
constinit u32 g_chance = 0;  // of kFaultChances, when they fail at random; 0: by their number
constinit u64 g_seed = 0;
constinit pthread_once_t g_once = PTHREAD_ONCE_INIT;
constinit u64 g_seen = 0;
constinit u64 g_injected = 0;
constinit CallVisitor* g_visit = nullptr;
constinit void* g_visitContext = nullptr;

struct NamedKind {
  u32 kind;
  char const* name;
};

constexpr NamedKind kNames[] = {
    {kFaultMemory, "memory"},
    {kFaultUserCopy, "user copy"},
    {kFaultFixedMemory, "fixed memory"},
    {kFaultBus, "bus"},
    {kFaultSerialLine, "serial line"},
    {kFaultSocket, "socket"},
    {kFaultThread, "thread"},
    {kFaultFileOpen, "file open"},
    {kFaultFileWrite, "file write"},
    {kFaultFileRead, "file read"},
    {kFaultAttach, "attach"},
    {kFaultDevice, "device"},
    {kFaultRequest, "request"},
    {kFaultLink, "link"},
    {kFaultSecurity, "security"},
};

struct Plan {
  u32 kinds;
  u64 first;
  u64 last;
  u32 chance;
  u64 seed;
};

void follow(Plan const& plan) {
  storeRelease(g_kinds, 0u);
  storeRelease(g_seen, u64{0});
  storeRelease(g_injected, u64{0});
  storeRelease(g_first, plan.first);
  storeRelease(g_last, plan.last);
  storeRelease(g_seed, plan.seed);
  storeRelease(g_chance, plan.chance);
  storeRelease(g_kinds, plan.kinds);
}

// A number from all bits of both (the finalizer of splitmix64).
u64 mix(u64 seed, u64 number) {
  u64 value = seed + number * 0x9E3779B97F4A7C15;
  value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9;
  value = (value ^ value >> 27) * 0x94D049BB133111EB;
  return value ^ value >> 31;
}

u64 pickSeed() {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  u64 const seed = mix(static_cast<u64>(now.tv_sec), static_cast<u64>(now.tv_nsec));
  return seed % 1'000'000'000 + 1;
}

u64 followChance(u32 kinds, u32 chance, u64 seed) {
  if (chance > kFaultChances) {
    violation("failRandomly was asked to fail %u of %u calls.", chance, kFaultChances);
  }
  if (seed == 0) seed = pickSeed();
  char line[120];
  int const length = snprintf(line, sizeof(line),
                              "ntos: %u of %u calls of the kinds 0x%x fail at random, seed %llu\n",
                              chance, kFaultChances, kinds, seed);
  writeStandardError(line, static_cast<size_t>(length));
  follow({chance == 0 ? 0 : kinds, kNever, kNever, chance, seed});
  return seed;
}

// Reads a number and the comma behind it, if there is one. False when there is no number, and when
// something else follows.
bool readField(char const*& text, u64& value) {
  char* end = nullptr;
  value = strtoull(text, &end, 0);
  if (end == text || (*end != 0 && *end != ',')) return false;
  bool const endsInComma = *end == ',' && end[1] == 0;
  text = *end == ',' ? end + 1 : end;
  return !endsInComma;
}

// "SEED", "SEED,CHANCE" or "SEED,CHANCE,KINDS".
void followEnvironment() {
  char const* const text = getenv("OXDIAG_FAIL_RANDOMLY");
  if (text == nullptr) return;
  constexpr u64 kUsualChance = 600;
  u64 fields[] = {0, kUsualChance, kFaultAll};
  char const* rest = text;
  bool isSound = readField(rest, fields[0]);
  for (u32 i = 1; i < 3 && isSound && *rest != 0; ++i) isSound = readField(rest, fields[i]);
  if (!isSound || *rest != 0 || fields[1] > kFaultChances || fields[2] > kFaultAll) {
    violation("OXDIAG_FAIL_RANDOMLY is '%s'; it has to be SEED[,CHANCE[,KINDS]].", text);
  }
  followChance(static_cast<u32>(fields[2]), static_cast<u32>(fields[1]), fields[0]);
}

// Once, and before anything that the program says itself.
void heedEnvironment() {
  pthread_once(&g_once, followEnvironment);
}

void arm(u32 kinds, u64 first, u64 last) {
  heedEnvironment();
  follow({kinds, first, last, 0, 0});
}

bool isToFail(u64 number) {
  u32 const chance = loadAcquire(g_chance);
  if (chance != 0) return mix(loadAcquire(g_seed), number) % kFaultChances < chance;
  return number >= loadAcquire(g_first) && number <= loadAcquire(g_last);
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

u64 failRandomly(u32 kinds, u32 chance, u64 seed) {
  heedEnvironment();
  return followChance(kinds, chance, seed);
}

void clearFaults() {
  heedEnvironment();
  storeRelease(g_kinds, 0u);
}

u64 fallibleCallsSeen() {
  return loadAcquire(g_seen);
}
u64 faultsInjected() {
  return loadAcquire(g_injected);
}

char const* faultName(u32 kind) {
  for (NamedKind const& named : kNames) {
    if (named.kind == kind) return named.name;
  }
  return "other";
}

void visitFallibleCalls(CallVisitor* visit, void* context) {
  if (visit != nullptr) storeRelease(g_visitContext, context);
  storeRelease(g_visit, visit);
}

bool injectFault(u32 kind) {
  if (CallVisitor* const visit = loadAcquire(g_visit)) visit(loadAcquire(g_visitContext), kind);
  heedEnvironment();
  if ((loadAcquire(g_kinds) & kind) == 0) return false;
  u64 const number = __atomic_add_fetch(&g_seen, 1, __ATOMIC_ACQ_REL);
  if (!isToFail(number)) return false;
  __atomic_add_fetch(&g_injected, 1, __ATOMIC_ACQ_REL);
  return true;
}

}  // namespace ntoshost
