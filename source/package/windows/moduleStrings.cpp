#include "package/windows/moduleStrings.h"

#include "build/version.h"

namespace nOXDIAG100 {

constexpr char kModuleName[] = "oxdiagk";

constexpr char kModuleFileName[] = "oxdiagk.dll";

constexpr char kBuildString[] = OXDIAG_BUILD_STRING;

constexpr tModuleIdentity kModuleIdentity = {
    tModuleIdentity::kFormat,
    kModuleName,
    {0xB4E0D7C2, 0x5A39, 0x4F16, {0x8C, 0x71, 0x2E, 0x93, 0x60, 0xAF, 0x1D, 0x58}},
    kModuleFileName,
    kBuildString};

}  // namespace nOXDIAG100
