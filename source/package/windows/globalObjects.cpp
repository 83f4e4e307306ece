#include "package/windows/globalObjects.h"

#include "config/tConfigTunnel.h"
#include "config/tInstanceRegistry.h"
#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "oxdiagk/iStatus2Description.h"
#include "oxdiagk/iStringIDToWideStringConverter.h"
#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagk/tReportItem.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "package/windows/tStateDispatcher.h"
#include "package/windows/tTerminatorList.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "stl/memory.h"

namespace nOXDIAG100 {
namespace {

using tInitialiser = i32 (*)();

// Positions are part of the order in which objects may rely on each other; an entry without an
// object is null and skipped.
constexpr u32 kInitialiserCount = 42;
constexpr u32 kCountEntry = 0;
constexpr u32 kRegistryEntry = 1;
constexpr u32 kTunnelEntry = 2;
constexpr u32 kAssertEntry = 4;
constexpr u32 kForEmptyContainersEntry = 5;
constexpr u32 kForI64Entry = 6;
constexpr u32 kTimeAbsoluteEntry = 7;
constexpr u32 kDescriptionFaceEntry = 8;
constexpr u32 kStringConverterEntry = 9;
constexpr u32 kVariantReportableEntry = 10;
// The templates' instances have every second entry from 11 to 29 for a static object, which they do
// not need: the records of classes are constants.
constexpr u32 kRangeI32Entry = 12;
constexpr u32 kRangeU32Entry = 14;
constexpr u32 kRangeI64Entry = 16;
constexpr u32 kRangeU64Entry = 18;
constexpr u32 kEnumPropertyEntry = 19;
constexpr u32 kGUIDEntry = 20;
constexpr u32 kIntrinsicI32Entry = 22;
constexpr u32 kIntrinsicU32Entry = 24;
constexpr u32 kIntrinsicI64Entry = 26;
constexpr u32 kIntrinsicU64Entry = 28;
constexpr u32 kIntrinsicTextEntry = 30;
constexpr u32 kPropertyIDEntry = 31;
constexpr u32 kReportItemEntry = 32;
constexpr u32 kTimeEntry = 33;
constexpr u32 kDescriptionEntry = 34;
constexpr u32 kDescriptionImplementationEntry = 35;
constexpr u32 kStringProxyEntry = 36;
constexpr u32 kTitleEntry = 37;
constexpr u32 kWhiteSpaceEntry = 38;
constexpr u32 kSerialEntry = 39;
constexpr u32 kFileEntry = 40;
constexpr u32 kTraceEntry = 41;

constinit tTerminatorList terminators;
constinit u32 initialisationCount = 0;
constinit bool areBuilt = false;  // or partly built

i32 countInitialisation() {
  ++initialisationCount;
  return 0;
}

// For an object that its first user builds: nothing now, and its destruction at the end.
template <class T>
i32 pushTerminator() {
  return terminators.push(&T::destroyInstance);
}

template <class T>
i32 initialiseInstance() {
  T::constructInstance();
  i32 const pushed = pushTerminator<T>();
  if (pushed != 0) T::destroyInstance();
  return pushed;
}

// For a class that is found by its name from here to the end.
template <class T>
i32 registerClass() {
  i32 status = 0;
  T::___registerClass(status);
  if (status < 0) return status;
  i32 const pushed = terminators.push(&T::___unregisterClass);
  if (pushed != 0) T::___unregisterClass();
  return pushed;
}

template <class T>
tConfigurable& getConfigurable() {
  return T::getInstance();
}

// The objects that the registry issues handles for.
constexpr tNamedInstance kNamedInstances[] = {
    {"trace", &getConfigurable<tTrace>},
    {"assert", &getConfigurable<tAssertConfiguration>},
};
constexpr u32 kNamedInstanceCount = sizeof(kNamedInstances) / sizeof(kNamedInstances[0]);

struct tModuleRegistry {
  static void constructInstance() {
    tInstanceRegistry::constructInstance({kNamedInstances, kNamedInstanceCount});
  }
  static void destroyInstance() { tInstanceRegistry::destroyInstance(); }
};

// What user-mode programs reach the module by.
struct tDispatchers {
  static void constructInstance() {
    tConfigTunnel::constructInstance();
    tStateDispatcher::constructInstance();
  }
  static void destroyInstance() {
    tStateDispatcher::destroyInstance();
    tConfigTunnel::destroyInstance();
  }
};

// The destinations that have no entry of their own.
struct tFileAndRecorder {
  static void destroyInstance() {
    tRecorderTraceDestination::destroyInstance();
    tFileTraceDestination::destroyInstance();
  }
};

struct tInitialiserTable {
  tInitialiser entries[kInitialiserCount] = {};

