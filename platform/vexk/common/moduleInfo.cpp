#include "vexk/moduleInfo.h"

#include "tDispatcherTable.h"
#include "tModuleTable.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"

namespace {

bool isComplete(_tLibModuleInfo const& module) {
  return module.package != nullptr && module.name != nullptr && module.entry != nullptr;
}

i32 registerModule(_tLibModuleInfo& module) {
  if (pkgIsVexkInitialized() == 0) return kStatusNotInitialized;
  if (!isComplete(module)) return kStatusBadArgument;
  i32 status = vexModuleTable.add(module);
  if (status < 0) return status;
  status = module.entry(kModuleLoad);
  if (status < 0) {
    vexModuleTable.remove(module);
  } else {
    vexDispatcherTable.open(&module);
  }
  return status;
}

i32 unregisterModule(_tLibModuleInfo& module) {
  if (!vexModuleTable.remove(module)) return kStatusBadArgument;
  vexDispatcherTable.close(&module);
  return module.entry(kModuleUnload);
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
