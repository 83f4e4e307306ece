// Sequences of requests to two buses of two drivers, and to their children, against a model of a
// bus. What is demanded is the status of every request and what it answers, the state of every
// child behind it, when those who wait for a child's going are let go, when handlers, which delete
// themselves in their last call, get that, and that nothing is left. An input is lines:
//
//     @ N         what follows is for the first bus, 0, or the second, 1
//     z           the bus is removed and its driver unloaded; what follows loads it anew
//     f N         the next request for relations, 0, or capabilities, 1, fails below the bus
//     c N S I     makes a child with instance N in slot S; I says which hardware ids
//     t S         takes the child in slot S away, in a thread of its own if that has to wait
//     r           asks the bus for its relations
//     p N M       sends child N (in the order of creation) the plug-and-play request M
//     q N T       asks it for an id of type T            x N T   for a text of type T
//     a N T       asks it for relations of type T        k N S   for capabilities of size S
//     w N T S     sets its power: type T, state S        y N M   another power request
//     o N M       a request of major code M, such as a device control
//     s           the bus is removed by surprise
//     ! N         the Nth fallible call of the next request fails

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "ntos/pnp.h"
#include "ntos/wait.h"
#include "package/windows/wdm/tChildDevice.h"
#include "support/fuzzing.h"
#include "support/tPnpModel.h"
#include "support/tScript.h"
#include "wdm/tMortalHandler.h"
#include "wdm/tPnpBus.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kFaults = ntoshost::kFaultMemory | ntoshost::kFaultDevice | ntoshost::kFaultRequest;
constexpr auto kPatience = std::chrono::seconds(10);
constexpr size_t kMostChildren = 12;
constexpr size_t kLongest = 205;
constexpr i32 kOutOfMemory = -50352;

struct tDriverNames {
  char const* bus;
  char const* filter;
};
constexpr tDriverNames kDrivers[] = {{"oxdiagbus", "oxdiagfilter"},
                                     {"oxdiagbus2", "oxdiagfilter2"}};

std::string number(i64 value) {
  return std::to_string(value);
}

void demandStatus(NTSTATUS seen, NTSTATUS wanted, char const* request) {
  demand(seen == wanted, request, [&] { return number(seen) + ", wanted " + number(wanted); });
}

tChildDevice& recordOf(DEVICE_OBJECT* device) {
  auto* const extension = static_cast<tDeviceExtension*>(device->DeviceExtension);
  return *static_cast<tChildDevice*>(extension);
}

// Hardware ids, good ones and others.
struct tIds {
  explicit tIds(unsigned kind) {
    size_t const lengths[] = {5, 201, 0, 202, 201, 201};
    unsigned const counts[] = {1, 5, 1, 1, 6, 0};
    kind %= 6;
    for (size_t index = 0; index < lengths[kind]; ++index) text[index] = L'x';
    count = counts[kind];
    isGood = kind < 2;
    for (wchar_t const*& id : ids) id = text;
  }

  wchar_t text[kLongest] = {};
  wchar_t const* ids[6];
  unsigned count;
  bool isGood;
};

class tWorld {
 public:
  // Its drivers have these names.
  tWorld(char const* busDriver, char const* filterDriver)
      : filter(filterDriver),
        bus(ntoshost::PnpMode::OnRequest, busDriver, &filter),
        function(bus.getFunction()) {}
  ~tWorld();
  tWorld(tWorld const&) = delete;
  tWorld& operator=(tWorld const&) = delete;

  void apply(tScript& script);

 private:
  void create(tScript& script);
  void take(u32 slot);
  void askRelations();
  void sendPnpTo(tModelChild& child, u8 minor);
  void askBus(tModelChild& child);
  void askId(tModelChild& child, i32 type);
  void askText(tModelChild& child, i32 type);
  void askChildRelations(tModelChild& child, i32 type);
  void askCapabilities(tModelChild& child, u16 size);
  void setPower(tModelChild& child, i32 type, i32 state);
  void sendPower(tModelChild& child, u8 minor);
  void sendOther(tModelChild& child, u8 major);
  void surprise();
  void failBelow(bool isRelations);

