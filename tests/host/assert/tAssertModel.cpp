#include "assert/tAssertModel.h"

#include <algorithm>

namespace {

constexpr char const* kOptions[] = {
    "--terminate",       "--break",          "--preconditions", "--postconditions",
    "--classinvariants", "--loopinvariants", "--checks",        "--exceptions",
};
constexpr std::array<bool, tAssertModel::kSwitches> kAtFirst = {false, true, true, true,
                                                                true,  true, true, true};
constexpr size_t kBreak = 1;
constexpr size_t kExceptions = 7;

}  // namespace

tAssertModel::tAssertModel() {
  for (char const* name : {"default", "warning", "statusWarning", "statusFatal"}) {
    categories[name] = kAtFirst;
  }
  categories["warning"][kBreak] = false;
  categories["statusWarning"][kExceptions] = false;
  categories["statusFatal"][kExceptions] = false;
}

bool tAssertModel::configure(std::string const& options) {
  tWords const words = modelWords(options);
  if (words.empty()) return true;
  if (!memory.allocate()) return false;
  configure(words);
  return true;
}

void tAssertModel::configure(tWords const& words) {
  hasLost = false;
  for (size_t next = 0; next < words.size();) {
    if (readSwitch(words, next)) continue;
    bool const isCategory = words[next++] == "--category" && next < words.size();
    if (isCategory) readCategory(words[next++]);
  }
}

// A switch takes the next word only if it is a value.
bool tAssertModel::readSwitch(tWords const& words, size_t& next) {
  auto const option = std::find(std::begin(kOptions), std::end(kOptions), words[next]);
  if (option == std::end(kOptions)) return false;
  ++next;
  std::string const value = next < words.size() ? words[next] : "";
  if (!hasLost) set(current, static_cast<size_t>(option - std::begin(kOptions)), value != "off");
  if (value == "on" || value == "off") ++next;
  return true;
}

void tAssertModel::readCategory(std::string const& word) {
  hasLost = false;
  if (word.starts_with("--")) {
    current = "default";
    return;
  }
  if (categories.count(word) == 0) {
    hasLost = !memory.allocate() || !memory.allocate();  // the name, the node
    if (hasLost) return;
    categories[word] = kAtFirst;
  }
  current = word;
}

void tAssertModel::push() {
  if (saved.size() == capacity) {
    if (!memory.allocate()) return;
    capacity = capacity == 0 ? 1 : 2 * capacity;
  }
  if (memory.allocate()) saved.push_back({current, text()});
}

void tAssertModel::pop() {
  if (saved.empty()) return;
  tSaved const top = saved.back();
  saved.pop_back();
  if (configure(top.text)) current = top.category;
}

void tAssertModel::set(std::string const& category, size_t index, bool isOn) {
  auto const found = categories.find(category);
  if (found != categories.end()) found->second[index] = isOn;
}

bool tAssertModel::isOn(std::string const& category, size_t index) const {
  auto const found = categories.find(category);
  return found != categories.end() && found->second[index];
}

std::string tAssertModel::text() const {
  std::string all;
  for (auto const& [name, switches] : categories) {
    all += " --category " + name;
    for (size_t index = 0; index < kSwitches; ++index) {
      all += std::string(" ") + kOptions[index] + (switches[index] ? " on" : " off");
    }
  }
  return all;
}

bool tAssertModel::hasSayableNames() const {
  return std::ranges::all_of(categories, [](auto const& category) {
    return modelWords(category.first) == tWords{category.first};
  });
}
