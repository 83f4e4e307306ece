#pragma once

// Texts that a class of the reporting side knows by number.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "stl/single_vector.h"
#include "stl/string.h"

namespace nOXDIAG100 {

struct tReportableSource;

// One string id or several, with the name of the class that turns them into text: a registered
// iStringIDToWideStringConverter. Where the status is set, that class need not exist.
//
//     tStringProxyReportable const hint(kHintReseat, "nRACK::tHints", status);
//
// A report makes an object of that class, asks it for the text of each id and destroys it. The
// status receives the failures of tClass::forName and newInstance: kStatusClassUnknown when no
// class has exactly this name (a name with a NUL in it is no class's), kStatusClassAbstract,
// kStatusOutOfMemory. A class of another kind records kStatusClassMismatch. With an empty class
// name each id has the text of translateI32.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
class OXDIAG_API tStringProxyReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tStringProxyReportable, iVariantReportable)

 public:
  // Without values.
  tStringProxyReportable() = default;

  // The same; leaves `status` alone.
  explicit tStringProxyReportable(tStatus2& status);

  // One id, or a copy of a list, and a copy of the class name (null is an empty one). With an
  // error in `status` on entry the object stays empty; what cannot be allocated leaves it empty and
  // records kStatusOutOfMemory.
  tStringProxyReportable(i32 id, char const* className, tStatus2& status);
  tStringProxyReportable(i32 id, _STL::string const& className, tStatus2& status);
  tStringProxyReportable(_STL::vector<i32> const& ids, char const* className, tStatus2& status);
  tStringProxyReportable(_STL::vector<i32> const& ids, _STL::string const& className,
                         tStatus2& status);

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tStringProxyReportable(tStringProxyReportable const& other);
  tStringProxyReportable& operator=(tStringProxyReportable const& other);

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return stringIDs.hasFailed() || lookupClassName.hasFailed(); }

  // The ids and the class name; good as long as this object lives and is not changed. Both leave
  // `status` alone.
  _STL::vector<i32> const& getStringIDs(tStatus2& status) const;
  _STL::string const& getLookupClassName(tStatus2& status) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;

  // In a stream: the class name (string), the count (u32), each id (i32). A read that fails leaves
  // the old values.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  void set(i32 const* ids, size_t count, _STL::string const& className, tStatus2& status,
           tReportableSource const& source);
  bool copy(i32 const* ids, size_t count, _STL::string const& className);

  _STL::single_vector<i32> stringIDs;
  _STL::string lookupClassName;
};

}  // namespace nOXDIAG100
