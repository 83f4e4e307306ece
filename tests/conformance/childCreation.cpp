// Children made, and each refusal.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "support/tChildStack.h"
#include "vexk/statusCodes.h"
#include "vexkntos/handlerOf.h"

using namespace nOXDIAG100;

namespace {

constexpr i32 kRemoving = -50300;
constexpr i32 kExists = -50303;
constexpr size_t kMost = 210;

// A hardware id of so many characters.
struct tLongId {
  explicit tLongId(size_t length) {
    for (size_t index = 0; index < length; ++index) text[index] = L'x';
  }
  wchar_t text[kMost] = {};
};

// Makes a child with these ids only.
i32 createWith(wchar_t const* const* ids, u32 count) {
  tBusStack stack;
  stack.startBus();
  tTestChild child(stack.handler, 1, 1);
  child.description.hardwareIds = ids;
  child.description.hardwareIdCount = count;
  DEVICE_OBJECT* const before = stack.driver().newestDevice();
  i32 const status = stack.create(child.description);
  bool const isMade = stack.driver().newestDevice() != before;
  EXPECT_EQ(isMade, status == 0);
  EXPECT_EQ(stack.countRelations(), isMade ? 1u : 0u);
  return status;
}

i32 createWithIdOf(size_t length) {
  tLongId const id(length);
  wchar_t const* const ids[] = {id.text};
  return createWith(ids, 1);
}

}  // namespace

TEST(ChildCreation, MakesADeviceOfItsBus) {
  tChildStack stack;
  ASSERT_NE(stack.child, nullptr);
  EXPECT_EQ(stack.child->DriverObject, stack.bus()->DriverObject);
  EXPECT_EQ(stack.child->DeviceType, 42u);
  EXPECT_EQ(stack.child->Flags & DO_POWER_PAGABLE, DO_POWER_PAGABLE);
  EXPECT_EQ(stack.child->Flags & DO_DEVICE_INITIALIZING, 0u);
  EXPECT_EQ(stack.child->Flags & 1, 0u);  // not about to be unloaded
  EXPECT_EQ(&vexHandlerOf(*stack.child), &stack.handler);
  EXPECT_EQ(stack.record().device, stack.child);
  EXPECT_EQ(stack.record().slot, 7u);
  EXPECT_EQ(stack.record().instance, 1u);
}

