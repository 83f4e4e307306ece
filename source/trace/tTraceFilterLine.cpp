#include "trace/tTraceFilterLine.h"

#include "vexk/threadUtility.h"

namespace nOXDIAG100 {

char const* tTraceFilterLine::getVersion() const {
  if (versionText == nullptr) versionText = version->toString(text);
  return versionText;
}

u32 tTraceFilterLine::getThreadId() const {
  return version == nullptr ? threadId : tThreadUtility::getCurrentThreadId();
}

}  // namespace nOXDIAG100
