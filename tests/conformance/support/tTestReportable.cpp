#include "tTestReportable.h"

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/statusCodes.h"
#include "tTestDescription.h"

using nOXDIAG100::iReportableTranslator;
using nOXDIAG100::iVariantReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;

QELM_DEFINE_CLASS(tTestReportable, "tTestReportable")
QELM_DEFINE_CLASS(tOtherReportable, "tOtherReportable")

constinit i32 tTestReportable::living = 0;
constinit tTestReportable::tBehaviour tTestReportable::behaviour = tTestReportable::kWorking;

namespace {

template <class T>
iCloneable* cloneOf(T const& original, i32& status) {
  switch (tTestReportable::behaviour) {
    case tTestReportable::kCloneFails:
      status = tTestReportable::kStatusCloneFailed;
      return nullptr;
    case tTestReportable::kCloneFailsSilently:
      return nullptr;
    case tTestReportable::kCloneIsForeign:
      return new tForeignObject;
    case tTestReportable::kCloneWarns:
      status = nQELM100::kStatusNoListFollows;
      break;
    default:
      break;
  }
  auto* const copy = new T(original.number);
  if (copy == nullptr && status >= 0) status = kStatusOutOfMemory;
  return copy;
}

// Asks for more than there can be, so that the text remembers the failure.
void cut(_STL::wstring& text) {
  text.reserve(_STL::wstring::max_size() + 1);
}

}  // namespace

tTestReportable::tTestReportable(tTestReportable const& other)
    : tObject(other), iVariantReportable(other), number(other.number) {
  ++living;
}

void tTestReportable::generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                                     tStatus2& status) const {
  if (status.isError()) return;
  output.append(translator.translateI32(number, status));
  if (behaviour == kReportFails) status.setCode(kStatusReportFailed);
  if (behaviour == kReportIsCut) cut(output);
}

u32 tTestReportable::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
  i32 code = 0;
  if (behaviour == kComparisonFails) status.setCode(kStatusComparisonFailed);
  if (status.isError() || other.getClass(code) != getClass(code)) return 0;
  return numberOf(&other) == number ? 1 : 0;
}

iCloneable* tTestReportable::clone(i32& status) const {
  return cloneOf(*this, status);
}

void tTestReportable::writeExternal(iObjectWriter& writer, i32& status) const {
  writer.writeI32(number, status);
}

void tTestReportable::readExternal(iObjectReader& reader, i32& status) {
  reader.readI32(number, status);
}

iCloneable* tOtherReportable::clone(i32& status) const {
  return cloneOf(*this, status);
}

i32 numberOf(iVariantReportable const* reportable) {
  auto const* const test = dynamicCast<tTestReportable>(reportable);
  return test != nullptr ? test->number : -1;
}

i32 addItems(tStatus2Description& description, u32 count) {
  tStatus2 status;
  for (u32 index = 0; index < count; ++index) {
    i32 const number = static_cast<i32>(index) + 1;
    description.addReportItem(number * 10, tTestReportable(number), status);
  }
  return status.getCode();
}

i32 numbersIn(tStatus2Description const& description) {
  tStatus2 status;
  i32 numbers = 0;
  u32 const count = description.getNumberOfReportItems(status);
  for (u32 index = 0; index < count; ++index) {
    i32 const number = numberOf(description.getReportablePtrAtIndex(index, status));
    numbers = numbers * 10 + (number < 0 ? 0 : number);
  }
  return status.isError() ? -1 : numbers;
}
