#include "faultHandler.h"

#include <pthread.h>
#include <signal.h>

namespace ntoshost {
namespace {

constinit struct sigaction g_former = {};
constinit pthread_once_t g_once = PTHREAD_ONCE_INIT;

// What nobody served before ends the program: the instruction is repeated, or the signal that
// somebody sent.
void endWith(int signalNumber, bool wasSent) {
  sigaction(signalNumber, &g_former, nullptr);
  if (wasSent) raise(signalNumber);
}

void passOn(int signalNumber, siginfo_t* information, void* context) {
  if ((g_former.sa_flags & SA_SIGINFO) != 0) {
    g_former.sa_sigaction(signalNumber, information, context);
  } else if (g_former.sa_handler == SIG_DFL || g_former.sa_handler == SIG_IGN) {
    endWith(signalNumber, information->si_code <= 0);
  } else {
    g_former.sa_handler(signalNumber);
  }
}

bool isServed(siginfo_t const& information, void* context) {
  if (information.si_code <= 0) return false;
  u64 const address = reinterpret_cast<u64>(information.si_addr);
  requireNoStackOverflow(address);
  requireNoUnmappedImage(address, context);
  return information.si_code == SEGV_PKUERR &&
         servePagedFault(address, information.si_pkey, context);
}

void serve(int signalNumber, siginfo_t* information, void* context) {
  if (!isServed(*information, context)) passOn(signalNumber, information, context);
}

void install() {
  struct sigaction action = {};
  action.sa_sigaction = serve;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigaction(SIGSEGV, &action, &g_former);
}

}  // namespace

void installFaultHandler() {
  pthread_once(&g_once, install);
}

}  // namespace ntoshost
