#include "package/windows/moduleRecord.h"

#include "ntos/string.h"
#include "package/windows/moduleStrings.h"
#include "package/windows/packageEntry.h"

namespace nOXDIAG100 {

// NOLINTNEXTLINE(cppcoreguidelines-interfaces-global-init): the address of a global is constant.
constinit tModuleRecord moduleRecord = {
    {&moduleRecord.package, nullptr, &moduleEntry, 0},
    {tModulePackage::kFormat, &kModuleIdentity, 0, {}, {}, 0, 0, {}}};

void fillModuleRecord(UNICODE_STRING const* registryPath) {
  tModulePackage& package = moduleRecord.package;
  package.registryPath = {0, sizeof(package.registryPathText), package.registryPathText};
  RtlCopyUnicodeString(&package.registryPath, registryPath);
  moduleRecord.info.name = package.identity->name;
}

void clearModuleRecord() {
  tModulePackage& package = moduleRecord.package;
  package = {tModulePackage::kFormat, package.identity, 0, {}, {}, 0, 0, {}};
  moduleRecord.info.name = nullptr;
}

}  // namespace nOXDIAG100
