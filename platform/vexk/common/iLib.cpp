#include "vexk/iLib.h"

#include "tDispatcherTable.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"

namespace {

bool isGoodName(char const* name) {
  if (name == nullptr) return false;
  u32 length = 0;
  while (length <= iLib::kMaxNameLength && name[length] != '\0') ++length;
  return length != 0 && length <= iLib::kMaxNameLength;
}

// Says so when the layer does not run. Returns whether there is no error.
bool demandRunning(i32& status) {
  if (status >= 0 && pkgIsVexkInitialized() == 0) status = kStatusNotInitialized;
  return status >= 0;
}

void keepError(i32 result, i32& status) {
  if (result < 0) status = result;
}

}  // namespace

iLib::iDispatcher::~iDispatcher() = default;

void iLib::exportDispatcher(iDispatcher& dispatcher, i32& status) {
  if (!demandRunning(status)) return;
  bool const isGood = isGoodName(dispatcher.getName());
  keepError(isGood ? vexDispatcherTable.add(dispatcher) : kStatusBadArgument, status);
}

void iLib::unexportDispatcher(iDispatcher& dispatcher, i32& status) {
  vexDispatcherTable.remove(dispatcher);
  demandRunning(status);
}

void iLib::deliver(char const* name, size_t length, u64 request, i32& status) {
  if (!demandRunning(status)) return;
  bool const isNamed = name != nullptr && length <= kMaxNameLength;
  keepError(isNamed ? vexDispatcherTable.deliver(name, length, request) : kStatusNoDispatcher,
            status);
}
