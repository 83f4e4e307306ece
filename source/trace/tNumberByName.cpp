#include "oxdiagk/tNumberByName.h"

#include "oxdiagk/tTrace.h"
#include "trace/fixedDigits.h"
#include "trace/kernelNames.h"
#include "trace/tNameTable.h"
#include "vexk/numberDigits.h"

namespace nOXDIAG100 {
namespace {

#define OXDIAG_NAME_MEMBER(number, name) char name[sizeof(#name)];
#define OXDIAG_NAME_TEXT(number, name) #name,
#define OXDIAG_NAME_ROW(number, name) {number, offsetof(tTexts, name)},

// The texts are one structure, so that the compiler knows where each begins.
#define OXDIAG_NAME_TABLE(Namespace, NAMES)                     \
  namespace Namespace {                                         \
  struct tTexts {                                               \
    NAMES(OXDIAG_NAME_MEMBER)                                   \
  };                                                            \
  constexpr tTexts kTexts = {NAMES(OXDIAG_NAME_TEXT)};          \
  constexpr tNameRow kRows[] = {NAMES(OXDIAG_NAME_ROW)};        \
  constexpr u64 kSize = sizeof(kTexts) + sizeof(kRows);         \
  constexpr tNameTable kTable(kRows, &kTexts);                  \
  static_assert(kTable.isSorted(), "it is searched by halves"); \
  }

OXDIAG_NAME_TABLE(nStatus, OXDIAG_STATUS_NAMES)
OXDIAG_NAME_TABLE(nIrpMajor, OXDIAG_IRP_MAJOR_NAMES)
OXDIAG_NAME_TABLE(nIrpMinor, OXDIAG_IRP_MINOR_NAMES)
OXDIAG_NAME_TABLE(nIrql, OXDIAG_IRQL_NAMES)
OXDIAG_NAME_TABLE(nDevicePower, OXDIAG_DEVICE_POWER_NAMES)
OXDIAG_NAME_TABLE(nSystemPower, OXDIAG_SYSTEM_POWER_NAMES)

constexpr u64 kMostSize = 70 * u64{1024};  // as the header says
static_assert(nStatus::kSize + nIrpMajor::kSize + nIrpMinor::kSize + nIrql::kSize +
                  nDevicePower::kSize + nSystemPower::kSize <=
              kMostSize);

// By tNumberByName::tKind. Hexadecimal numbers have their digits, decimal ones as many as it takes.
struct tNumberForm {
  tNameTable const* table;
  u32 hexadecimalDigits;
};
constexpr tNumberForm kForms[] = {{&nStatus::kTable, 8},      {&nIrpMajor::kTable, 2},
                                  {&nIrpMinor::kTable, 2},    {&nIrql::kTable, 0},
                                  {&nDevicePower::kTable, 0}, {&nSystemPower::kTable, 0}};

constexpr u32 kMostDigits = 20;       // of what vexWriteDecimal may write
constexpr u32 kLastDeviceLevel = 11;  // the first one is above those that have names

// The parts of a status, from the highest bits on.
constexpr char const* kSeverities[] = {"success", "information", "warning", "error"};
constexpr u32 kSeverityShift = 30;
constexpr u32 kCustomerBit = 1u << 29;
constexpr u32 kFacilityShift = 16;
constexpr u32 kFacilityMask = 0xFFF;
constexpr u32 kCodeMask = 0xFFFF;

void putStatusParts(tTrace& trace, u32 status) {
  trace.put(" (").put(kSeverities[status >> kSeverityShift]);
  if ((status & kCustomerBit) != 0) trace.put(", customer");
  trace.put(", facility ").put(status >> kFacilityShift & kFacilityMask, 16);
  trace.put(", code ").put(status & kCodeMask, 16).put(")");
}

}  // namespace

tNumberByName::tNumberByName(tKind kind, u32 number) : kind(kind), number(number) {
}

char const* tNumberByName::getName() const {
  return kForms[kind].table->find(number);
}

void tNumberByName::put(tTrace& trace) const {
  if (!trace.isLineShown()) return;
  char const* const name = getName();
  if (name == nullptr) return putUnnamed(trace);
  char text[kMostDigits];
  char const* const end = writeNumber(text);
  trace.put(name).put(" (").put(text, static_cast<unsigned int>(end - text)).put(")");
}

void tNumberByName::putUnnamed(tTrace& trace) const {
  char text[kMostDigits];
  char const* const end = writeNumber(text);
  bool const isDevice = kind == kIrql && number <= kLastDeviceLevel;
  if (isDevice) trace.put("device level (");
  trace.put(text, static_cast<unsigned int>(end - text));
  if (isDevice) trace.put(")");
  if (kind == kStatus) putStatusParts(trace, number);
}

// Returns the end of the number.
char* tNumberByName::writeNumber(char* to) const {
  u32 const digits = kForms[kind].hexadecimalDigits;
  if (digits != 0) {
    to[0] = '0';
    to[1] = 'x';
    return writeFixedDigits(number, 16, digits, to + 2);
  }
  char text[kMostDigits];
  char* const end = text + sizeof(text);
  char const* const begin = vexWriteDecimal(number, end);
  u64 const length = static_cast<u64>(end - begin);
  __builtin_memcpy(to, begin, length);
  return to + length;
}

}  // namespace nOXDIAG100
