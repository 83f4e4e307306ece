#pragma once

#include <string>
#include <string_view>
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

    bool isOf(tSetting const& other) const {
      return category == other.category && option == other.option;
    }
  };

  explicit tSettings(std::string_view text);

  // The value of an option that has no category; empty when it is not told.
  std::string_view getValue(std::string_view option) const;

  // A line for each option, its value, and what `language` says of it; or for each option the
  // values of all categories.
  std::string describe(tOptionLanguage const& language) const;

  // A line for each option that is another here than `before`. What the library measures by itself
  // is none.
  std::string describeChangesSince(tSettings const& before) const;

 private:
  std::string const* find(tSetting const& wanted) const;
  std::vector<std::string> getCategories() const;
  std::string describeList(tOptionLanguage const& language) const;
  std::string describeCategories(std::vector<std::string> const& categories) const;

  std::vector<tSetting> settings;  // in the order in which they are told
};
