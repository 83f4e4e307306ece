#include "trace/tTraceSwitchTable.h"

#include "oxdiagk/tTraceFilter.h"

namespace nOXDIAG100 {

constinit tTraceSwitchTable::tSwitch const tTraceSwitchTable::entries[kCount] = {
    {"--compname", &tTrace::componentName, tTraceFilter::kComponentName},
    {"--compver", &tTrace::componentVersion, tTraceFilter::kComponentVersion},
    {"--linenumber", &tTrace::lineNumber, tTraceFilter::kLineNumber},
    {"--filename", &tTrace::fileName, tTraceFilter::kFileName},
    {"--filepath", &tTrace::filePath, kNoField},
    {"--threadid", &tTrace::threadId, tTraceFilter::kThreadId},
    {"--timestamp", &tTrace::timeStamp, kNoField},
    {"--timedelta", &tTrace::timeDelta, kNoField},
    {"--verbosity", &tTrace::verbosity, tTraceFilter::kVerbosity},
    {"--indent", &tTrace::indenting, kNoField},
    {"--truncation", &tTrace::truncation, kNoField},
    {"--mutex", &tTrace::mutex, kNoField},
};

}  // namespace nOXDIAG100
