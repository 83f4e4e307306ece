#include "translators/common/tVocabulary.h"

namespace nTRANSLATORS100 {
namespace {

wchar_t const* findWord(tWord const* words, u32 count, i32 number) {
  for (u32 index = 0; index < count; ++index) {
    if (words[index].number == number) return words[index].text;
  }
  return nullptr;
}

}  // namespace

wchar_t const* tVocabulary::findUsageType(i32 usageType) const {
  return findWord(usageTypes, usageTypeCount, usageType);
}

wchar_t const* tVocabulary::findProperty(i32 propertyID) const {
  return findWord(properties, propertyCount, propertyID);
}

wchar_t const* tVocabulary::findEnumValue(i32 propertyID, i32 value) const {
  for (u32 index = 0; index < enumValueCount; ++index) {
    tEnumWord const& word = enumValues[index];
    if (word.propertyID == propertyID && word.value == value) return word.text;
  }
  return nullptr;
}

}  // namespace nTRANSLATORS100
