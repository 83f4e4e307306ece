#pragma once

// What most client components use, in one include. Each header is the manual of what it declares.
//
// Left out, to be included by those who need it:
//
//   oxdiagk/statusCodes.h       the library's own status codes by name
//   oxdiagk/reportableClass.h   for a reportable of a class of your own,
//   oxdiagk/reportableLists.h   and for one that holds a list
//   oxdiagk/package.h           for a bus driver: its buses and their children
//   oxdiagk/module.h            start and stop of the library on a host without the Windows kernel
//
// The others are included by these and nothing to begin with: api.h, atomicWord.h,
// tCategoryTable.h, tConfigurationLock.h, tContractSite.h, tCountedText.h, tGUIDText.h,
// tKernelTimeText.h, tLineLimit.h, tNumberByName.h, tRecorderRing.h, tReportText.h.

// clang-format off

// Tracing: the stream, a line or a block in one statement, which lines are shown, what the kernel's
// own values are called.
#include "oxdiagk/tTrace.h"
#include "oxdiagk/traceMacros.h"
#include "oxdiagk/tBlockTracer.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/kernelValues.h"

// Where trace text goes: derive your own, or the debugger, the serial port, a file, a buffer.
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagk/tCTFTraceDestination.h"

// Contracts: preconditions and their like in one statement, which are checked, what happens then.
#include "oxdiagk/contractMacros.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/assertion.h"

// Statuses: a code and where it was set, in one statement; the fixed memory behind them;
// the modules on its call stack, for those who save it.
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tStatus2ModuleList.h"

// Descriptions of statuses: typed values, and the vocabulary that makes a report of them.
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tReportItem.h"
#include "oxdiagk/iStatus2Description.h"
#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagk/tReportableValue.h"
#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "oxdiagk/iStringIDToWideStringConverter.h"

// Objects that are set by option words: in kernel by name and handle, from user mode by requests.
#include "oxdiagk/tConfigurable.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tunnelRequest.h"
#include "oxdiagk/stateRequest.h"

// What is installed, and whether it is enough.
#include "oxdiagk/version.h"