  constexpr tInitialiserTable() {
    entries[kCountEntry] = &countInitialisation;
    entries[kRegistryEntry] = &initialiseInstance<tModuleRegistry>;
    entries[kTunnelEntry] = &initialiseInstance<tDispatchers>;
    entries[kAssertEntry] = &initialiseInstance<tAssertConfiguration>;
    entries[kForEmptyContainersEntry] = &registerClass<iReportableTranslatorForEmptyContainers>;
    entries[kForI64Entry] = &registerClass<iReportableTranslatorForI64>;
    entries[kTimeAbsoluteEntry] = &registerClass<iReportableTranslatorTimeAbsolute>;
    entries[kDescriptionFaceEntry] = &registerClass<iStatus2Description>;
    entries[kStringConverterEntry] = &registerClass<iStringIDToWideStringConverter>;
    entries[kVariantReportableEntry] = &registerClass<iVariantReportable>;
    entries[kRangeI32Entry] = &registerClass<tBoundedRangeReportable<i32>>;
    entries[kRangeU32Entry] = &registerClass<tBoundedRangeReportable<u32>>;
    entries[kRangeI64Entry] = &registerClass<tBoundedRangeReportable<i64>>;
    entries[kRangeU64Entry] = &registerClass<tBoundedRangeReportable<u64>>;
    entries[kEnumPropertyEntry] = &registerClass<tEnumPropertyReportable>;
    entries[kGUIDEntry] = &registerClass<tGUIDReportable>;
    entries[kIntrinsicI32Entry] = &registerClass<tIntrinsicTypeReportable<i32>>;
    entries[kIntrinsicU32Entry] = &registerClass<tIntrinsicTypeReportable<u32>>;
    entries[kIntrinsicI64Entry] = &registerClass<tIntrinsicTypeReportable<i64>>;
    entries[kIntrinsicU64Entry] = &registerClass<tIntrinsicTypeReportable<u64>>;
    entries[kIntrinsicTextEntry] = &registerClass<tIntrinsicTypeReportable<_STL::wstring>>;
    entries[kPropertyIDEntry] = &registerClass<tPropertyIDReportable>;
    entries[kReportItemEntry] = &registerClass<tReportItem>;
    entries[kTimeEntry] = &registerClass<tSSTimeAbsoluteReportable>;
    entries[kDescriptionEntry] = &registerClass<tStatus2Description>;
    entries[kDescriptionImplementationEntry] = &registerClass<tStatus2DescriptionImplementation>;
    entries[kStringProxyEntry] = &registerClass<tStringProxyReportable>;
    entries[kTitleEntry] = &registerClass<tTitleReportable>;
    entries[kWhiteSpaceEntry] = &registerClass<tWhiteSpaceReportable>;
    entries[kSerialEntry] = &pushTerminator<tSerialTraceDestination>;
    entries[kFileEntry] = &pushTerminator<tFileAndRecorder>;
    entries[kTraceEntry] = &initialiseInstance<tTrace>;
  }
};

constexpr tInitialiserTable initialisers;

}  // namespace

i32 initialiseGlobals() {
  if (initialisationCount != 0) {
    ++initialisationCount;
    return 0;
  }
  areBuilt = true;
  for (tInitialiser initialise : initialisers.entries) {
    i32 const status = initialise == nullptr ? 0 : initialise();
    if (status != 0) return status < 0 ? status : kStatusOutOfMemory;
  }
  return 0;
}

void terminateGlobals() {
  if (initialisationCount == 1) {
    terminators.runAll();
    areBuilt = false;
  } else if (initialisationCount != 0) {
    --initialisationCount;
  }
}

bool forgetGlobals() {
  if (areBuilt) return false;
  initialisationCount = 0;
  return true;
}

}  // namespace nOXDIAG100
