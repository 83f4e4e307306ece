#include "oxdiagreport/textFormat.h"

#include <cstdio>

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

std::string hexadecimal(u64 number) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%llX", static_cast<unsigned long long>(number));
  return text;
}

std::string textOf(tSourcePlace const& place) {
  std::string text = place.function.empty() ? "?" : place.function;
  if (place.file.empty()) return text;
  return text + " (" + place.file + ":" + std::to_string(place.line) + ")";
}

std::string textOf(tFrame const& frame, tLanguage::tWords const& words) {
  constexpr char kIndent[] = "    ";
  if (frame.module.empty()) {
    return kIndent + hexadecimal(frame.address) + " (" + words.unknownModule + ")\n";
  }
  std::string const place =
      kIndent + inOneLine(utf8Of(frame.module.c_str())) + "+" + hexadecimal(frame.offset);
  std::string text;
  for (tSourcePlace const& call : frame.places)
    text += place + " " + inOneLine(textOf(call)) + "\n";
  if (!text.empty()) return text;
  return place + (frame.problem.empty() ? "" : " (" + frame.problem + ")") + "\n";
}

}  // namespace

std::string textOf(tStatus2 const& status, size_t number, tLanguage const& language,
                   std::vector<tFrame> const& frames) {
  std::string text = inOneLine(headOf(status, number, language)) + "\n";
  for (tDescribedItem const& item : describedItems(status, language)) {
    text += indented(item.text) + "\n";
  }
  if (!frames.empty()) text += "  " + std::string(language.getWords().callStack) + ":\n";
  for (tFrame const& frame : frames) text += textOf(frame, language.getWords());
  return withoutControls(text);
}
