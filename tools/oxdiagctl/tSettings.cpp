#include "oxdiagctl/tSettings.h"

#include <algorithm>
#include <set>

#include "options/optionText.h"
#include "options/utf8Text.h"

namespace {

constexpr std::string_view kOnOff = "--on|--off";  // one setting with two words
constexpr std::string_view kMeasured = "--calibrate";
constexpr std::string_view kNone = "(none)";
constexpr size_t kGap = 2;

using tRow = std::vector<std::string>;

std::string pad(std::string text, size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

// Cells below each other, and nothing behind the last one of a line. What is in a cell may be a
// stranger's, and is for a terminal.
std::string alignColumns(std::vector<tRow> const& rows) {
  std::vector<size_t> widths;
  for (tRow const& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t index = 0; index < row.size(); ++index) {
      widths[index] = std::max(widths[index], row[index].size() + kGap);
    }
  }
  std::string text;
  for (tRow const& row : rows) {
    std::string line;
    for (size_t index = 0; index < row.size(); ++index) line += pad(row[index], widths[index]);
    appendForTerminal(text, std::string_view(line).substr(0, line.find_last_not_of(' ') + 1));
    text += '\n';
  }
  return text;
}

// The table is about how things are, so what they are at first is left out.
std::string describeEffect(tOptionLanguage const& language, std::string_view option) {
  if (option == kOnOff) return "whether lines are written";
  tOption const* const found = findOption(language, option);
  if (found == nullptr) return {};
  std::string_view const line = found->effect.substr(0, found->effect.find_first_of("\n;("));
  std::string_view const text = line.substr(0, line.find(", see below"));
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

}  // namespace

tSettings::tSettings(std::string_view text) {
  std::string category;
  for (std::string& word : splitOptionText(text)) {
    if (word == "--on" || word == "--off") {
      settings.push_back({category, std::string(kOnOff), word.substr(2)});
    } else if (word.starts_with("--")) {
      settings.push_back({category, std::move(word), {}});
    } else if (!settings.empty() && settings.back().option == "--category") {
      settings.pop_back();
      category = std::move(word);
    } else if (!settings.empty()) {
      std::string& value = settings.back().value;
      value += (value.empty() ? "" : " ") + word;
    }
  }
  for (tSetting const& each : settings)
    values.try_emplace({each.category, each.option}, &each.value);
}

std::string const* tSettings::find(std::string_view category, std::string_view option) const {
  auto const found = values.find({category, option});
  return found == values.end() ? nullptr : found->second;
}

std::string_view tSettings::getValue(std::string_view option) const {
  std::string const* const value = find({}, option);
  return value == nullptr ? std::string_view() : *value;
}

std::vector<std::string> tSettings::getCategories() const {
  std::vector<std::string> categories;
  std::set<std::string_view> known;
  for (tSetting const& each : settings) {
    if (known.insert(each.category).second) categories.push_back(each.category);
  }
  return categories;
}

std::string tSettings::describe(tOptionLanguage const& language) const {
  auto const categories = getCategories();
  bool const isList = categories.size() == 1 && categories[0].empty();
  return isList ? describeList(language) : describeCategories(categories);
}

std::string tSettings::describeList(tOptionLanguage const& language) const {
  std::vector<tRow> rows;
  for (tSetting const& each : settings) {
    rows.push_back({each.option, each.value, describeEffect(language, each.option)});
  }
  return alignColumns(rows);
}

std::string tSettings::describeCategories(std::vector<std::string> const& categories) const {
  std::vector<tRow> rows = {{""}};
  rows[0].insert(rows[0].end(), categories.begin(), categories.end());
  std::set<std::string_view> known;
  for (tSetting const& each : settings) {
    if (!known.insert(each.option).second) continue;
    tRow& row = rows.emplace_back(1, each.option);
    for (std::string const& category : categories) {
      std::string const* const value = find(category, each.option);
      row.push_back(value == nullptr ? "" : *value);
    }
  }
  return alignColumns(rows);
}

std::string tSettings::describeChangesSince(tSettings const& before) const {
  std::vector<tRow> rows;
  auto const add = [&rows](tSetting const& which, std::string const* from, std::string const* to) {
    std::string const former(from == nullptr ? kNone : *from);
    std::string const now(to == nullptr ? kNone : *to);
    if (former != now && which.option != kMeasured)
      rows.push_back({which.category, which.option, former + " -> " + now});
  };
  for (tSetting const& each : before.settings)
    add(each, &each.value, find(each.category, each.option));
  for (tSetting const& each : settings) {
    bool const isNew = before.find(each.category, each.option) == nullptr;
    if (isNew) add(each, nullptr, &each.value);
  }
  bool const hasCategories =
      std::any_of(rows.begin(), rows.end(), [](tRow const& row) { return !row[0].empty(); });
  for (tRow& row : rows) {
    if (!hasCategories) row.erase(row.begin());
  }
  return alignColumns(rows);
}
