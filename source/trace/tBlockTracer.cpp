#include "oxdiagk/tBlockTracer.h"

#include "oxdiagk/tStatus2.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;

}  // namespace

tBlockTracer::tBlockTracer(char* component, tSSVersion version, unsigned int line, char* file,
                           unsigned int verbosity, char* blockName, void* const object, i32* status,
                           tTrace& trace)
    : component(component),
      version(version),
      line(line),
      file(file),
      verbosity(verbosity),
      blockName(blockName),
      legacyStatus(status),
      statusObject(nullptr),
      trace(&trace) {
  writeEntry(object);
}

tBlockTracer::tBlockTracer(char* component, tSSVersion version, unsigned int line, char* file,
                           unsigned int verbosity, char* blockName, void* const object,
                           tStatus2* status, tTrace& trace)
    : component(component),
      version(version),
      line(line),
      file(file),
      verbosity(verbosity),
      blockName(blockName),
      legacyStatus(nullptr),
      statusObject(status),
      trace(&trace) {
  writeEntry(object);
}

tBlockTracer::~tBlockTracer() {
  writeExit();
}

u32 tBlockTracer::getNestingLevel() {
  return 0;
}

void tBlockTracer::writeEntry(void const* object) {
  trace->putPrefix(component, version, line, file, verbosity, tTrace::kBlockEntry);
  if (blockName != nullptr) trace->put(blockName).put("; ");
  if (object != nullptr) trace->put("this=").put(object).put("; ");
  putStatus(" ");
  trace->put("{").endl();
}

void tBlockTracer::writeExit() {
  trace->putPrefix(component, version, line, file, verbosity, tTrace::kBlockExit).put("} ");
  putStatus("; ");
  if (blockName != nullptr) trace->put(blockName);
  trace->endl();
}

void tBlockTracer::putStatus(char const* end) {
  if (legacyStatus != nullptr) trace->put("tStatus=").put(*legacyStatus, kDecimal).put(end);
  if (statusObject != nullptr) {
    trace->put("tStatus2 code=").put(statusObject->getCode(), kDecimal).put(end);
  }
}

}  // namespace nOXDIAG100
