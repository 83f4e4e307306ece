// Values of the kernel as a line shows them.

#include "oxdiagk/kernelValues.h"

#include "conformance/harness.h"
#include "ntos/guid.h"
#include "ntos/irp.h"
#include "ntos/irql.h"
#include "ntos/power.h"
#include "ntos/string.h"
#include "ntos/time.h"
#include "support/recordingDestination.h"

namespace {

using namespace nOXDIAG100;

struct tShown {
  tRecordingDestination record;
  tPrivateTrace trace{record};

  explicit tShown(iTraceable const& value) { trace.put(value).endl(); }

  char const* text() const { return record.text(); }
};

UNICODE_STRING wide(wchar_t const* text, u32 length) {
  return {static_cast<u16>(length), static_cast<u16>(length), const_cast<wchar_t*>(text)};
}

ANSI_STRING narrow(char const* text, u32 length) {
  return {static_cast<u16>(length), static_cast<u16>(length), const_cast<char*>(text)};
}

// Whether a day, from 1601 on, is shown as this date.
bool isShownAs(i64 day, u32 year, u32 month, u32 ofMonth) {
  constexpr i64 kUnitsPerDay = 864'000'000'000;
  char const date[] = {static_cast<char>('0' + year / 1000),
                       static_cast<char>('0' + year / 100 % 10),
                       static_cast<char>('0' + year / 10 % 10),
                       static_cast<char>('0' + year % 10),
                       '-',
                       static_cast<char>('0' + month / 10),
                       static_cast<char>('0' + month % 10),
                       '-',
                       static_cast<char>('0' + ofMonth / 10),
                       static_cast<char>('0' + ofMonth % 10)};
  return __builtin_memcmp(tShown(asKernelTime(day * kUnitsPerDay)).text(), date, sizeof(date)) == 0;
}

constexpr GUID kGuid = {
    0x6E0B2C51, 0x7A1D, 0x4F38, {0x93, 0x5E, 0x20, 0x4C, 0xB8, 0x17, 0xD9, 0x62}};

}  // namespace

TEST(KernelValues, AStatusHasItsNameAndItsNumber) {
  EXPECT_STREQ(tShown(asNtStatus(STATUS_INVALID_HANDLE)).text(),
               "STATUS_INVALID_HANDLE (0xC0000008)\n");
  EXPECT_STREQ(tShown(asNtStatus(STATUS_PENDING)).text(), "STATUS_PENDING (0x00000103)\n");
  EXPECT_STREQ(tShown(asNtStatus(STATUS_BUFFER_OVERFLOW)).text(),
               "STATUS_BUFFER_OVERFLOW (0x80000005)\n");
}

TEST(KernelValues, AStatusIsPutIntoAChain) {
  tRecordingDestination record;
  tPrivateTrace trace(record);
  trace.put("closed: ").put(asNtStatus(STATUS_ACCESS_DENIED)).put("!").endl();
  EXPECT_STREQ(record.text(), "closed: STATUS_ACCESS_DENIED (0xC0000022)!\n");
}

TEST(KernelValues, TheFirstAndTheLastStatusOfTheTableAreFound) {
  EXPECT_STREQ(asNtStatus(0).getName(), "STATUS_SUCCESS");
  EXPECT_STREQ(asNtStatus(ntosStatus(0xC03A0019)).getName(),
               "STATUS_VHD_DIFFERENCING_CHAIN_ERROR_IN_PARENT");
  EXPECT_TRUE(asNtStatus(ntosStatus(0xC03A001A)).getName() == nullptr);
  EXPECT_TRUE(asNtStatus(-1).getName() == nullptr);
  EXPECT_TRUE(asNtStatus(4).getName() == nullptr);
}

TEST(KernelValues, StatusesThatAreNoneOfTheKernelsHaveTheirNamesToo) {
  EXPECT_STREQ(asNtStatus(ntosStatus(0xC0020001)).getName(), "RPC_NT_INVALID_STRING_BINDING");
  EXPECT_STREQ(asNtStatus(0x00010002).getName(), "DBG_CONTINUE");
}

TEST(KernelValues, OfTwoNamesOfAStatusTheFirstIsShown) {
  EXPECT_STREQ(asNtStatus(0x80).getName(), "STATUS_ABANDONED");
  EXPECT_STREQ(asNtStatus(ntosStatus(0xC0220018)).getName(),
               "STATUS_FWP_TOO_MANY_BOOTTIME_FILTERS");
}

