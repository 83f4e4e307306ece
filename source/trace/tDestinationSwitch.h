#pragma once

#include "trace/tFormerSettings.h"
#include "trace/tPatience.h"
#include "trace/tStreamHold.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tTraceParts;

// One switch of one stream from its destination to another. Under the streams' lock.
//
// A destination is open as long as a stream uses it: the first that takes it opens it, the last
// that leaves it closes it. A destination may switch its stream while it is opened or closed: that
// is a switch of its own, within this one.
class tDestinationSwitch {
 public:
  // With `isChanged`, the settings of `next` have changed, so it is opened anew though other
  // streams use it.
  tDestinationSwitch(tTraceParts& stream, iTraceDestination& next, bool isChanged);
  ~tDestinationSwitch();
  tDestinationSwitch(tDestinationSwitch const&) = delete;
  tDestinationSwitch& operator=(tDestinationSwitch const&) = delete;

  // To be called once. Returns what tTrace::setDestination does.
  iTraceDestination* run();

  // Closes the stream's destination, if a switch within the one under way has opened it and no
  // other stream uses it; then what that close switches to, and so on, for four closes at most.
  static void closeOpened(tTraceParts& stream);

  // Makes a destination null in all switches under way, because it is being destroyed.
  static void forget(iTraceDestination const& leaving);

 private:
  bool isRefused() const;
  bool holdLines(tPatience const& patience);
  bool isQuiet(tPatience const& patience);
  iTraceDestination* giveUp() const;

  iTraceDestination* change(tFormerSettings& settings);
  void closeFormer();
  bool isNextOpen();
  bool isNextOpenAnew();
  bool open(iTraceDestination* const& place);
  bool openOrLeave(iTraceDestination* const& place);
  void moveTo(iTraceDestination& place);

  iTraceDestination* fallBack(tFormerSettings& settings);
  bool isFormerBack(tFormerSettings& settings);
  iTraceDestination* announceUnchanged();
  static void announceDebugger(tTraceParts& stream);
  void sendToDebugger(iTraceDestination const& closed);

  tTraceParts& stream;
  iTraceDestination* former;  // null once it has been destroyed, as next
  iTraceDestination* next;
  bool const isShared;  // others use next as well, and it is closed and opened for all of them
  u32 within = 0;       // the thread that was not waited for any longer
  tStreamHold hold;
  tDestinationSwitch* const outer;  // the one that this one lies within
};

}  // namespace nOXDIAG100