  tModelChild* pick(tScript& script);
  bool sendFailing(tDeviceRequest& request);
  void demandAnswer(tModelChild& child, tDeviceRequest& request, bool isAnswered, NTSTATUS failure);
  void demandState(tModelChild const& child);
  void demandWaiters();
  void awaitWaiter(DEVICE_OBJECT* device);

  tLowerFilter filter;
  tPnpBus bus;
  DEVICE_OBJECT* function;
  tPnpModel model;
  std::map<DEVICE_OBJECT*, std::unique_ptr<tMortalFate>> fates;
  std::map<DEVICE_OBJECT*, std::future<i32>> waiters;
  unsigned fault = 0;  // 0: none
  bool isSurprised = false;
  bool failsRelations = false;
  bool failsCapabilities = false;
};

tModelChild* tWorld::pick(tScript& script) {
  unsigned const index = script.number();
  return model.children.empty() ? nullptr : &model.children[index % model.children.size()];
}

// True when a call of the request was made to fail.
bool tWorld::sendFailing(tDeviceRequest& request) {
  if (fault != 0) ntoshost::failNth(kFaults, fault);
  request.send();
  bool const hasFailed = fault != 0 && ntoshost::faultsInjected() != 0;
  ntoshost::clearFaults();
  fault = 0;
  demand(request.completions() == 1, "a request is completed once",
         [&] { return number(request.completions()); });
  return hasFailed;
}

void tWorld::create(tScript& script) {
  u64 const instance = script.number() % 4;
  u32 const slot = script.number() % 4;
  tIds const ids(script.number());
  if (model.children.size() == kMostChildren) return;
  auto fate = std::make_unique<tMortalFate>();
  auto* const handler = new tMortalHandler(*fate);
  tChildDescription const description = {ids.ids, ids.count, L"A gauge", instance,
                                         false,   slot,      handler};
  if (fault != 0) ntoshost::failNth(kFaults, fault);
  i32 status = 0;
  bus.children->createChild(description, status);
  bool const hasFailed = fault != 0 && ntoshost::faultsInjected() != 0;
  ntoshost::clearFaults();
  fault = 0;
  demandStatus(status, hasFailed ? kOutOfMemory : model.create(instance, slot, ids.isGood),
               "a creation is as the model says");
  if (status != 0) {
    demand(fate->isAlive(), "the handler of a refused child is not called", [] { return "stop"; });
    delete handler;
    return;
  }
  DEVICE_OBJECT* const device = function->DriverObject->DeviceObject;
  model.children.back().device = device;
  ObfReferenceObject(device);
  fates[device] = std::move(fate);
}

void tWorld::take(u32 slot) {
  tModelChild* child = nullptr;
  tPnpModel::tDeparture const departure = model.take(slot, child);
  if (departure == tPnpModel::tDeparture::Awaited) {
    waiters[child->device] =
        std::async(std::launch::async, [this, slot] { return bus.take(slot); });
    return awaitWaiter(child->device);
  }
  i32 const wanted = departure == tPnpModel::tDeparture::Unknown ? -50005 : 0;
  demandStatus(bus.take(slot), wanted, "a removal is as the model says");
}

// Until the thread waits, so that what follows is no race.
void tWorld::awaitWaiter(DEVICE_OBJECT* device) {
  tChildDevice& child = recordOf(device);
  for (bool isAwaited = false; !isAwaited;) {
    KeWaitForSingleObject(&child.mutex, Executive, KernelMode, 0, nullptr);
    isAwaited = child.isAwaited;
    KeReleaseMutex(&child.mutex, 0);
    if (!isAwaited) std::this_thread::yield();
  }
}

