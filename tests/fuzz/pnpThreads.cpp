// Requests of several threads at once to two buses of two drivers, and to their children. Beside
// the threads of the input one does what a PnP manager does: it asks the buses for their relations
// again and again, and removes what they do not list any more. What is demanded is that every
// handler, which deletes itself in its last call, gets that once, with no request in it, that
// whoever takes a child away returns, and that nothing is left. The sanitizer the target is built
// with demands the rest. An input is lines, an operation each: its letter, whose thread and which
// bus it is for, and what belongs to it:
//
//     c T B N S   makes a child with instance N in slot S
//     t T B S     takes the child in slot S away
//     r T B       asks the bus for its relations, as the PnP manager does
//     p T B N M   sends the Nth of the children that the system knows the plug-and-play request M
//     k T B N     asks it for its capabilities    w T B N S   sets its device power
//     o T B N     sends it a device control       y T B N     asks it for its id
//     f T B       the next request for relations fails below the bus
//     s T B       the bus is removed by surprise
//     b T B       the bus is removed

#include <algorithm>
#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "ntos/pnp.h"
#include "support/fuzzing.h"
#include "support/tScript.h"
#include "wdm/tMortalHandler.h"
#include "wdm/tPnpBus.h"

namespace {

constexpr unsigned kThreads = 3;
constexpr unsigned kBuses = 2;
constexpr size_t kMostOperations = 60;
constexpr size_t kMostChildren = 12;  // of a bus
constexpr int kYields = 3;            // of a request in a handler, which so meets others
constexpr u64 kInstances = 4;
constexpr u32 kSlots = 4;
constexpr char kOperations[] = "ctrpkwoyfsb";

struct tDriverNames {
  char const* bus;
  char const* filter;
};
constexpr tDriverNames kDrivers[kBuses] = {{"oxdiagbus", "oxdiagfilter"},
                                           {"oxdiagbus2", "oxdiagfilter2"}};

struct tOperation {
  char letter;
  unsigned bus;
  unsigned first;
  unsigned second;
};

// A reference on a device for a scope, or none.
class tReference {
 public:
  explicit tReference(DEVICE_OBJECT* taken) : device(taken) {}
  ~tReference() {
    if (device != nullptr) ObfDereferenceObject(device);
  }
  tReference(tReference const&) = delete;
  tReference& operator=(tReference const&) = delete;

  DEVICE_OBJECT* const device;
};

// A bus and what the system knows of it. All of it is thread safe.
class tSharedBus {
 public:
  explicit tSharedBus(tDriverNames const& names)
      : filter(names.filter),
        bus(ntoshost::PnpMode::OnRequest, names.bus, &filter),
        function(bus.getFunction()) {
    ObfReferenceObject(function);
  }
  ~tSharedBus();
  tSharedBus(tSharedBus const&) = delete;
  tSharedBus& operator=(tSharedBus const&) = delete;

  void run(tOperation const& operation);

  // Asks for the relations; new children are known from then on, those that are missing removed.
  void enumerate();

  // The bus is removed and its children are, and nobody is left who waits.
  void end();

 private:
  void create(u64 instance, u32 slot);
  void remove();
  void use(DEVICE_OBJECT* device, tOperation const& operation);
  void welcome(DEVICE_RELATIONS const& relations);
  std::vector<DEVICE_OBJECT*> takeMissing(DEVICE_RELATIONS const* relations);
  void dismiss(DEVICE_RELATIONS const* relations);
  DEVICE_OBJECT* pick(unsigned number);

