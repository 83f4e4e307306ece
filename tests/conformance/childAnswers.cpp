// What a child says of itself, and in whose memory.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "ntos/pool.h"
#include "support/tChildStack.h"
#include "support/tWideBuffer.h"

using namespace nOXDIAG100;

namespace {

bool hasText(tDeviceRequest const& request, wchar_t const* wanted) {
  return request.answer<wchar_t>() != nullptr && isSameWideText(request.answer<wchar_t>(), wanted);
}

// A query with one parameter.
class tQuery : public tDeviceRequest {
 public:
  tQuery(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type)
      : tDeviceRequest(device, IRP_MJ_PNP, IRP_MN_QUERY_ID) {
    location().Parameters.QueryId.IdType = type;
  }
  tQuery(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type)
      : tDeviceRequest(device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_TEXT) {
    location().Parameters.QueryDeviceText.DeviceTextType = type;
  }
  tQuery(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type)
      : tDeviceRequest(device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS) {
    location().Parameters.QueryDeviceRelations.Type = type;
  }
  ~tQuery() { freeAnswer(); }
};

bool saysInstance(u64 instance, wchar_t const* wanted) {
  tChildStack const stack(instance);
  tQuery query(stack.child, BusQueryInstanceID);
  return query.send() == STATUS_SUCCESS && hasText(query, wanted);
}

bool saysSlot(u32 slot, wchar_t const* wanted) {
  tChildStack const stack(1, slot);
  tQuery query(stack.child, DeviceTextLocationInformation);
  return query.send() == STATUS_SUCCESS && hasText(query, wanted);
}

// Starts the bus, with a child that is described so.
i32 createDescribed(tBusStack& stack, wchar_t const* description) {
  stack.startBus();
  tTestChild child(stack.handler, 1, 1);
  child.description.description = description;
  return stack.create(child.description);
}

// Whether the request is completed with the status that it came with, and nothing else.
bool keepsStatus(tDeviceRequest& request, NTSTATUS status) {
  u64 const before = request.ioStatus().Information;
  return request.sendPastTheKernel(status) == status && request.completions() == 1 &&
         request.status() == status && request.ioStatus().Information == before;
}

}  // namespace

TEST(ChildAnswers, TheDeviceIdIsTheFirstHardwareId) {
  tChildStack const stack;
  tQuery query(stack.child, BusQueryDeviceID);
  EXPECT_EQ(query.send(), STATUS_SUCCESS);
  EXPECT_EQ(query.completions(), 1);
  EXPECT_TRUE(hasText(query, L"TEST\\Gauge7"));
}

TEST(ChildAnswers, TheHardwareIdsEndWithAnEmptyOne) {
  tChildStack const stack;
  tQuery query(stack.child, BusQueryHardwareIDs);
  EXPECT_EQ(query.send(), STATUS_SUCCESS);
  wchar_t const wanted[] = L"TEST\\Gauge7\0TEST\\Gauge\0";
  EXPECT_TRUE(hasCharacters(query.answer<wchar_t>(), wanted, sizeof(wanted) / 2));
}

