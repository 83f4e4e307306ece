#pragma once

#include "ntos/types.h"

// Fault injection: makes fallible calls of the executive fail, by count or at random. Calls of all
// threads are counted together. `kinds` are bits.
//
//     ntoshost::failNth(ntoshost::kFaultMemory, 2);  // the second allocation from here fails
//     ...
//     ntoshost::clearFaults();
//     EXPECT_EQ(ntoshost::faultsInjected(), 1u);

namespace ntoshost {

constexpr u32 kFaultMemory = 1;         // ExAllocatePoolWithTag gives null
constexpr u32 kFaultUserCopy = 2;       // copyFromUser and copyToUser fault at the first byte
constexpr u32 kFaultFixedMemory = 4;    // a library's own pool, in programs that see to it
constexpr u32 kFaultBus = 8;            // iBus::openRange of the host's ports gives 0
constexpr u32 kFaultSerialLine = 0x10;  // vexkhost::connectSerial... is refused, EMFILE
constexpr u32 kFaultSocket = 0x20;      // the request server gets no socket, EMFILE
constexpr u32 kFaultThread = 0x40;      // it gets no thread, EAGAIN
constexpr u32 kFaultFileOpen = 0x100;   // ZwCreateFile gives STATUS_INSUFFICIENT_RESOURCES
constexpr u32 kFaultFileWrite = 0x200;  // so does ZwWriteFile
constexpr u32 kFaultFileRead = 0x400;   // so do ZwReadFile and ZwQueryInformationFile
constexpr u32 kFaultFile = 0x700;       // all three
constexpr u32 kFaultAttach = 0x800;     // IoAttachDeviceToDeviceStack gives null
constexpr u32 kFaultDevice = 0x1000;    // IoCreateDevice gives STATUS_INSUFFICIENT_RESOURCES
constexpr u32 kFaultRequest = 0x2000;   // IoAllocateIrp and IoBuild... give null
constexpr u32 kFaultLink = 0x4000;      // IoCreateSymbolicLink as IoCreateDevice
constexpr u32 kFaultSecurity = 0x8000;  // ObOpenObjectByPointer, ZwSetSecurityObject likewise
constexpr u32 kFaultOther = 0x10000;  // this bit and up: for other host-side code, see injectFault
constexpr u32 kFaultAll = 0xFFFFFFFF;

// The name of one kind: "memory", "file open"; "other" from kFaultOther on.
char const* faultName(u32 kind);

// From here on, the nth call (counted from 1) of the kinds fails, and only this one. Starts the
// counts below from zero, as the other two do.
void failNth(u32 kinds, u64 n);
void failNth(u64 n);  // of all kinds

// From here on, the nth call (counted from 1) of the kinds and every later one fail.
void failFrom(u32 kinds, u64 n);
void failFrom(u64 n);  // of all kinds

// From here on, `chance` of kFaultChances calls of the kinds fail, as low resources do to a driver
// at any time. Which ones is told by the seed and the number of the call alone, so that the seed
// repeats a run of one thread; of several threads it repeats it as far as they come in the same
// order. 0 stands for a seed by the clock. Prints kinds, chance and seed on standard error, and
// returns the seed.
//
// The environment variable OXDIAG_FAIL_RANDOMLY=SEED[,CHANCE[,KINDS]] does so from the program's
// first fallible call until the first of these functions is called; without more than a seed 600 of
// them fail, of all kinds. KINDS is decimal, or hexadecimal behind 0x.
constexpr u32 kFaultChances = 10'000;
u64 failRandomly(u32 kinds, u32 chance, u64 seed);

// Only counts the calls of the kinds. So it is when the program starts, for all kinds.
void watchCalls(u32 kinds);

// No call fails any more. The counts stay and stand still until the next failNth, failFrom or
// watchCalls.
void clearFaults();

// Calls of the armed kinds since the last failNth, failFrom or watchCalls; how many of them failed.
u64 fallibleCallsSeen();
u64 faultsInjected();

// Calls visit(context, kind) at the start of each fallible call, whether it is to fail or not,
// armed or not; null ends that. `visit` runs on the calling thread, at its IRQL and on its stack,
// and uses nothing of the executive. Other threads may make such calls meanwhile; one that is under
// way when null is set may still be visited. Another visitor is set after a null.
using CallVisitor = void(void* context, u32 kind);
void visitFallibleCalls(CallVisitor* visit, void* context);

// Called at the start of a fallible call of one kind: true when the call is to fail. What takes its
// memory from the pool needs no kind of its own: a lock cannot be opened when the pool gives none.
bool injectFault(u32 kind);

// Runs operation(n) for n = 1, 2, ... with the nth call of the kinds failing, until a run in which
// no call failed. Returns the number of runs in which one did.
//
//     u64 failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 n) { ... });
template <class Operation>
u64 failEachCall(u32 kinds, Operation operation) {
  for (u64 n = 1;; ++n) {
    failNth(kinds, n);
    operation(n);
    clearFaults();
    if (faultsInjected() == 0) return n - 1;
  }
}

}  // namespace ntoshost