TEST(KernelValues, AnUnknownStatusIsTakenApart) {
  EXPECT_STREQ(tShown(asNtStatus(ntosStatus(0xE0001234))).text(),
               "0xE0001234 (error, customer, facility 0x0, code 0x1234)\n");
  EXPECT_STREQ(tShown(asNtStatus(ntosStatus(0xC0070005))).text(),
               "0xC0070005 (error, facility 0x7, code 0x5)\n");
  EXPECT_STREQ(tShown(asNtStatus(ntosStatus(0x8FFF0000))).text(),
               "0x8FFF0000 (warning, facility 0xFFF, code 0x0)\n");
  EXPECT_STREQ(tShown(asNtStatus(0x60000001)).text(),
               "0x60000001 (information, customer, facility 0x0, code 0x1)\n");
  EXPECT_STREQ(tShown(asNtStatus(4)).text(), "0x00000004 (success, facility 0x0, code 0x4)\n");
  EXPECT_STREQ(tShown(asNtStatus(-1)).text(),
               "0xFFFFFFFF (error, customer, facility 0xFFF, code 0xFFFF)\n");
}

TEST(KernelValues, AMajorCodeHasItsName) {
  EXPECT_STREQ(tShown(asIrpMajor(0)).text(), "IRP_MJ_CREATE (0x00)\n");
  EXPECT_STREQ(tShown(asIrpMajor(IRP_MJ_PNP)).text(), "IRP_MJ_PNP (0x1B)\n");
  EXPECT_STREQ(tShown(asIrpMajor(0x0F)).text(), "IRP_MJ_INTERNAL_DEVICE_CONTROL (0x0F)\n");
  EXPECT_STREQ(tShown(asIrpMajor(0x1C)).text(), "0x1C\n");
  EXPECT_STREQ(tShown(asIrpMajor(0xFF)).text(), "0xFF\n");
}

TEST(KernelValues, EveryMajorCodeHasAName) {
  for (u32 major = 0; major <= IRP_MJ_MAXIMUM_FUNCTION; ++major) {
    EXPECT_TRUE(asIrpMajor(static_cast<u8>(major)).getName() != nullptr);
  }
}

TEST(KernelValues, AMinorCodeIsNamedByItsMajorCode) {
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_PNP, 0)).text(), "IRP_MN_START_DEVICE (0x00)\n");
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_POWER, 0)).text(), "IRP_MN_WAIT_WAKE (0x00)\n");
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_SYSTEM_CONTROL, 0)).text(),
               "IRP_MN_QUERY_ALL_DATA (0x00)\n");
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_INTERNAL_DEVICE_CONTROL, 1)).text(),
               "IRP_MN_SCSI_CLASS (0x01)\n");
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_PNP, 0x0E)).text(), "0x0E\n");
  EXPECT_STREQ(tShown(asIrpMinor(IRP_MJ_CREATE, 0)).text(), "0x00\n");
  EXPECT_STREQ(tShown(asIrpMinor(0xFF, 0xFF)).text(), "0xFF\n");
}

TEST(KernelValues, AnInterruptRequestLevelHasItsName) {
  EXPECT_STREQ(tShown(asIrql(PASSIVE_LEVEL)).text(), "PASSIVE_LEVEL (0)\n");
  EXPECT_STREQ(tShown(asIrql(DISPATCH_LEVEL)).text(), "DISPATCH_LEVEL (2)\n");
  EXPECT_STREQ(tShown(asIrql(13)).text(), "CLOCK_LEVEL (13)\n");
  EXPECT_STREQ(tShown(asIrql(HIGH_LEVEL)).text(), "HIGH_LEVEL (15)\n");
}

TEST(KernelValues, LevelsOfDevicesAreCalledThat) {
  EXPECT_STREQ(tShown(asIrql(3)).text(), "device level (3)\n");
  EXPECT_STREQ(tShown(asIrql(11)).text(), "device level (11)\n");
  EXPECT_STREQ(tShown(asIrql(12)).text(), "12\n");
  EXPECT_STREQ(tShown(asIrql(16)).text(), "16\n");
  EXPECT_STREQ(tShown(asIrql(255)).text(), "255\n");
}