TEST(ChildCreation, ChildrenAreListedInTheirOrder) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const made[] = {stack.add(3, 1), stack.add(1, 2), stack.add(2, 2)};
  tDeviceRequest request(stack.bus(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  auto const* const relations = request.answer<DEVICE_RELATIONS>();
  ASSERT_NE(relations, nullptr);
  EXPECT_EQ(relations->Count, 3u);
  for (u32 index = 0; index < relations->Count; ++index)
    EXPECT_EQ(relations->Objects[index], made[index]);
  request.freeRelations();
}

TEST(ChildCreation, AnInstanceIsThereOnce) {
  tBusStack stack;
  stack.startBus();
  EXPECT_NE(stack.add(0x100000001, 1), nullptr);
  DEVICE_OBJECT* const newest = stack.driver().newestDevice();
  tTestChild const again(stack.handler, 0x100000001, 2);
  EXPECT_EQ(stack.create(again.description), kExists);
  EXPECT_EQ(kExists, static_cast<i32>(0xFFFF3B81));
  EXPECT_EQ(stack.driver().newestDevice(), newest);
  EXPECT_NE(stack.add(1, 1), nullptr);
  EXPECT_EQ(stack.countRelations(), 2u);
}

TEST(ChildCreation, AnInstanceIsFreeWhenItsChildIsTakenAway) {
  tBusStack stack;
  stack.startBus();
  stack.add(1, 1);
  EXPECT_EQ(stack.countRelations(), 1u);
  i32 status = 0;
  stack.remove(1, status);
  DEVICE_OBJECT* const second = stack.add(1, 1);
  EXPECT_NE(second, nullptr);
  EXPECT_EQ(stack.countRelations(), 1u);
}

TEST(ChildCreation, AnIdHas1To201Characters) {
  EXPECT_EQ(createWithIdOf(0), kStatusBadArgument);
  EXPECT_EQ(createWithIdOf(1), 0);
  EXPECT_EQ(createWithIdOf(200), 0);
  EXPECT_EQ(createWithIdOf(201), 0);
  EXPECT_EQ(createWithIdOf(202), kStatusBadArgument);
  EXPECT_EQ(createWithIdOf(203), kStatusBadArgument);
}

TEST(ChildCreation, EveryIdIsLookedAt) {
  tLongId const good(5);
  tLongId const bad(202);
  wchar_t const* const longer[] = {good.text, bad.text};
  EXPECT_EQ(createWith(longer, 2), kStatusBadArgument);
  wchar_t const* const empty[] = {good.text, L""};
  EXPECT_EQ(createWith(empty, 2), kStatusBadArgument);
  wchar_t const* const missing[] = {good.text, nullptr};
  EXPECT_EQ(createWith(missing, 2), kStatusBadArgument);
  EXPECT_EQ(createWith(missing, 1), 0);
}

TEST(ChildCreation, ThereIsAnId) {
  tLongId const good(5);
  wchar_t const* const ids[] = {good.text};
  EXPECT_EQ(createWith(ids, 0), kStatusBadArgument);
  EXPECT_EQ(createWith(nullptr, 1), kStatusBadArgument);
  EXPECT_EQ(createWith(nullptr, 0), kStatusBadArgument);
}

TEST(ChildCreation, AllIdsHave1024CharactersAtMost) {
  // Five of 201 and their terminators are 1010, and the last terminator makes 1011.
  tLongId const whole(201);
  tLongId const fits(12);
  tLongId const longer(13);
  wchar_t const* const full[] = {whole.text, whole.text, whole.text,
                                 whole.text, whole.text, fits.text};
  EXPECT_EQ(createWith(full, 6), 0);
  wchar_t const* const over[] = {whole.text, whole.text, whole.text,
                                 whole.text, whole.text, longer.text};
  EXPECT_EQ(createWith(over, 6), kStatusBadArgument);
  wchar_t const* const many[] = {whole.text, whole.text, whole.text,
                                 whole.text, whole.text, whole.text};
  EXPECT_EQ(createWith(many, 6), kStatusBadArgument);
}

TEST(ChildCreation, CharactersThatStopWindowsAreRefused) {
  wchar_t id[] = L"TEST\\x";
  wchar_t const* const ids[] = {L"TEST\\Gauge", id};
  wchar_t& tried = id[5];
  wchar_t const refused[] = {0x01, 0x09,  0x1F,   L',',   0x80,  0xA0,
                             0xFF, 0x100, 0x20AC, 0xD800, 0xFFFF};
  for (wchar_t character : refused) {
    tried = character;
    EXPECT_EQ(createWith(ids, 2), kStatusBadArgument);
    EXPECT_EQ(createWith(ids + 1, 1), kStatusBadArgument);
    wchar_t const alone[] = {character, L'x', L'\0'};
    wchar_t const* const aloneIds[] = {alone};
    EXPECT_EQ(createWith(aloneIds, 1), kStatusBadArgument);
  }
  wchar_t const taken[] = {0x20, L'!', L'+', L'-', L'&', L'\\', L'~', 0x7F};
  for (wchar_t character : taken) {
    tried = character;
    EXPECT_EQ(createWith(ids, 2), 0);
    EXPECT_EQ(createWith(ids + 1, 1), 0);
  }
}

TEST(ChildCreation, AChildNeedsAHandler) {
  tBusStack stack;
  stack.startBus();
  tTestChild child(stack.handler, 1, 1);
  child.description.handler = nullptr;
  EXPECT_EQ(stack.create(child.description), kStatusBadArgument);
  EXPECT_EQ(stack.countRelations(), 0u);
}

TEST(ChildCreation, AFullListIsToldWhole) {
  tBusStack stack;
  stack.startBus();
  tLongId const whole(201);
  tLongId const fits(12);
  wchar_t const* const ids[] = {whole.text, whole.text, whole.text,
                                whole.text, whole.text, fits.text};
  tTestChild child(stack.handler, 1, 1);
  child.description.hardwareIds = ids;
  child.description.hardwareIdCount = 6;
  EXPECT_EQ(stack.create(child.description), 0);
  tDeviceRequest request(stack.driver().newestDevice(), IRP_MJ_PNP, IRP_MN_QUERY_ID);
  request.location().Parameters.QueryId.IdType = BusQueryHardwareIDs;
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  wchar_t const* const text = request.answer<wchar_t>();
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text[201], L'\0');
  EXPECT_EQ(text[202], L'x');
  EXPECT_EQ(text[1009], L'\0');
  EXPECT_EQ(text[1021], L'x');
  EXPECT_EQ(text[1022], L'\0');
  EXPECT_EQ(text[1023], L'\0');
  request.freeAnswer();
}

TEST(ChildCreation, ABusThatGoesMakesNoMore) {
  tBusStack stack;
  stack.startBus();
  stack.add(1, 1);
  EXPECT_EQ(sendPnp(stack.bus(), IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
  DEVICE_OBJECT* const newest = stack.driver().newestDevice();
  tTestChild const again(stack.handler, 1, 1);
  EXPECT_EQ(stack.create(again.description), kRemoving);
  EXPECT_EQ(stack.driver().newestDevice(), newest);
}

TEST(ChildCreation, ANegativeStatusIsKept) {
  tBusStack stack;
  stack.startBus();
  tTestChild const child(stack.handler, 1, 1);
  i32 status = -7;
  stack.create(child.description, status);
  EXPECT_EQ(status, -7);
  EXPECT_EQ(stack.countRelations(), 0u);
}

TEST(ChildCreation, AWarningStays) {
  tBusStack stack;
  stack.startBus();
  tTestChild const child(stack.handler, 1, 1);
  i32 status = 7;
  stack.create(child.description, status);
  EXPECT_EQ(status, 7);
  EXPECT_EQ(stack.countRelations(), 1u);
}
