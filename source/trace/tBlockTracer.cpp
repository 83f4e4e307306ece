#include "oxdiagk/tBlockTracer.h"

#include "trace/tBlockText.h"

namespace nOXDIAG100 {

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
  tTrace* const shown =
      trace->openLine(tLineOrigin{component, file, version, line}, verbosity, tTrace::kBlockEntry);
  if (shown != nullptr) {
    tBlockText(blockName, legacyStatus, statusObject).endEntry(*shown, object);
  }
}

void tBlockTracer::writeExit() {
  tTrace* const shown =
      trace->openLine(tLineOrigin{component, file, version, line}, verbosity, tTrace::kBlockExit);
  if (shown != nullptr) tBlockText(blockName, legacyStatus, statusObject).endExit(*shown);
}

}  // namespace nOXDIAG100