TEST(KernelValues, PowerStatesHaveTheirNames) {
  EXPECT_STREQ(tShown(asDevicePowerState(PowerDeviceD0)).text(), "PowerDeviceD0 (1)\n");
  EXPECT_STREQ(tShown(asDevicePowerState(PowerDeviceUnspecified)).text(),
               "PowerDeviceUnspecified (0)\n");
  EXPECT_STREQ(tShown(asDevicePowerState(5)).text(), "5\n");
  EXPECT_STREQ(tShown(asSystemPowerState(PowerSystemShutdown)).text(), "PowerSystemShutdown (6)\n");
  EXPECT_STREQ(tShown(asSystemPowerState(7)).text(), "7\n");
  EXPECT_STREQ(tShown(asSystemPowerState(-1)).text(), "4294967295\n");
}

TEST(KernelValues, AWideStringIsItsCountedText) {
  UNICODE_STRING const name = wide(L"\\Device\\Rack and more", 24);
  EXPECT_STREQ(tShown(asUnicodeString(&name)).text(), "\\Device\\Rack\n");
}

TEST(KernelValues, AStringThatIsNotThereSaysSo) {
  EXPECT_STREQ(tShown(asUnicodeString(static_cast<UNICODE_STRING*>(nullptr))).text(), "(null)\n");
  EXPECT_STREQ(tShown(asAnsiString(static_cast<ANSI_STRING const*>(nullptr))).text(), "(null)\n");
  UNICODE_STRING const torn = wide(nullptr, 8);
  EXPECT_STREQ(tShown(asUnicodeString(&torn)).text(), "(null)\n");
  ANSI_STRING const tornBytes = narrow(nullptr, 65535);
  EXPECT_STREQ(tShown(asAnsiString(&tornBytes)).text(), "(null)\n");
}

TEST(KernelValues, AnEmptyStringIsEmpty) {
  UNICODE_STRING const none = wide(nullptr, 0);
  UNICODE_STRING const nothing = wide(L"unseen", 0);
  ANSI_STRING const noBytes = narrow(nullptr, 0);
  EXPECT_STREQ(tShown(asUnicodeString(&none)).text(), "\n");
  EXPECT_STREQ(tShown(asUnicodeString(&nothing)).text(), "\n");
  EXPECT_STREQ(tShown(asAnsiString(&noBytes)).text(), "\n");
}

TEST(KernelValues, AnOddLengthIsTold) {
  UNICODE_STRING const name = wide(L"rack", 5);
  EXPECT_STREQ(tShown(asUnicodeString(&name)).text(), "ra (odd length 5)\n");
  UNICODE_STRING const half = wide(L"rack", 1);
  EXPECT_STREQ(tShown(asUnicodeString(&half)).text(), " (odd length 1)\n");
  ANSI_STRING const bytes = narrow("rack", 3);
  EXPECT_STREQ(tShown(asAnsiString(&bytes)).text(), "rac\n");
}

TEST(KernelValues, WhatIsNoCharacterIsEscaped) {
  UNICODE_STRING const name = wide(L"a\0b\n\x20AC~\x7F\xFFFF", 16);
  EXPECT_STREQ(tShown(asUnicodeString(&name)).text(), "a\\u0000b\\u000A\\u20AC~\\u007F\\uFFFF\n");
  ANSI_STRING const bytes = narrow("a\0 \n\x80\xFF", 6);
  EXPECT_STREQ(tShown(asAnsiString(&bytes)).text(), "a\\x00 \\x0A\\x80\\xFF\n");
}

TEST(KernelValues, AStringMayBeginAtAnOddAddress) {
  static constinit u8 bytes[9] = {0, 'r', 0, 'a', 0, 'c', 0, 'k', 0};
  UNICODE_STRING const name = wide(reinterpret_cast<wchar_t const*>(bytes + 1), 8);
  EXPECT_STREQ(tShown(asUnicodeString(&name)).text(), "rack\n");
}

TEST(KernelValues, ALongStringArrivesWhole) {
  static constinit char bytes[1001] = {};
  __builtin_memset(bytes, 'x', 1000);
  bytes[500] = '\t';
  ANSI_STRING const text = narrow(bytes, 1000);
  tShown const shown(asAnsiString(&text));
  EXPECT_EQ(shown.record.length(), u32{1000 + 3 + 1});
  EXPECT_EQ(__builtin_memcmp(shown.text() + 499, "x\\x09x", 6), 0);
}

