#include "tWorker.h"

#include <windows.h>

namespace {

DWORD WINAPI enter(void* work) {
  reinterpret_cast<void (*)()>(work)();
  return 0;
}

}  // namespace

tWorker::tWorker(void (*work)())
    : thread(CreateThread(nullptr, 0, &enter, reinterpret_cast<void*>(work), 0, nullptr)) {
}

tWorker::~tWorker() {
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

void tWorker::sleep(unsigned int milliseconds) {
  Sleep(milliseconds);
}
