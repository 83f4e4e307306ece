// Children that are made, told of, used and taken away by many threads at once.

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "ntos/pnp.h"
#include "trace/startedModules.h"
#include "wdm/tPnpBus.h"

namespace {

constexpr int kMakers = 2;
constexpr int kUsers = 2;
constexpr u32 kChildrenPerMaker = 60;
constexpr i32 kBusRemoved = -50300;

// Serves any number of threads.
class tCountingHandler : public tChildHandler {
 public:
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override { ++served; }
  std::atomic<u64> served = 0;
};

NTSTATUS sendSimple(DEVICE_OBJECT* device, u8 major, u8 minor) {
  tDeviceRequest request(device, major, minor);
  request.send();
  if (major == IRP_MJ_PNP) request.freeAnswer();
  return request.status();
}

// What the system knows of the bus: does what a PnP manager does, as often as it is asked.
class tManager {
 public:
  explicit tManager(DEVICE_OBJECT* asked) : bus(asked) {}

  void enumerate() {
    std::set<DEVICE_OBJECT*> listed;
    tDeviceRequest request(bus, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
    request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
    EXPECT_EQ(request.send(), STATUS_SUCCESS);
    auto const& relations = *request.answer<DEVICE_RELATIONS>();
    for (u32 index = 0; index < relations.Count; ++index) listed.insert(relations.Objects[index]);
    for (DEVICE_OBJECT* device : listed) welcome(device);
    for (DEVICE_OBJECT* device : unlisted(listed)) dismiss(device, true);
    request.freeRelations();
  }

  void dismissAll() {
    for (DEVICE_OBJECT* device : unlisted({})) dismiss(device, false);
  }

  // Any device, with a reference for the caller; null when there is none.
  DEVICE_OBJECT* any(size_t number) {
    std::lock_guard const lock(mutex);
    if (known.empty()) return nullptr;
    DEVICE_OBJECT* const device =
        *std::next(known.begin(), static_cast<long>(number % known.size()));
    ObfReferenceObject(device);
    return device;
  }

 private:
  void welcome(DEVICE_OBJECT* device) {
    {
      std::lock_guard const lock(mutex);
      if (!known.insert(device).second) return;
      ObfReferenceObject(device);
    }
    EXPECT_EQ(sendPnp(device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  }

  std::vector<DEVICE_OBJECT*> unlisted(std::set<DEVICE_OBJECT*> const& listed) {
    std::lock_guard const lock(mutex);
    std::vector<DEVICE_OBJECT*> missing;
    for (DEVICE_OBJECT* device : known) {
      if (listed.count(device) == 0) missing.push_back(device);
    }
    for (DEVICE_OBJECT* device : missing) known.erase(device);
    return missing;
  }

  void dismiss(DEVICE_OBJECT* device, bool bySurprise) {
    if (bySurprise) {
      EXPECT_EQ(sendPnp(device, IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
    }
    EXPECT_EQ(sendPnp(device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
    ObfDereferenceObject(device);
  }

  DEVICE_OBJECT* bus;
  std::mutex mutex;
  std::set<DEVICE_OBJECT*> known;  // with a reference on each
};

void use(DEVICE_OBJECT* device, size_t round) {
  NTSTATUS const controlled = sendSimple(device, IRP_MJ_DEVICE_CONTROL, 0);
  EXPECT_TRUE(controlled == STATUS_SUCCESS || controlled == STATUS_DELETE_PENDING);
  sendSimple(device, IRP_MJ_PNP, IRP_MN_QUERY_ID);
  sendSimple(device, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  tDeviceRequest power(device, IRP_MJ_POWER, IRP_MN_SET_POWER);
  power.location().Parameters.Power.Type = DevicePowerState;
  power.location().Parameters.Power.State.DeviceState =
      round % 2 == 0 ? PowerDeviceD3 : PowerDeviceD0;
  power.send();
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  tDeviceRequest query(device, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  query.location().Parameters.DeviceCapabilities.Capabilities = &capabilities;
  query.send();
}

// Makes children and takes them away again, some of them before anybody has heard of them.
void makeAndTake(tPnpBus& bus, iDeviceHandler& handler, u32 maker) {
  for (u32 number = 0; number < kChildrenPerMaker; ++number) {
    u32 const slot = maker * kChildrenPerMaker + number;
    EXPECT_EQ(bus.create(slot, slot, handler), 0);
    // Some are gone before anybody has heard of them.
    if (number % 3 != 0) std::this_thread::sleep_for(std::chrono::microseconds(200));
    if (number % 4 == 0) continue;
    EXPECT_EQ(bus.take(slot), 0);
  }
}

}  // namespace

TEST(DeviceThreads, EverythingAtOnce) {
  tPnpBus bus(ntoshost::PnpMode::OnRequest);
  tCountingHandler handler;
  tManager manager(bus.physical->AttachedDevice);
  std::atomic<bool> isOver = false;
  std::vector<std::thread> others;
  others.emplace_back([&] {
    while (!isOver) manager.enumerate();
  });
  for (int user = 0; user < kUsers; ++user) {
    others.emplace_back([&, user] {
      for (size_t round = static_cast<size_t>(user); !isOver; ++round) {
        DEVICE_OBJECT* const device = manager.any(round);
        if (device == nullptr) continue;
        use(device, round);
        ObfDereferenceObject(device);
      }
    });
  }
  std::vector<std::thread> makers;
  for (u32 maker = 0; maker < kMakers; ++maker) {
    makers.emplace_back([&, maker] { makeAndTake(bus, handler, maker); });
  }
  for (std::thread& maker : makers) maker.join();
  isOver = true;
  for (std::thread& other : others) other.join();
  bus.removeBus();
  manager.dismissAll();
}

TEST(DeviceThreads, ABusThatGoesStopsItsMakers) {
  for (int round = 0; round < 20; ++round) {
    tPnpBus bus(ntoshost::PnpMode::OnRequest);
    std::atomic<i32> last = 0;
    std::thread maker([&] {
      for (u32 slot = 0; last == 0; ++slot) {
        last = bus.create(slot, slot, bus.handler);
        if (slot % 2 == 0) bus.take(slot);
      }
    });
    bus.context = &maker;
    bus.beforeStop = [](void* context) { static_cast<std::thread*>(context)->join(); };
    // The bus goes at another moment.
    std::this_thread::sleep_for(std::chrono::milliseconds(round % 3));
    bus.removeBus();
    EXPECT_EQ(last, kBusRemoved);
  }
}
