#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "options/optionTable.h"

// The settings that a library tells, taken apart.
class tSettings {
 public:
  // One option of one category; the trace has a single category without name.
  struct tSetting {
    std::string category;
    std::string option;
    std::string value;
  };

  explicit tSettings(std::string_view text);
  tSettings(tSettings const&) = delete;
  tSettings& operator=(tSettings const&) = delete;

  // The value of an option that has no category; empty when it is not told.
  std::string_view getValue(std::string_view option) const;

  // A line for each option, its value, and what `language` says of it; or for each option the
  // values of all categories.
  std::string describe(tOptionLanguage const& language) const;

  // A line for each option that is another here than `before`. What the library measures by itself
  // is none.
  std::string describeChangesSince(tSettings const& before) const;

 private:
  std::string const* find(std::string_view category, std::string_view option) const;
  std::vector<std::string> getCategories() const;
  std::string describeList(tOptionLanguage const& language) const;
  std::string describeCategories(std::vector<std::string> const& categories) const;

  using tName = std::pair<std::string_view, std::string_view>;  // category and option

  std::vector<tSetting> settings;              // in the order in which they are told
  std::map<tName, std::string const*> values;  // of the first with each name
};