  tLowerFilter filter;
  tPnpBus bus;
  DEVICE_OBJECT* const function;
  std::mutex mutex;
  std::set<DEVICE_OBJECT*> known;  // with a reference on each
  std::deque<std::unique_ptr<tMortalFate>> fates;
  bool isPlaceOpen = true;  // the place for children is there
  bool isRemoved = false;
  std::atomic<int> users = 0;  // of the place
};

void tSharedBus::create(u64 instance, u32 slot) {
  auto fate = std::make_unique<tMortalFate>();
  fate->yields = kYields;
  auto* const handler = new tMortalHandler(*fate);
  wchar_t const* const ids[] = {L"TEST\\Gauge"};
  tChildDescription const description = {ids, 1, L"A gauge", instance, false, slot, handler};
  i32 status = 0;
  bus.children->createChild(description, status);
  if (status < 0) {
    demand(fate->isAlive(), "the handler of a refused child is not called", [] { return "stop"; });
    delete handler;
    return;
  }
  std::lock_guard const lock(mutex);
  fates.push_back(std::move(fate));
}

void setPower(DEVICE_OBJECT* device, u32 state) {
  tDeviceRequest request(device, IRP_MJ_POWER, IRP_MN_SET_POWER);
  request.location().Parameters.Power.Type = DevicePowerState;
  request.location().Parameters.Power.State.DeviceState = static_cast<DEVICE_POWER_STATE>(state);
  request.send();
}

void askCapabilities(DEVICE_OBJECT* device) {
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  tDeviceRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  request.location().Parameters.DeviceCapabilities.Capabilities = &capabilities;
  request.send();
}

void askId(DEVICE_OBJECT* device) {
  tDeviceRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_ID);
  request.location().Parameters.QueryId.IdType = BusQueryHardwareIDs;
  request.send();
  request.freeAnswer();
}

// Requests with an answer or parameters have letters of their own.
void sendSimplePnp(DEVICE_OBJECT* device, u8 minor) {
  u8 const minors[] = {IRP_MN_START_DEVICE,       IRP_MN_QUERY_REMOVE_DEVICE,
                       IRP_MN_REMOVE_DEVICE,      IRP_MN_CANCEL_REMOVE_DEVICE,
                       IRP_MN_STOP_DEVICE,        IRP_MN_QUERY_STOP_DEVICE,
                       IRP_MN_CANCEL_STOP_DEVICE, IRP_MN_SURPRISE_REMOVAL};
  sendPnp(device, minors[minor % std::size(minors)]);
}

void tSharedBus::use(DEVICE_OBJECT* device, tOperation const& operation) {
  switch (operation.letter) {
    case 'p':
      return sendSimplePnp(device, static_cast<u8>(operation.second));
    case 'k':
      return askCapabilities(device);
    case 'w':
      return setPower(device, 1 + operation.second % 4);
    case 'o':
      tDeviceRequest(device, IRP_MJ_DEVICE_CONTROL).send();
      return;
    default:
      return askId(device);
  }
}

// The place is good until the bus' stop() has returned, so its users keep that from coming: here,
// the removal.
void tSharedBus::run(tOperation const& operation) {
  if (operation.letter == 'r') return enumerate();
  if (operation.letter == 'f') return filter.failNext(IRP_MN_QUERY_DEVICE_RELATIONS);
  if (operation.letter == 's') {
    sendPnp(function, IRP_MN_SURPRISE_REMOVAL);
    return;
  }
  if (operation.letter == 'b') return remove();
  if (operation.letter == 'c' || operation.letter == 't') {
    {
      std::lock_guard const lock(mutex);
      if (!isPlaceOpen || fates.size() >= kMostChildren) return;
      ++users;
    }
    i32 status = 0;
    if (operation.letter == 'c') create(operation.first % kInstances, operation.second % kSlots);
    if (operation.letter == 't') bus.children->removeChild(operation.first % kSlots, status);
    --users;
    return;
  }
  tReference const reference(pick(operation.first));
  if (reference.device != nullptr) use(reference.device, operation);
}

void tSharedBus::remove() {
  {
    std::lock_guard const lock(mutex);
    if (!isPlaceOpen) return;
    isPlaceOpen = false;
  }
  while (users != 0) enumerate();  // what they wait for
  sendPnp(function, IRP_MN_REMOVE_DEVICE);
  std::lock_guard const lock(mutex);
  isRemoved = true;
}

