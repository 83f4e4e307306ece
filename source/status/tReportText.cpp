#include "oxdiagk/tReportText.h"

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/iReportableTranslatorForEmptyContainers.h"
#include "oxdiagk/iReportableTranslatorForI64.h"
#include "oxdiagk/iReportableTranslatorTimeAbsolute.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/dynamicCast.h"
#include "stl/memory.h"

namespace nOXDIAG100 {

tReportText::tReportText(iReportableTranslator const& reportTranslator, _STL::wstring& reportOutput,
                         tStatus2& reportStatus, tReportableSource const& reportSource)
    : translator(reportTranslator),
      output(reportOutput),
      status(reportStatus),
      source(reportSource) {
}

u32 tReportText::isGoing() const {
  return !status.isError();
}

void tReportText::begin() {
  if (hasBegun || status.isError()) return;
  hasBegun = true;
  append(translator.getListPrefix(status));
  applyTitle();
}

void tReportText::applyTitle() {
  if (status.isError()) return;
  // The output may remember a failure of its owner, which is none of this report.
  bool const hadFailed = output.hasFailed();
  translator.applyTitle(output, status);
  if (!hadFailed && output.hasFailed()) fail(kStatusOutOfMemory);
}

void tReportText::append(_STL::wstring const& text) {
  if (status.isError()) return;
  if (text.hasFailed() || !output.append(text)) fail(kStatusOutOfMemory);
}

void tReportText::appendValueSeparator() {
  if (isGoing()) append(translator.getValueSeparator(status));
}

void tReportText::appendRangeSeparator() {
  if (isGoing()) append(translator.getRangeSeparator(status));
}

void tReportText::appendEmptyContainer() {
  if (status.isError()) return;
  auto const* const forEmpty = findTranslator<iReportableTranslatorForEmptyContainers>();
  if (forEmpty != nullptr) append(forEmpty->translateEmptyContainer(status));
}

_STL::wstring tReportText::translateI64(i64 const& value) {
  if (!knowsI64) i64Translator = findTranslatorForI64();
  knowsI64 = true;
  if (i64Translator != nullptr) return i64Translator->translateI64(value, status);
  return translator.translateI32(static_cast<i32>(value), status);
}

iReportableTranslatorForI64 const* tReportText::findTranslatorForI64() const {
  return findTranslator<iReportableTranslatorForI64>();
}

iReportableTranslatorTimeAbsolute const* tReportText::findTranslatorForTimes() const {
  return findTranslator<iReportableTranslatorTimeAbsolute>();
}

void tReportText::fail(i32 code) {
  recordReportableFailure(status, code, source);
}

// A failure of the question only means that the translator is not more than it is.
template <class T>
T const* tReportText::findTranslator() const {
  tStatus2 outcome;
  nQELM100::tObject const* const object = translator.getFrameworkObject(outcome);
  return outcome.isError() ? nullptr : nQELM100::dynamicCast<T>(object);
}

}  // namespace nOXDIAG100
