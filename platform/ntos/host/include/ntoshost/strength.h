#pragma once

// The executive comes in two strengths. A program has the one that it is linked with, and no other
// difference than this: what a correct program does, and what it gets for an answer, is the same.
//
//   strict  for tests. Breaking a rule of the kernel interface stops the program: every call looks
//           at the IRQL, the pool guards and poisons its blocks and holds freed ones back, and the
//           locks of each thread are on account.
//   plain   for benchmarks, tools and clients that run at their own speed. The pool is the C
//           library's memory without any limit, nobody looks at the IRQL, and locks are not on
//           account. What costs next to nothing is still watched: a mutex released by another
//           thread, an object that was never initialised, files, devices and requests.
//
// Fault injection works in both.

namespace ntoshost {

// "strict" or "plain".
char const* getStrength();

}  // namespace ntoshost
