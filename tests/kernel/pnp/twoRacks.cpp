// Two drivers of the library, with a rack each, loaded and unloaded in every order.

#include "conformance/harness.h"
#include "pnpDriver.h"
#include "slotRequests.h"
#include "tLoadedRack.h"
#include "tSentRequest.h"

using namespace nSLOTBUS100;

namespace {

// One of the two on its way: loaded, then unloaded.
class tRackLife {
 public:
  explicit tRackLife(tRackService const& service) : rack(pnpEnumerator(), service) {}

  void step() {
    EXPECT_STREQ(isLoaded ? rack.unload() : rack.load(), nullptr);
    isLoaded = !isLoaded;
  }

  // While it is loaded, its bus has all its devices, and they serve.
  void demandWhole() {
    if (!isLoaded) return;
    tBusCount count = {};
    u64 given = 0;
    EXPECT_EQ(sendControl(rack.getBus(), kControlCountDevices, &count, sizeof(count), given),
              STATUS_SUCCESS);
    EXPECT_EQ(count.devices, u32{tLoadedRack::kSlots});
    tSlotLine line;
    EXPECT_EQ(tellLine(rack.getSlot(0), line), STATUS_SUCCESS);
    EXPECT_EQ(tellLine(rack.getSlot(tLoadedRack::kSlots - 1), line), STATUS_SUCCESS);
    DEVICE_CAPABILITIES capabilities;
    EXPECT_EQ(queryCapabilities(rack.getSlot(0), capabilities), STATUS_SUCCESS);
  }

 private:
  tLoadedRack rack;
  bool isLoaded = false;
};

// Whose turn it is, 1 for the first and 2 for the second.
void run(char const* order) {
  tRackLife first(kFirstRack);
  tRackLife second(kSecondRack);
  for (; *order != '\0'; ++order) {
    (*order == '1' ? first : second).step();
    first.demandWhole();
    second.demandWhole();
  }
}

}  // namespace

TEST(PnpTwoRacks, MayBeLoadedAndUnloadedInEveryOrder) {
  char const* const orders[] = {"1122", "1212", "1221", "2112", "2121", "2211"};
  for (char const* order : orders) run(order);
}
