#include "oxdiagk/tStringProxyReportable.h"

#include "oxdiagk/iStringIDToWideStringConverter.h"
#include "oxdiagk/reportableLists.h"
#include "oxdiagk/tStatus2.h"

QELM_DEFINE_INTERFACE(nOXDIAG100::iStringIDToWideStringConverter,
                      "nOXDIAG100::iStringIDToWideStringConverter")
QELM_DEFINE_CLASS(nOXDIAG100::tStringProxyReportable, "nOXDIAG100::tStringProxyReportable")

namespace nOXDIAG100 {
namespace {

constexpr char kSourceTag[] = "source/status/tStringProxyReportable";

// The lookup class and the one object of it that a report needs.
class tConverter {
 public:
  tConverter(_STL::string const& className, tReportText& report);
  ~tConverter();
  tConverter(tConverter const&) = delete;
  tConverter& operator=(tConverter const&) = delete;

  // Null when the status holds an error.
  iStringIDToWideStringConverter const* get() const { return converter; }

 private:
  nQELM100::tClass itsClass;
  nQELM100::tObject* object = nullptr;
  iStringIDToWideStringConverter const* converter = nullptr;
};

tConverter::tConverter(_STL::string const& className, tReportText& report) {
  i32 code = report.getStatus().getCode();
  if (code < 0) return;
  itsClass = nQELM100::tClass::forName(className.data(), className.size(), code);
  object = itsClass.newInstance(code);
  if (code < 0) {
    report.fail(code);
    return;
  }
  converter = nQELM100::dynamicCast<iStringIDToWideStringConverter>(object);
  if (converter == nullptr) report.fail(nQELM100::kStatusClassMismatch);
}

tConverter::~tConverter() {
  i32 code = 0;
  itsClass.deleteInstance(object, code);
}

}  // namespace

tStringProxyReportable::tStringProxyReportable(tStatus2&) {
}

tStringProxyReportable::tStringProxyReportable(i32 id, char const* className, tStatus2& status)
    : tStringProxyReportable(id, _STL::string(className), status) {
}

tStringProxyReportable::tStringProxyReportable(i32 id, _STL::string const& className,
                                               tStatus2& status) {
  set(&id, 1, className, status, kSourceTag);
}

tStringProxyReportable::tStringProxyReportable(_STL::vector<i32> const& ids, char const* className,
                                               tStatus2& status)
    : tStringProxyReportable(ids, _STL::string(className), status) {
}

tStringProxyReportable::tStringProxyReportable(_STL::vector<i32> const& ids,
                                               _STL::string const& className, tStatus2& status) {
  set(ids.data(), ids.size(), className, status, kSourceTag);
}

tStringProxyReportable::tStringProxyReportable(tStringProxyReportable const& other)
    : tObject(other), iVariantReportable(other) {
  *this = other;
}

tStringProxyReportable& tStringProxyReportable::operator=(tStringProxyReportable const& other) {
  copy(other.stringIDs.data(), other.stringIDs.size(), other.lookupClassName);
  return *this;
}

_STL::vector<i32> const& tStringProxyReportable::getStringIDs(tStatus2&) const {
  return stringIDs.get();
}

_STL::string const& tStringProxyReportable::getLookupClassName(tStatus2&) const {
  return lookupClassName;
}

void tStringProxyReportable::generateReport(iReportableTranslator const& translator,
                                            _STL::wstring& output, tStatus2& status) const {
  tReportText report(translator, output, status, kSourceTag);
  report.begin();
  if (lookupClassName.empty()) {
    renderReportableList(report, stringIDs, tEmptyTexts::kKept,
                         [&](i32 id) { return tReportableValue<i32>::translate(report, id); });
    return;
  }
  tConverter const converter(lookupClassName, report);
  renderReportableList(report, stringIDs, tEmptyTexts::kKept,
                       [&](i32 id) { return converter.get()->convert(id, status); });
}

u32 tStringProxyReportable::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
  auto const* const match = castToClassOf(*this, other, status, kSourceTag);
  return match != nullptr && match->lookupClassName == lookupClassName &&
         match->stringIDs == stringIDs;
}

nQELM100::iCloneable* tStringProxyReportable::clone(i32& status) const {
  return cloneReportable(*this, status);
}

void tStringProxyReportable::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0) return;
  writer.writeString(lookupClassName, status);
  writeReportableList(writer, stringIDs, status);
}

void tStringProxyReportable::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  _STL::string className;
  if (status >= 0) reader.readString(className, status);
  readReportableList(reader, stringIDs, status);
  if (status >= 0) lookupClassName.swap(className);
}

void tStringProxyReportable::set(i32 const* ids, size_t count, _STL::string const& className,
                                 tStatus2& status, tReportableSource const& source) {
  if (status.isError()) return;
  if (className.hasFailed() || !copy(ids, count, className)) {
    recordReportableFailure(status, kStatusOutOfMemory, source);
  }
}

bool tStringProxyReportable::copy(i32 const* ids, size_t count, _STL::string const& className) {
  // With room for the name only the list can still fail, and then nothing has changed.
  return lookupClassName.reserve(className.size()) && stringIDs.assign(ids, count) &&
         lookupClassName.assign(className);
}

}  // namespace nOXDIAG100
