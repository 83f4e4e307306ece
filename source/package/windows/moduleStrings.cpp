#include "package/windows/moduleStrings.h"

#include "build/version.h"

namespace nOXDIAG100 {

constexpr char kModuleName[] = "oxdiagk";

constexpr char kModuleFileName[] = "oxdiagk.dll";

constexpr char kBuildString[] = OXDIAG_BUILD_STRING;

}  // namespace nOXDIAG100
