// Texts of racks that nobody plugged together. They are read to the end, what is traced can be
// shown, and the count of good and bad lines is true.

#include <algorithm>
#include <set>

#include "slotbus/component/tRackReader.h"
#include "support/fuzzing.h"
#include "support/steering.h"
#include "support/tExactText.h"
#include "support/tFuzzDestination.h"

namespace {

using namespace nSLOTBUS100;

// A tab in a rack is one in its trace.
std::string tracedIn(tArrivals const& arrivals) {
  std::string text;
  for (tArrival const& arrival : arrivals) text += arrival.text;
  std::replace(text.begin(), text.end(), '\t', ' ');
  return text;
}

u32 linesOf(std::string const& text) {
  auto const ends = static_cast<u32>(std::count(text.begin(), text.end(), '\n'));
  return ends + (text.empty() || text.back() == '\n' ? 0 : 1);
}

void demandTrue(bool holds, char const* what, std::string const& input) {
  demand(holds, what, [&] { return readable(input); });
}

void demandSound(tRack const& rack, std::string const& input) {
  std::set<u32> slots;
  std::set<u64> instances;
  for (u32 index = 0; index < rack.getCount(); ++index) {
    tDevice const& device = rack.getDevice(index);
    demandTrue(device.slot >= kFirstSlot && device.slot <= kLastSlot, "a slot is one", input);
    demandTrue(slots.insert(device.slot).second && instances.insert(device.instance).second,
               "no two devices are the same", input);
    demandTrue(!device.hardwareIds.isEmpty() && !device.description.isEmpty(),
               "a device is described", input);
    demandTrue(device.lineNumber >= 1 && device.lineNumber <= linesOf(input), "a device has a line",
               input);
  }
}

}  // namespace

void fuzzInput(std::string const& input) {
  tExactText text(input, false);
  tArrivals arrivals;
  tFuzzDestination destination(arrivals);
  tFuzzTrace stream(destination);
  stream.setMinPrefixWidth(0);
  stream.getFilter()->parseExpression("verbosity>=0");
  tRack rack;
  tRackReader reader(rack, stream);
  u32 const result = reader.read(tTextSpan(text.get(), input.size()));
  demandTrue(text.is(input), "the text is left as it was", input);
  demandTrue((result == 0) == (reader.getFailureCount() == 0), "the result is true", input);
  demandTrue(rack.getCount() + reader.getFailureCount() <= reader.getLineCount() + 1,
             "a line is one device or one failure", input);
  demandTrue(reader.getLineCount() <= linesOf(input), "no line is read twice", input);
  demandSound(rack, input);
  demandNoSteering(tracedIn(arrivals));
}
