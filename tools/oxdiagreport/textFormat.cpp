#include "oxdiagreport/textFormat.h"

#include "oxdiagreport/describedItems.h"
#include "oxdiagreport/reportText.h"

using nOXDIAG100::tStatus2;

namespace {

char const* kindOf(i32 code, tLanguage::tWords const& words) {
  return code < 0 ? words.error : code > 0 ? words.warning : words.success;
}

std::string headOf(tStatus2 const& status, size_t number, tLanguage const& language) {
  tLanguage::tWords const& words = language.getWords();
  std::string head = words.status + (" " + std::to_string(number)) + ": ";
  head += kindOf(status.getCode(), words);
  if (status.getCode() != 0) head += " " + std::to_string(status.getCode());
  if (!status.hasDetail()) return head;
  return head + ", " + utf8Of(status.getComponentName()) + ", " + utf8Of(status.getFileName()) +
         ":" + std::to_string(status.getLineNumber());
}

std::string indented(std::string const& text) {
  std::string lines = "  ";
  for (char const character : text) {
    lines += character;
    if (character == '\n') lines += "  ";
  }
  return lines;
}

}  // namespace

std::string textOf(tStatus2 const& status, size_t number, tLanguage const& language) {
  std::string text = headOf(status, number, language) + "\n";
  for (tDescribedItem const& item : describedItems(status, language)) {
    text += indented(item.text) + "\n";
  }
  return withoutControls(text);
}
