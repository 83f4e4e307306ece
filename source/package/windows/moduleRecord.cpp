#include "package/windows/moduleRecord.h"

#include "ntos/string.h"
#include "package/windows/moduleStrings.h"
#include "package/windows/packageEntry.h"

namespace nOXDIAG100 {

constinit tModuleIdentity const kModuleIdentity = {
    tModuleIdentity::kFormat,
    kModuleName,
    {0xB4E0D7C2, 0x5A39, 0x4F16, {0x8C, 0x71, 0x2E, 0x93, 0x60, 0xAF, 0x1D, 0x58}},
    kModuleFileName,
    kBuildString};

constinit tModuleRecord moduleRecord = {
    {&moduleRecord.package, nullptr, &moduleEntry, 0},
    {tModulePackage::kFormat, &kModuleIdentity, 0, {}, {}, 0, 0, {}}};

void fillModuleRecord(UNICODE_STRING const* registryPath) {
  tModulePackage& package = moduleRecord.package;
  package.registryPath = {0, sizeof(package.registryPathText), package.registryPathText};
  RtlCopyUnicodeString(&package.registryPath, registryPath);
  moduleRecord.info.name = package.identity->name;
}

}  // namespace nOXDIAG100
