// What docs/crash-dump.md says of memory that a debugger looks at.

#include "../../platform/vexk/common/tEventRing.h"
#include "oxdiagk/tRecorderRing.h"
#include "oxdiagk/tStatus2.h"

using nOXDIAG100::tRecorderRing;

static_assert(sizeof(tRecorderRing::kSignature) == 16);
static_assert(offsetof(tRecorderRing, headSize) == 16 && sizeof(tRecorderRing) == 56);
static_assert(offsetof(tRecorderRing, layout) == 20 && tRecorderRing::kLayout == 1);
static_assert(offsetof(tRecorderRing, capacity) == 24 && offsetof(tRecorderRing, inverse) == 32);
static_assert(offsetof(tRecorderRing, written) == 40 && offsetof(tRecorderRing, address) == 48);

static_assert(sizeof(tEventRing) == 8 + kVexEventCount * 256);
static_assert(kVexEventCount == 64 && kVexEventTextSize == 232);
static_assert(kVexEventLife == 0 && kVexEventFailure == 10);

static_assert(sizeof(nOXDIAG100::tStatus2) == 16);