TEST(ChildAnswers, ThereAreNoCompatibleIds) {
  tChildStack const stack;
  tQuery query(stack.child, BusQueryCompatibleIDs);
  query.ioStatus().Information = 77;
  EXPECT_EQ(query.sendPastTheKernel(STATUS_SUCCESS), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(query.status(), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(query.ioStatus().Information, 0u);
  query.ioStatus().Information = 0;  // what is there is given back
}

TEST(ChildAnswers, OtherIdsKeepTheStatus) {
  tChildStack const stack;
  tQuery serial(stack.child, BusQueryDeviceSerialNumber);
  EXPECT_TRUE(keepsStatus(serial, STATUS_NOT_SUPPORTED));
  tQuery unknown(stack.child, static_cast<BUS_QUERY_ID_TYPE>(99));
  EXPECT_TRUE(keepsStatus(unknown, STATUS_DISK_FULL));
}

TEST(ChildAnswers, AnInstanceOf32BitsHasEightDigits) {
  EXPECT_TRUE(saysInstance(0x1F, L"0000001f"));
  EXPECT_TRUE(saysInstance(0, L"00000000"));
  EXPECT_TRUE(saysInstance(0xFFFFFFFF, L"ffffffff"));
}

TEST(ChildAnswers, ALargerInstanceHasSixteenDigits) {
  EXPECT_TRUE(saysInstance(0x100000000, L"0000000100000000"));
  EXPECT_TRUE(saysInstance(0xFEDCBA9876543210, L"fedcba9876543210"));
}

TEST(ChildAnswers, TheDescriptionIsACopy) {
  tChildStack const stack;
  tQuery query(stack.child, DeviceTextDescription);
  EXPECT_EQ(query.send(), STATUS_SUCCESS);
  EXPECT_TRUE(hasText(query, L"A gauge"));
  EXPECT_NE(query.answer<wchar_t const>(), stack.record().texts.getDescription());
}

TEST(ChildAnswers, ANullDescriptionIsEmpty) {
  tBusStack stack;
  EXPECT_EQ(createDescribed(stack, nullptr), 0);
  tQuery query(stack.driver().newestDevice(), DeviceTextDescription);
  EXPECT_EQ(query.send(), STATUS_SUCCESS);
  EXPECT_TRUE(hasText(query, L""));
}

TEST(ChildAnswers, ALongDescriptionIsCut) {
  constexpr u32 kMost = 0x7FFF;
  static constinit wchar_t text[kMost + 2] = {};
  for (u32 index = 0; index != kMost + 1; ++index) text[index] = L'x';
  tBusStack stack;
  EXPECT_EQ(createDescribed(stack, text), 0);
  tQuery query(stack.driver().newestDevice(), DeviceTextDescription);
  ASSERT_EQ(query.send(), STATUS_SUCCESS);
  ASSERT_NE(query.answer<wchar_t>(), nullptr);
  u32 length = 0;
  while (query.answer<wchar_t>()[length] != L'\0') ++length;
  EXPECT_EQ(length, kMost);
}

TEST(ChildAnswers, ATextThatIsThereAlreadyIsLeftAlone) {
  tChildStack const stack;
  DEVICE_TEXT_TYPE const types[] = {DeviceTextDescription, DeviceTextLocationInformation};
  for (DEVICE_TEXT_TYPE type : types) {
    wchar_t before[] = L"Better";
    tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_TEXT);
    request.location().Parameters.QueryDeviceText.DeviceTextType = type;
    request.ioStatus().Information = reinterpret_cast<u64>(before);
    EXPECT_TRUE(keepsStatus(request, STATUS_SUCCESS));
  }
}

TEST(ChildAnswers, TheLocationIsTheSlot) {
  EXPECT_TRUE(saysSlot(7, L"Slot 07"));
  EXPECT_TRUE(saysSlot(0, L"Slot 00"));
  EXPECT_TRUE(saysSlot(99, L"Slot 99"));
  EXPECT_TRUE(saysSlot(100, L"Slot 100"));
}

TEST(ChildAnswers, ALongLocationIsCut) {
  EXPECT_TRUE(saysSlot(1234, L"Slot 1234"));
  EXPECT_TRUE(saysSlot(12345, L"Slot 1234"));
  EXPECT_TRUE(saysSlot(0x7FFFFFFF, L"Slot 2147"));
}

TEST(ChildAnswers, OtherTextsKeepTheStatus) {
  tChildStack const stack;
  tQuery query(stack.child, static_cast<DEVICE_TEXT_TYPE>(2));
  EXPECT_TRUE(keepsStatus(query, STATUS_NOT_SUPPORTED));
}

TEST(ChildAnswers, TheTargetIsTheChildItself) {
  tChildStack const stack;
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
  request.location().Parameters.QueryDeviceRelations.Type = TargetDeviceRelation;
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  auto const* const relations = request.answer<DEVICE_RELATIONS>();
  ASSERT_NE(relations, nullptr);
  EXPECT_EQ(relations->Count, 1u);
  EXPECT_EQ(relations->Objects[0], stack.child);
  request.freeRelations();
}

TEST(ChildAnswers, OtherRelationsKeepTheStatus) {
  tChildStack const stack;
  DEVICE_RELATION_TYPE const types[] = {BusRelations, EjectionRelations, PowerRelations,
                                        RemovalRelations, SingleBusRelations};
  for (DEVICE_RELATION_TYPE type : types) {
    tQuery query(stack.child, type);
    EXPECT_TRUE(keepsStatus(query, STATUS_NOT_SUPPORTED));
    tQuery again(stack.child, type);
    EXPECT_TRUE(keepsStatus(again, STATUS_SUCCESS));
  }
}

TEST(ChildAnswers, TheBusIsTold) {
  tChildStack const stack;
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  auto const* const information = request.answer<PNP_BUS_INFORMATION>();
  ASSERT_NE(information, nullptr);
  EXPECT_EQ(__builtin_memcmp(&information->BusTypeGuid, &kTestBusType, sizeof(GUID)), 0);
  EXPECT_EQ(information->LegacyBusType, PNPBus);
  EXPECT_EQ(information->BusNumber, kTestBusNumber);
  request.freeAnswer();
}

TEST(ChildAnswers, ThereAreNoResourceRequirements) {
  tChildStack const stack;
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_RESOURCE_REQUIREMENTS);
  request.ioStatus().Information = 77;
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  EXPECT_EQ(request.completions(), 1);
  EXPECT_EQ(request.ioStatus().Information, 0u);
}

TEST(ChildAnswers, AUsageNotificationFails) {
  tChildStack const stack;
  EXPECT_EQ(sendPnp(stack.child, IRP_MN_DEVICE_USAGE_NOTIFICATION), STATUS_UNSUCCESSFUL);
}

TEST(ChildAnswers, WhatHasNoRowKeepsTheStatus) {
  tChildStack const stack;
  u8 const minors[] = {IRP_MN_QUERY_INTERFACE,
                       IRP_MN_QUERY_RESOURCES,
                       IRP_MN_FILTER_RESOURCE_REQUIREMENTS,
                       0x0E,
                       0x0F,
                       0x10,
                       0x11,
                       0x12,
                       IRP_MN_QUERY_PNP_DEVICE_STATE,
                       0x18,
                       0x19,
                       0xFF};
  for (u8 minor : minors) {
    NTSTATUS const statuses[] = {STATUS_NOT_SUPPORTED, STATUS_SUCCESS, STATUS_DISK_FULL};
    for (NTSTATUS status : statuses) {
      tDeviceRequest request(stack.child, IRP_MJ_PNP, minor);
      request.ioStatus().Information = 5;
      EXPECT_TRUE(keepsStatus(request, status));
    }
  }
  EXPECT_EQ(stack.state(), tPnpState::NotStarted);
}
