#include "oxdiagview/page/scriptText.h"

#include "options/utf8Text.h"

namespace oxdiagview {

namespace {

constexpr char kReplacement[] = "\uFFFD";
constexpr unsigned char kDelete = 0x7F;

void appendControlPicture(std::string& json, unsigned char control) {
  unsigned char const place = control == kDelete ? 0x21 : control;
  json += "\xE2\x90";
  json += static_cast<char>(0x80 + place);
}

void appendAscii(std::string& json, char character) {
  auto const code = static_cast<unsigned char>(character);
  if (character == '"' || character == '\\') {
    json += '\\';
    json += character;
  } else if (character == '\t') {
    json += "\\t";
  } else if (character == '<') {
    json += "\\u003C";
  } else if (code < ' ' || code == kDelete) {
    appendControlPicture(json, code);
  } else {
    json += character;
  }
}

}  // namespace

void appendScriptText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    size_t const length = lengthOfCharacter(text);
    if (length == 1) {
      appendAscii(json, text[0]);
    } else if (length != 0) {
      json += text.substr(0, length);
    } else {
      json += kReplacement;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  json += '"';
}

}  // namespace oxdiagview
