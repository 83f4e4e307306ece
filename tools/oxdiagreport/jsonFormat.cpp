#include "oxdiagreport/jsonFormat.h"

#include <cstdio>

#include "oxdiagreport/describedItems.h"
#include "oxdiagreport/reportText.h"

using nOXDIAG100::tStatus2;

namespace {

std::string quoted(std::string const& utf8) {
  std::string json = "\"";
  for (char const character : utf8) {
    char escape[8];
    if (character == '"' || character == '\\') json += '\\';
    if (static_cast<unsigned char>(character) < ' ') {
      std::snprintf(escape, sizeof(escape), "\\u%04X", static_cast<unsigned int>(character));
      json += escape;
    } else {
      json += character;
    }
  }
  return json + "\"";
}

std::string member(char const* name, std::string const& json) {
  return "\"" + std::string(name) + "\": " + json;
}

char const* kindOf(i32 code) {
  return code < 0 ? "error" : code > 0 ? "warning" : "success";
}

std::string stackTraceOf(tStatus2 const& status) {
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  u32 used = tStatus2::kStackTraceLength;
  while (used != 0 && addresses[used - 1] == 0) --used;
  std::string json;
  for (u32 index = 0; index < used; ++index) {
    char text[24];
    std::snprintf(text, sizeof(text), "\"0x%llX\"",
                  static_cast<unsigned long long>(addresses[index]));
    json += (json.empty() ? "" : ", ") + std::string(text);
  }
  return "[" + json + "]";
}

std::string originOf(tStatus2 const& status) {
  if (!status.hasDetail()) return "null";
  return "{" + member("component", quoted(utf8Of(status.getComponentName()))) + ", " +
         member("file", quoted(utf8Of(status.getFileName()))) + ", " +
         member("line", std::to_string(status.getLineNumber())) + ", " +
         member("stackTrace", stackTraceOf(status)) + "}";
}

std::string descriptionOf(tStatus2 const& status, tLanguage const& language) {
  std::string json;
  for (tDescribedItem const& item : describedItems(status, language)) {
    json += std::string(json.empty() ? "" : ",") + "\n    {" +
            member("usageType", std::to_string(item.usageType)) + ", " +
            member("class", quoted(utf8Of(item.className.c_str()))) + ", " +
            member("text", quoted(item.text)) + "}";
  }
  return "[" + json + "]";
}

}  // namespace

std::string jsonOf(tStatus2 const& status, tLanguage const& language) {
  return "  {" + member("code", std::to_string(status.getCode())) + ", " +
         member("kind", quoted(kindOf(status.getCode()))) + ",\n   " +
         member("origin", originOf(status)) + ",\n   " +
         member("description", descriptionOf(status, language)) + "}";
}
