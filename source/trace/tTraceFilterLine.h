#pragma once

#include "vexk/tSSVersion.h"

namespace nOXDIAG100 {

// The properties of a line that a filter may look at. Texts are not null, and outlive the object.
//
// The version's text and the thread cost time, so they are made when the first term asks for them:
// by the very term that is evaluated, whatever terms others add meanwhile.
class tTraceFilterLine {
 public:
  // A line of the current thread.
  tTraceFilterLine(char const* component, tSSVersion const& version, u32 line, char const* file,
                   u32 verbosity)
      : component(component), file(file), line(line), verbosity(verbosity), version(&version) {}

  // A line of which all is known.
  tTraceFilterLine(char const* component, char const* versionText, u32 line, char const* file,
                   u32 threadId, u32 verbosity)
      : component(component),
        file(file),
        line(line),
        verbosity(verbosity),
        versionText(versionText),
        threadId(threadId) {}

  tTraceFilterLine(tTraceFilterLine const&) = delete;
  tTraceFilterLine& operator=(tTraceFilterLine const&) = delete;

  char const* const component;
  char const* const file;
  u32 const line;
  u32 const verbosity;

  char const* getVersion() const;
  u32 getThreadId() const;

 private:
  tSSVersion const* const version = nullptr;  // null when text and thread were given
  mutable char const* versionText = nullptr;
  u32 const threadId = 0;
  mutable char text[tSSVersion::kMaxTextSize];
};

}  // namespace nOXDIAG100
