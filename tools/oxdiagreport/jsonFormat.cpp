#include "oxdiagreport/jsonFormat.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "oxdiagreport/describedItems.h"
#include "oxdiagreport/reportText.h"
#include "vexk/loadedModule.h"

using nOXDIAG100::tStatus2;
using tJson = nlohmann::ordered_json;

namespace {

char const* kindOf(i32 code) {
  return code < 0 ? "error" : code > 0 ? "warning" : "success";
}

char const* identityKindOf(u8 kind) {
  return kind == kModuleBuildId ? "build id" : kind == kModulePdbIdentity ? "pdb" : "none";
}

std::string hexadecimal(u64 address) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%llX", static_cast<unsigned long long>(address));
  return text;
}

std::string digitsOf(std::string const& bytes) {
  std::string digits;
  for (char const byte : bytes) {
    char text[4];
    std::snprintf(text, sizeof(text), "%02X", static_cast<unsigned char>(byte));
    digits += text;
  }
  return digits;
}

tJson jsonOf(tSourcePlace const& place) {
  return {{"function", place.function}, {"file", place.file}, {"line", place.line}};
}

tJson jsonOf(tFrame const& frame) {
  bool const isKnown = !frame.module.empty();
  tJson json = {{"address", frame.address},
                {"module", isKnown ? tJson(utf8Of(frame.module.c_str())) : tJson()},
                {"offset", isKnown ? tJson(frame.offset) : tJson()},
                {"places", tJson::array()},
                {"problem", frame.problem.empty() ? tJson() : tJson(frame.problem)}};
  for (tSourcePlace const& place : frame.places) json["places"].push_back(jsonOf(place));
  return json;
}

tJson jsonOf(tSavedModule const& module) {
  return {{"name", utf8Of(module.name.c_str())},
          {"base", module.base},
          {"size", module.size},
          {"identityKind", identityKindOf(module.identityKind)},
          {"identity", digitsOf(module.identity)}};
}

tJson originOf(tStatus2 const& status, std::vector<tFrame> const& frames,
               std::vector<tSavedModule> const& modules) {
  if (!status.hasDetail()) return nullptr;
  tJson json = {{"component", utf8Of(status.getComponentName())},
                {"file", utf8Of(status.getFileName())},
                {"line", status.getLineNumber()},
                {"stackTrace", tJson::array()},
                {"frames", tJson::array()},
                {"modules", tJson::array()}};
  for (tFrame const& frame : frames) json["stackTrace"].push_back(hexadecimal(frame.address));
  for (tFrame const& frame : frames) json["frames"].push_back(jsonOf(frame));
  for (tSavedModule const& module : modules) json["modules"].push_back(jsonOf(module));
  return json;
}

tJson descriptionOf(tStatus2 const& status, tLanguage const& language) {
  tJson json = tJson::array();
  for (tDescribedItem const& item : describedItems(status, language)) {
    json.push_back({{"usageType", item.usageType},
                    {"class", utf8Of(item.className.c_str())},
                    {"text", item.text},
                    {"values", item.values}});
  }
  return json;
}

}  // namespace

std::string jsonOf(tStatus2 const& status, tLanguage const& language,
                   std::vector<tFrame> const& frames, std::vector<tSavedModule> const& modules) {
  tJson const json = {{"code", status.getCode()},
                      {"kind", kindOf(status.getCode())},
                      {"origin", originOf(status, frames, modules)},
                      {"description", descriptionOf(status, language)}};
  // What came from the symbolizer may be no UTF-8.
  // JSON lets DEL, U+0080 to U+009F and what turns the direction stand as they are.
  return withControlsForJson(json.dump(2, ' ', false, tJson::error_handler_t::replace));
}