TEST(KernelValues, ALongStringOfEscapesArrivesWhole) {
  constexpr u32 kUnits = 1000;
  constexpr u32 kEscape = 6;
  static constinit wchar_t units[kUnits] = {};
  UNICODE_STRING const name = wide(units, sizeof(units));
  tShown const shown(asUnicodeString(&name));
  ASSERT_EQ(shown.record.length(), kUnits * kEscape + 1);
  for (u32 unit = 0; unit < kUnits; ++unit) {
    ASSERT_EQ(__builtin_memcmp(shown.text() + unit * kEscape, "\\u0000", kEscape), 0);
  }
}

TEST(KernelValues, AGuidIsWrittenAsTheRegistryDoes) {
  EXPECT_STREQ(tShown(asGuid(&kGuid)).text(), "{6E0B2C51-7A1D-4F38-935E-204CB817D962}\n");
  GUID const zero = {};
  EXPECT_STREQ(tShown(asGuid(&zero)).text(), "{00000000-0000-0000-0000-000000000000}\n");
  EXPECT_STREQ(tShown(asGuid(static_cast<GUID const*>(nullptr))).text(), "(null)\n");
}

TEST(KernelValues, ATimeIsADateAndATimeOfDay) {
  EXPECT_STREQ(tShown(asKernelTime(0)).text(), "1601-01-01T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime(116444736000000001)).text(), "1970-01-01T00:00:00.0000001Z\n");
  EXPECT_STREQ(tShown(asKernelTime(134082942381234567)).text(), "2025-11-22T14:10:38.1234567Z\n");
  EXPECT_STREQ(tShown(asKernelTime(0x7FFFFFFFFFFFFFFF)).text(), "30828-09-14T02:48:05.4775807Z\n");
}

TEST(KernelValues, LeapDaysAreCounted) {
  i64 const day = 864000000000;
  EXPECT_STREQ(tShown(asKernelTime(125962559999999999)).text(), "2000-02-28T23:59:59.9999999Z\n");
  EXPECT_STREQ(tShown(asKernelTime(125962560000000000)).text(), "2000-02-29T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime(125962560000000000 + day)).text(),
               "2000-03-01T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime(146096 * day)).text(), "2000-12-31T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime(146097 * day)).text(), "2001-01-01T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime((36524 - 307) * day)).text(), "1700-02-28T00:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime((36524 - 306) * day)).text(), "1700-03-01T00:00:00.0000000Z\n");
}

TEST(KernelValues, EachYearOfFourCenturiesHasItsDays) {
  i64 day = 0;
  for (u32 year = 1601; year <= 2002; ++year) {
    bool const isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    i64 const march = day + (isLeap ? 60 : 59);
    EXPECT_TRUE(isShownAs(day, year, 1, 1));
    EXPECT_TRUE(isShownAs(march - 1, year, 2, isLeap ? 29 : 28));
    EXPECT_TRUE(isShownAs(march, year, 3, 1));
    day += isLeap ? 366 : 365;
    EXPECT_TRUE(isShownAs(day - 1, year, 12, 31));
  }
}

TEST(KernelValues, EachHourOfADayBeginsWithItsFirstMinute) {
  EXPECT_STREQ(tShown(asKernelTime(35999999999)).text(), "1601-01-01T00:59:59.9999999Z\n");
  EXPECT_STREQ(tShown(asKernelTime(36000000000)).text(), "1601-01-01T01:00:00.0000000Z\n");
  EXPECT_STREQ(tShown(asKernelTime(828000000000)).text(), "1601-01-01T23:00:00.0000000Z\n");
}

TEST(KernelValues, ANegativeTimeIsAnInterval) {
  EXPECT_STREQ(tShown(asKernelTime(-15000000)).text(), "-1.5000000 s\n");
  EXPECT_STREQ(tShown(asKernelTime(-1)).text(), "-0.0000001 s\n");
  EXPECT_STREQ(tShown(asKernelTime(-0x7FFFFFFFFFFFFFFF - 1)).text(), "-922337203685.4775808 s\n");
}

TEST(KernelValues, NothingIsWrittenIntoAHiddenLine) {
  tRecordingDestination record;
  tPrivateTrace trace(record);
  trace.disable();
  UNICODE_STRING const torn = wide(reinterpret_cast<wchar_t const*>(16), 8);
  trace.put(asNtStatus(0)).put(asUnicodeString(&torn)).put(asKernelTime(0));
  trace.put(asGuid(reinterpret_cast<GUID const*>(16))).endl();
  EXPECT_STREQ(record.text(), "");
}