void tWorld::askRelations() {
  tDeviceRequest request(function, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
  if (sendFailing(request)) {
    return demandStatus(request.status(), STATUS_INSUFFICIENT_RESOURCES, "relations need memory");
  }
  bool const isFailure = std::exchange(failsRelations, false);
  std::vector<DEVICE_OBJECT*> const wanted = model.relations(!isFailure);
  if (isFailure) {
    demand(request.answer<void>() == nullptr, "relations that fail have no list",
           [] { return "one"; });
    return demandStatus(request.status(), tLowerFilter::kFailure, "relations fail below");
  }
  demandStatus(request.status(), STATUS_SUCCESS, "relations are told");
  auto const& seen = *request.answer<DEVICE_RELATIONS>();
  demand(std::vector<DEVICE_OBJECT*>(seen.Objects, seen.Objects + seen.Count) == wanted,
         "the relations are the model's", [&] { return number(seen.Count); });
  request.freeRelations();
}

// Requests with parameters have operations of their own.
void tWorld::sendPnpTo(tModelChild& child, u8 minor) {
  if (minor == IRP_MN_QUERY_DEVICE_RELATIONS || minor == IRP_MN_QUERY_CAPABILITIES) return;
  if (minor == IRP_MN_QUERY_DEVICE_TEXT || minor == IRP_MN_QUERY_ID) return;
  if (minor == IRP_MN_QUERY_BUS_INFORMATION) return askBus(child);
  bool const isDeleted = child.state == tPnpModel::kDeleted;
  tDeviceRequest request(child.device, IRP_MJ_PNP, minor);
  sendFailing(request);
  bool const isSuccess = model.movePnp(child, minor);
  NTSTATUS wanted = isDeleted ? STATUS_DELETE_PENDING : STATUS_NOT_SUPPORTED;
  if (!isDeleted && minor == IRP_MN_DEVICE_USAGE_NOTIFICATION) wanted = STATUS_UNSUCCESSFUL;
  demandStatus(request.status(), isSuccess ? STATUS_SUCCESS : wanted, "a request to a child ends");
}

void tWorld::demandAnswer(tModelChild& child, tDeviceRequest& request, bool isAnswered,
                          NTSTATUS failure) {
  bool const hasFailed = sendFailing(request);
  NTSTATUS wanted = isAnswered ? STATUS_SUCCESS : STATUS_NOT_SUPPORTED;
  if (hasFailed) wanted = failure;
  if (child.state == tPnpModel::kDeleted) wanted = STATUS_DELETE_PENDING;
  demandStatus(request.status(), wanted, "a query ends as the model says");
  demand((request.answer<void>() != nullptr) == (wanted == STATUS_SUCCESS),
         "only a query that succeeds has an answer", [&] { return number(wanted); });
}

void tWorld::askBus(tModelChild& child) {
  tDeviceRequest request(child.device, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  demandAnswer(child, request, true, STATUS_INSUFFICIENT_RESOURCES);
  request.freeAnswer();
}

void tWorld::askId(tModelChild& child, i32 type) {
  tDeviceRequest request(child.device, IRP_MJ_PNP, IRP_MN_QUERY_ID);
  request.location().Parameters.QueryId.IdType = static_cast<BUS_QUERY_ID_TYPE>(type);
  bool const isAnswered = type == 0 || type == 1 || type == 3;
  demandAnswer(child, request, isAnswered, STATUS_INSUFFICIENT_RESOURCES);
  request.freeAnswer();
}

void tWorld::askText(tModelChild& child, i32 type) {
  tDeviceRequest request(child.device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_TEXT);
  request.location().Parameters.QueryDeviceText.DeviceTextType =
      static_cast<DEVICE_TEXT_TYPE>(type);
  demandAnswer(child, request, type == 0 || type == 1, STATUS_NOT_SUPPORTED);
  request.freeAnswer();
}

void tWorld::askChildRelations(tModelChild& child, i32 type) {
  tDeviceRequest request(child.device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = static_cast<DEVICE_RELATION_TYPE>(type);
  demandAnswer(child, request, type == TargetDeviceRelation, STATUS_INSUFFICIENT_RESOURCES);
  request.freeRelations();
}

void tWorld::askCapabilities(tModelChild& child, u16 size) {
  DEVICE_CAPABILITIES capabilities = {};
  capabilities.Size = size;
  capabilities.Version = 1;
  tDeviceRequest request(child.device, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  request.location().Parameters.DeviceCapabilities.Capabilities = &capabilities;
  bool const hasFailed = sendFailing(request);
  NTSTATUS wanted = hasFailed ? STATUS_INSUFFICIENT_RESOURCES : STATUS_SUCCESS;
  bool const isAsked = child.isLinked && size >= sizeof(capabilities) &&
                       child.state != tPnpModel::kDeleted && !hasFailed;
  if (isAsked && std::exchange(failsCapabilities, false)) wanted = tLowerFilter::kFailure;
  if (!child.isLinked) wanted = STATUS_NO_SUCH_DEVICE;
  if (size < sizeof(capabilities)) wanted = STATUS_UNSUCCESSFUL;
  if (child.state == tPnpModel::kDeleted) wanted = STATUS_DELETE_PENDING;
  demandStatus(request.status(), wanted, "capabilities end as the model says");
  demand(capabilities.Address == (wanted == STATUS_SUCCESS ? child.slot : 0),
         "capabilities have the slot", [&] { return number(capabilities.Address); });
}

void tWorld::setPower(tModelChild& child, i32 type, i32 state) {
  tDeviceRequest request(child.device, IRP_MJ_POWER, IRP_MN_SET_POWER);
  request.location().Parameters.Power.Type = static_cast<POWER_STATE_TYPE>(type);
  request.location().Parameters.Power.State.SystemState = static_cast<SYSTEM_POWER_STATE>(state);
  sendFailing(request);
  if (child.state == tPnpModel::kDeleted) {
    return demandStatus(request.status(), STATUS_DELETE_PENDING, "a deleted child has no power");
  }
  if (type == SystemPowerState) child.systemPower = state;
  if (type == DevicePowerState) model.setDevicePower(child, state);
  bool const isKnown = type == SystemPowerState || type == DevicePowerState;
  demandStatus(request.status(), isKnown ? STATUS_SUCCESS : STATUS_NOT_SUPPORTED, "power is set");
}

void tWorld::sendPower(tModelChild& child, u8 minor) {
  if (minor == IRP_MN_SET_POWER) return;
  tDeviceRequest request(child.device, IRP_MJ_POWER, minor);
  sendFailing(request);
  NTSTATUS wanted = minor == IRP_MN_QUERY_POWER ? STATUS_SUCCESS : STATUS_NOT_SUPPORTED;
  if (child.state == tPnpModel::kDeleted) wanted = STATUS_DELETE_PENDING;
  demandStatus(request.status(), wanted, "a power request ends as the model says");
}

void tWorld::sendOther(tModelChild& child, u8 major) {
  major %= IRP_MJ_MAXIMUM_FUNCTION + 1;
  if (major == IRP_MJ_PNP || major == IRP_MJ_POWER) return;
  tDeviceRequest request(child.device, major);
  sendFailing(request);
  NTSTATUS wanted = STATUS_INVALID_DEVICE_REQUEST;
  if (major == IRP_MJ_SYSTEM_CONTROL) wanted = STATUS_NOT_SUPPORTED;
  if (major == IRP_MJ_DEVICE_CONTROL || major == IRP_MJ_INTERNAL_DEVICE_CONTROL) {
    wanted = child.isDrained ? STATUS_DELETE_PENDING : STATUS_SUCCESS;
  }
  demandStatus(request.status(), wanted, "another request ends as the model says");
}

void tWorld::surprise() {
  if (isSurprised) return;
  isSurprised = true;
  demandStatus(sendPnp(function, IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS, "the bus is surprised");
  model.dismiss(true);
}

void tWorld::failBelow(bool isRelations) {
  (isRelations ? failsRelations : failsCapabilities) = true;
  filter.failNext(isRelations ? IRP_MN_QUERY_DEVICE_RELATIONS : IRP_MN_QUERY_CAPABILITIES);
}

void tWorld::demandState(tModelChild const& child) {
  tChildDevice const& record = recordOf(child.device);
  auto const demandSame = [](i64 seen, i64 wanted, char const* what) {
    demand(seen == wanted, what, [&] { return number(seen) + ", wanted " + number(wanted); });
  };
  demandSame(static_cast<i64>(record.states.get()), child.state, "the state is the model's");
  demandSame(fates[child.device]->stops, child.isDrained ? 1 : 0, "its handler has its last call");
  if (child.state == tPnpModel::kDeleted) return;
  demandSame(static_cast<i64>(record.states.getPrevious()), child.previous, "so is the one before");
  demandSame(record.devicePower, child.devicePower, "so is the device's power");
  demandSame(record.systemPower, child.systemPower, "so is the system's power");
  demandSame(record.parent != nullptr, child.isLinked, "so is the link");
  demandSame(record.isPresent, child.isPresent, "so is the presence");
}

// Whoever waits no more according to the model has returned, or does so now.
void tWorld::demandWaiters() {
  for (tModelChild const& child : model.children) {
    auto const waiter = waiters.find(child.device);
    if (waiter == waiters.end() || child.isAwaited) continue;
    demand(waiter->second.wait_for(kPatience) == std::future_status::ready,
           "a waiter is let go with its child", [] { return std::string("none"); });
    demandStatus(waiter->second.get(), 0, "a waiter has success");
    waiters.erase(waiter);
  }
}

void tWorld::apply(tScript& script) {
  char const operation = script.operation("ctrpqxakwyosf!");
  if (operation == '!') {
    fault = 1 + script.number() % 4;
    return;
  }
  if (operation == 'c') return create(script);
  if (operation == 't') return take(script.number() % 4);
  if (operation == 'r') return askRelations();
  if (operation == 's') return surprise();
  if (operation == 'f') return failBelow(script.number() % 2 == 0);
  tModelChild* const child = pick(script);
  if (child == nullptr) return;
  unsigned const first = script.number();
  if (operation == 'p') sendPnpTo(*child, static_cast<u8>(first % 32));
  if (operation == 'q') askId(*child, static_cast<i32>(first % 6));
  if (operation == 'x') askText(*child, static_cast<i32>(first % 4));
  if (operation == 'a') askChildRelations(*child, static_cast<i32>(first % 7));
  if (operation == 'k') askCapabilities(*child, static_cast<u16>(first));
  if (operation == 'w') {
    setPower(*child, static_cast<i32>(first % 3), static_cast<i32>(script.number() % 7));
  }
  if (operation == 'y') sendPower(*child, static_cast<u8>(first));
  if (operation == 'o') sendOther(*child, static_cast<u8>(first));
  demandState(*child);
  demandWaiters();
}

// Every child goes with its bus or behind it, and nobody waits any more.
tWorld::~tWorld() {
  bus.removeBus();
  model.dismiss(false);
  for (tModelChild& child : model.children) {
    demandState(child);
    if (child.state != tPnpModel::kDeleted) sendPnpTo(child, IRP_MN_REMOVE_DEVICE);
    demandState(child);
  }
  demandWaiters();
  for (tModelChild const& child : model.children) ObfDereferenceObject(child.device);
}

}  // namespace

void fuzzInput(std::string const& input) {
  tScript script(input);
  std::optional<tWorld> worlds[2];
  unsigned current = 0;
  while (script.next()) {
    std::optional<tWorld>& world = worlds[current];
    if (script.letter() == '@') {
      current = script.number() % 2;
    } else if (script.letter() == 'z') {
      world.reset();
    } else {
      if (!world) world.emplace(kDrivers[current].bus, kDrivers[current].filter);
      world->apply(script);
    }
  }
}
