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
  UNICODE_STRING path = {0, sizeof(package.registryPathText), package.registryPathText};
  RtlCopyUnicodeString(&path, registryPath);
  package.registryPath = {path.Length, path.MaximumLength, path.Buffer};
  moduleRecord.info.name = package.identity->name;
}

void clearModuleRecord() {
  tModulePackage& package = moduleRecord.package;
  package = {tModulePackage::kFormat, package.identity, 0, {}, {}, 0, 0, {}};
  moduleRecord.info.name = nullptr;
}

}  // namespace nOXDIAG100
