#pragma once

#include <span>
#include <string>
#include <string_view>

// What may follow an option word.
enum class tValueRule {
  kNothing,      // no value
  kSwitch,       // "on" or "off", or nothing, which means on
  kTextField,    // as kSwitch, or a filter term on a text, such as ==rack
  kNumberField,  // as kSwitch, or a filter term on a number, such as >=200
  kWidth,        // one number
  kFilter,       // one filter expression, or nothing
  kDestination,  // the name of a destination and its own words, or nothing
  kCalibration,  // nothing, or the three numbers that an inquired text has here
  kTokens,       // everything up to the end of the text
  kCategory,     // the name of a category of assertions
};

// One option word of the library.
struct tOption {
  std::string_view word;
  tValueRule rule;
  std::string_view values;  // what may follow it, as the help shows it
  std::string_view effect;  // one line for people
};

// The option words that one object of the library understands.
struct tOptionLanguage {
  std::string_view name;  // of the object, as the registry of instances has it
  std::span<tOption const> options;
};

// A destination that "--destination" can name.
struct tDestinationName {
  std::string_view word;
  std::string_view values;
  std::string_view effect;
};

// The help and the check of what was typed read these same tables.
extern tOptionLanguage const kTraceLanguage;
extern tOptionLanguage const kAssertLanguage;
extern std::span<tDestinationName const> const kDestinationNames;
extern std::span<std::string_view const> const kBaudRates;

// The option in `language` that is this word; null if there is none.
tOption const* findOption(tOptionLanguage const& language, std::string_view word);

// The options of a language, and the destinations if it can name them, a line each. `prefix` makes
// the name of the language what takes its words in the program that shows them, such as --trace.
std::string describeOptions(tOptionLanguage const& language, std::string_view prefix);
