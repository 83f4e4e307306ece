#include "ntos/debug.h"

#include <pthread.h>

#include "format/format.h"
#include "irqlCheck.h"
#include "ntos/status.h"
#include "ntoshost/debugPrint.h"
#include "standardError.h"

namespace ntoshost {
namespace {

void printToStandardError(void*, char const* text, size_t length) {
  writeStandardError(text, length);
}

constinit pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
constinit DebugPrintSink* g_sink = printToStandardError;
constinit void* g_context = nullptr;

void print(char const* format, va_list list, char const* call) {
  requireIrqlAtMost(HIGH_LEVEL, call);
  char buffer[kDebugPrintLimit];
  TextSink<char> text(buffer, sizeof(buffer));
  FormatArguments arguments(list);
  formatInto(text, format, arguments, call);
  if (text.isCut()) buffer[sizeof(buffer) - 1] = '\n';
  pthread_mutex_lock(&g_lock);
  g_sink(g_context, buffer, text.getLength());
  pthread_mutex_unlock(&g_lock);
}

}  // namespace

void setDebugPrintSink(DebugPrintSink* sink, void* context) {
  pthread_mutex_lock(&g_lock);
  g_sink = sink != nullptr ? sink : printToStandardError;
  g_context = context;
  pthread_mutex_unlock(&g_lock);
}

}  // namespace ntoshost

u32 DbgPrint(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  ntoshost::print(format, arguments, "DbgPrint");
  va_end(arguments);
  return STATUS_SUCCESS;
}

// As a kernel to which nobody has said what else to show.
u32 vDbgPrintEx(u32, u32 level, char const* format, va_list arguments) {
  if (level == DPFLTR_ERROR_LEVEL) ntoshost::print(format, arguments, "vDbgPrintEx");
  return STATUS_SUCCESS;
}