void tSharedBus::enumerate() {
  bool isOver = false;
  {
    std::lock_guard const lock(mutex);
    isOver = isRemoved;
  }
  if (isOver) return dismiss(nullptr);
  tDeviceRequest request(function, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
  if (!NT_SUCCESS(request.send())) return;
  auto const* const relations = request.answer<DEVICE_RELATIONS>();
  if (relations == nullptr) return;
  welcome(*relations);
  dismiss(relations);
  request.freeRelations();
}

void tSharedBus::welcome(DEVICE_RELATIONS const& relations) {
  std::lock_guard const lock(mutex);
  for (u32 index = 0; index < relations.Count; ++index) {
    DEVICE_OBJECT* const device = relations.Objects[index];
    if (known.insert(device).second) ObfReferenceObject(device);
  }
}

std::vector<DEVICE_OBJECT*> tSharedBus::takeMissing(DEVICE_RELATIONS const* relations) {
  std::set<DEVICE_OBJECT*> listed;
  if (relations != nullptr) {
    listed.insert(relations->Objects, relations->Objects + relations->Count);
  }
  std::lock_guard const lock(mutex);
  std::vector<DEVICE_OBJECT*> missing;
  for (DEVICE_OBJECT* device : known) {
    if (listed.count(device) == 0) missing.push_back(device);
  }
  for (DEVICE_OBJECT* device : missing) known.erase(device);
  return missing;
}

// The answer that misses a child may be older than the one that the child came with. So the child
// stays known, and is removed with every such answer.
void tSharedBus::dismiss(DEVICE_RELATIONS const* relations) {
  for (DEVICE_OBJECT* device : takeMissing(relations)) {
    sendPnp(device, IRP_MN_SURPRISE_REMOVAL);
    sendPnp(device, IRP_MN_REMOVE_DEVICE);
    std::lock_guard const lock(mutex);
    bool const isKept = !isRemoved && known.insert(device).second;
    if (!isKept) ObfDereferenceObject(device);
  }
}

DEVICE_OBJECT* tSharedBus::pick(unsigned number) {
  std::lock_guard const lock(mutex);
  if (known.empty()) return nullptr;
  DEVICE_OBJECT* const device = *std::next(known.begin(), number % static_cast<u32>(known.size()));
  ObfReferenceObject(device);
  return device;
}

void tSharedBus::end() {
  remove();
  dismiss(nullptr);
  for (auto const& fate : fates) {
    demand(fate->stops == 1, "a handler has its last call once",
           [&] { return std::to_string(fate->stops); });
    demand(fate->runningAtStop == 0, "no request is in the handler then",
           [&] { return std::to_string(fate->runningAtStop); });
  }
}

tSharedBus::~tSharedBus() {
  ObfDereferenceObject(function);
}

// What the input has for each thread, in its order.
class tPlan {
 public:
  explicit tPlan(std::string const& input) {
    tScript script(input);
    for (size_t count = 0; count < kMostOperations && script.next(); ++count) {
      char const letter = script.operation(kOperations);
      unsigned const thread = script.number() % kThreads;
      unsigned const bus = script.number() % kBuses;
      unsigned const first = script.number();
      operations[thread].push_back({letter, bus, first, script.number()});
    }
  }

  std::vector<tOperation> operations[kThreads];
};

// All threads begin together.
class tGathering {
 public:
  void wait() {
    ++present;
    while (present < kThreads) std::this_thread::yield();
  }

 private:
  std::atomic<unsigned> present = 0;
};

void runAll(tPlan const& plan, std::unique_ptr<tSharedBus> const (&buses)[kBuses]) {
  std::atomic<bool> isOver = false;
  std::thread system([&] {
    while (!isOver) {
      for (auto const& bus : buses) bus->enumerate();
      std::this_thread::yield();
    }
  });
  tGathering gathering;
  std::vector<std::thread> threads;
  for (auto const& operations : plan.operations) {
    threads.emplace_back([&] {
      gathering.wait();
      for (tOperation const& operation : operations) buses[operation.bus]->run(operation);
    });
  }
  for (std::thread& thread : threads) thread.join();
  isOver = true;
  system.join();
}

}  // namespace

void fuzzInput(std::string const& input) {
  tPlan const plan(input);
  std::unique_ptr<tSharedBus> const buses[kBuses] = {std::make_unique<tSharedBus>(kDrivers[0]),
                                                     std::make_unique<tSharedBus>(kDrivers[1])};
  runAll(plan, buses);
  for (auto const& bus : buses) bus->end();
}
