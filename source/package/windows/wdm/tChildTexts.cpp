#include "package/windows/wdm/tChildTexts.h"

#include "package/windows/wdm/boundedWideText.h"
#include "package/windows/wdm/wrapperMemory.h"
#include "vexk/statusCodes.h"

namespace nOXDIAG100 {
namespace {

constexpr size_t kLongestDescription = 0x7FFF;  // characters; a longer one is cut

wchar_t* allocateText(u32 characters) {
  return static_cast<wchar_t*>(
      ExAllocatePoolWithTag(PagedPool, characters * sizeof(wchar_t), kChildTag));
}

void freeText(wchar_t*& text) {
  if (text != nullptr) ExFreePoolWithTag(text, kChildTag);
  text = nullptr;
}

void joinIds(wchar_t* list, u32 capacity, tChildDescription const& description) {
  u32 position = 0;
  for (u32 index = 0; index < description.hardwareIdCount; ++index) {
    wchar_t const* const id = description.hardwareIds[index];
    copyWideCharacters(list + position, capacity - position, id);
    position += static_cast<u32>(wideLength(id, tChildTexts::kLongestId)) + 1;
  }
  list[position] = L'\0';
}

// Windows stops with a bug check at an id with any other.
bool isIdCharacter(wchar_t character) {
  return character >= 0x20 && character <= 0x7F && character != L',';
}

wchar_t const* descriptionOf(tChildDescription const& description) {
  return description.description == nullptr ? L"" : description.description;
}

}  // namespace

i32 tChildTexts::take(tChildDescription const& description) {
  if (!measure(description)) return kStatusBadArgument;
  if (!allocate()) return kStatusOutOfMemory;
  joinIds(ids, idsLength, description);
  copyWideCharacters(text, textLength, descriptionOf(description));
  return 0;
}

void tChildTexts::giveBack() {
  freeText(ids);
  freeText(text);
}

bool tChildTexts::measure(tChildDescription const& description) {
  if (description.hardwareIds == nullptr || description.hardwareIdCount == 0) return false;
  idsLength = 1;
  for (u32 index = 0; index < description.hardwareIdCount; ++index) {
    if (!measureId(description.hardwareIds[index])) return false;
    if (index == 0) firstIdLength = idsLength - 1;
  }
  size_t const length = wideLength(descriptionOf(description), kLongestDescription);
  textLength = static_cast<u32>(length) + 1;
  return true;
}

bool tChildTexts::measureId(wchar_t const* id) {
  if (id == nullptr) return false;
  u32 const length = static_cast<u32>(wideLength(id, kLongestId + 1));
  for (u32 index = 0; index < length; ++index) {
    if (!isIdCharacter(id[index])) return false;
  }
  idsLength += length + 1;
  return length != 0 && length <= kLongestId && idsLength <= kLongestIdList;
}

bool tChildTexts::allocate() {
  ids = allocateText(idsLength);
  text = allocateText(textLength);
  if (ids != nullptr && text != nullptr) return true;
  giveBack();
  return false;
}

}  // namespace nOXDIAG100
