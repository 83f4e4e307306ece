#include "vexk/moduleInfo.h"

#include "tDispatcherTable.h"
#include "tModuleTable.h"
#include "vexk/eventLog.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"

namespace {

bool isComplete(_tLibModuleInfo const& module) {
  return module.package != nullptr && module.name != nullptr && module.entry != nullptr;
}

i32 callEntry(_tLibModuleInfo const& module, u32 reason) {
  i32 const status = module.entry(reason);
  if (status < 0) {
    _vexLogEvent("vexk", "registration - ", kVexEventFailure,
                 "ssMain(%d) of %s failed with status %d\n", static_cast<int>(reason), module.name,
                 static_cast<int>(status));
  }
  return status;
}

i32 start(_tLibModuleInfo const& module) {
  i32 const status = callEntry(module, kModuleLoad);
  if (status < 0) {
    vexModuleTable.remove(module);
  } else {
    vexDispatcherTable.open(&module);
  }
  return status;
}

i32 registerModule(_tLibModuleInfo const& module) {
  if (pkgIsVexkInitialized() == 0) return kStatusNotInitialized;
  if (!isComplete(module)) return kStatusBadArgument;
  i32 const status = vexModuleTable.add(module);
  if (status >= 0) return start(module);
  _vexLogEvent("vexk", "registration - ", kVexEventFailure, "%s was not registered, status %d\n",
               module.name, static_cast<int>(status));
  return status;
}

i32 unregisterModule(_tLibModuleInfo const& module) {
  if (!vexModuleTable.remove(module)) return kStatusBadArgument;
  vexDispatcherTable.close(&module);
  return callEntry(module, kModuleUnload);
}

}  // namespace

void libRegisterModuleWithVEX(_tLibModuleInfo& module, i32& status) {
  if (status < 0) return;
  i32 const result = registerModule(module);
  if (result < 0) status = result;
}

void libUnregisterModuleWithVEX(_tLibModuleInfo& module, i32& status) {
  i32 const result = unregisterModule(module);
  if (status >= 0 && result < 0) status = result;
}
