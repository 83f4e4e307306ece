#pragma once

#include "ntos/types.h"

namespace nTRANSLATORS100 {

// The word for a number.
struct tWord {
  i32 number;
  wchar_t const* text;
};

// The word for one value of a property.
struct tEnumWord {
  i32 propertyID;
  i32 value;
  wchar_t const* text;
};

// What a component's own numbers are called in one language: the usage types, properties and
// property values of its descriptions. Numbers mean something only to the component that gave them
// out, so the component brings the tables and the translator is built with them:
//
//     constexpr tWord kUsageTypes[] = {{1, L"line"}, {2, L"found"}};
//     constexpr tWord kProperties[] = {{1, L"slot"}};
//     constexpr tEnumWord kEnumValues[] = {{1, 7, L"the service slot"}};
//     constexpr tVocabulary kEnglish(kUsageTypes, kProperties, kEnumValues);
//
// Keeps the addresses of the tables, which must stay. A plain value; any IRQL.
class tVocabulary {
 public:
  // Without words.
  constexpr tVocabulary() = default;

  template <u32 UsageTypes, u32 Properties, u32 EnumValues>
  constexpr tVocabulary(tWord const (&usageTypeWords)[UsageTypes],
                        tWord const (&propertyWords)[Properties],
                        tEnumWord const (&enumValueWords)[EnumValues])
      : usageTypes(usageTypeWords),
        properties(propertyWords),
        enumValues(enumValueWords),
        usageTypeCount(UsageTypes),
        propertyCount(Properties),
        enumValueCount(EnumValues) {}

  // The same of tables whose lengths are not known to the compiler.
  template <class tEntry>
  struct tTable {
    tEntry const* entries;
    size_t count;
  };
  tVocabulary(tTable<tWord> usageTypeWords, tTable<tWord> propertyWords,
              tTable<tEnumWord> enumValueWords)
      : usageTypes(usageTypeWords.entries),
        properties(propertyWords.entries),
        enumValues(enumValueWords.entries),
        usageTypeCount(static_cast<u32>(usageTypeWords.count)),
        propertyCount(static_cast<u32>(propertyWords.count)),
        enumValueCount(static_cast<u32>(enumValueWords.count)) {}

  // The word, or null when there is none.
  wchar_t const* findUsageType(i32 usageType) const;
  wchar_t const* findProperty(i32 propertyID) const;
  wchar_t const* findEnumValue(i32 propertyID, i32 value) const;

 private:
  tWord const* usageTypes = nullptr;
  tWord const* properties = nullptr;
  tEnumWord const* enumValues = nullptr;
  u32 usageTypeCount = 0;
  u32 propertyCount = 0;
  u32 enumValueCount = 0;
};

}  // namespace nTRANSLATORS100
