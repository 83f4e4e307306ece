#include "oxdiagreport/describedItems.h"

#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagreport/reportText.h"
#include "oxdiagreport/tRawValues.h"
#include "qelmk/dynamicCast.h"

using nOXDIAG100::iReportableTranslator;
using nOXDIAG100::iVariantReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStringProxyReportable;
using tJson = nlohmann::ordered_json;

namespace {

// A text that a class has to look up is the number that it is looked up by.
tJson stringsOf(tStringProxyReportable const& proxy) {
  tStatus2 status;
  std::string const lookup = utf8Of(proxy.getLookupClassName(status).c_str());
  auto values = tJson::array();
  for (i32 id : proxy.getStringIDs(status)) values.push_back({{"string", id}, {"of", lookup}});
  return values;
}

tJson valuesOf(iVariantReportable const& reportable) {
  auto const* const proxy = nQELM100::dynamicCast<tStringProxyReportable>(&reportable);
  if (proxy != nullptr) return stringsOf(*proxy);
  tRawValues raw;
  tStatus2 status;
  _STL::wstring unused;
  reportable.generateReport(raw, unused, status);
  return raw.getValues();
}

tDescribedItem itemAt(tStatus2Description const& description, u32 index,
                      iReportableTranslator const& translator) {
  tStatus2 status;
  tDescribedItem item;
  _STL::string className;
  item.usageType = description.getUsageTypeAtIndex(index, status);
  description.getReportableClassNameAtIndex(index, className, status);
  item.className = className.c_str();
  _STL::wstring text = translator.translateUsageType(item.usageType, status);
  iVariantReportable const* const reportable = description.getReportablePtrAtIndex(index, status);
  if (reportable != nullptr) reportable->generateReport(translator, text, status);
  item.text = utf8Of(text);
  item.values = reportable != nullptr ? valuesOf(*reportable) : tJson::array();
  if (status.isError()) item.text += " (" + std::to_string(status.getCode()) + ")";
  return item;
}

}  // namespace

std::vector<tDescribedItem> describedItems(tStatus2 const& status, tLanguage const& language) {
  std::vector<tDescribedItem> items;
  auto const* const description =
      nQELM100::dynamicCast<tStatus2Description>(status.getDescription());
  if (description == nullptr) return items;
  auto const translator = language.makeTranslator(status.getComponentName());
  tStatus2 counting;
  u32 const count = description->getNumberOfReportItems(counting);
  for (u32 index = 0; index < count; ++index) {
    items.push_back(itemAt(*description, index, *translator));
  }
  return items;
}
