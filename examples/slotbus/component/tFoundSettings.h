#pragma once

#include "oxdiagk/tConfigurable.h"
#include "stl/vector.h"

namespace nSLOTBUS100 {

// What a driver finds set in an object of the library that all drivers share, so that it can give
// it back before it is unloaded:
//
//     tFoundSettings found(tTrace::getInstance());
//     if (found.keep()) tTrace::getInstance().configure(options);
//     ...
//     found.giveBack();
//
// It keeps a text of its own instead of a push: a pop would take what somebody else has pushed
// meanwhile. What was set by others between the two goes too; drivers that are unloaded in the
// reverse order of their loading do not meet. What a text cannot say, such as an empty filter or a
// destination that only its owner can install, stays as it is then. Of the trace, what --calibrate
// has measured stays as well.
//
// Not locked. IRQL: PASSIVE_LEVEL.
class tFoundSettings {
 public:
  // `target` outlives the object.
  explicit tFoundSettings(nOXDIAG100::tConfigurable& target);

  tFoundSettings(tFoundSettings const&) = delete;
  tFoundSettings& operator=(tFoundSettings const&) = delete;

  // Reads the settings. False when memory is exhausted: then nothing may be changed.
  bool keep();

  // Sets what was kept, unless it is set already. Does nothing when nothing was kept, or when
  // memory is exhausted.
  void giveBack();

 private:
  using tText = _STL::vector<char>;

  bool read(tText& text) const;

  nOXDIAG100::tConfigurable& target;
  tText kept;
};

}  // namespace nSLOTBUS100
