#pragma once

#include "oxdiagk/atomicWord.h"
#include "oxdiagk/tCategoryTable.h"
#include "oxdiagk/tConfigurable.h"
#include "oxdiagk/tConfigurationLock.h"
#include "stl/vector.h"

// The eight switches of a category, in the order of inquire. SWITCH(word, query, Name, atFirst):
// the option word without its dashes, the name of the query, the name in enableName and
// disableName, and how a new category begins.
//
//   terminate         a contract that does not hold stops the system
//   break             a contract that does not hold breaks into the debugger
//   preconditions     preconditions are checked
//   postconditions    postconditions are checked
//   classinvariants   class invariants are checked
//   loopinvariants    loop invariants are checked
//   checks            plain checks are made
//   exceptions        exceptional events are reported
// clang-format off
#define OXDIAG_ASSERT_SWITCHES(SWITCH)                                            \
  SWITCH(terminate, terminateOnViolationIsEnabled, TerminateOnViolation, false)   \
  SWITCH(break, breakOnViolationIsEnabled, BreakOnViolation, true)                \
  SWITCH(preconditions, preconditionsAreEnabled, Preconditions, true)             \
  SWITCH(postconditions, postconditionsAreEnabled, Postconditions, true)          \
  SWITCH(classinvariants, classInvariantsAreEnabled, ClassInvariants, true)       \
  SWITCH(loopinvariants, loopInvariantsAreEnabled, LoopInvariants, true)          \
  SWITCH(checks, checksAreEnabled, Checks, true)                                  \
  SWITCH(exceptions, exceptionsAreEnabled, Exceptions, true)
// clang-format on

namespace nOXDIAG100 {

// Which contracts are checked and what happens when one does not hold, for each category by name.
// A contract names its category ("oxdiagk/contractMacros.h"); the switches of the category decide.
//
// Four categories are always there; any other is made by "--category NAME":
//
//                   terminate  break  exceptions  all others
//   default         off        on     on          on
//   statusFatal     off        on     off         on
//   statusWarning   off        on     off         on
//   warning         off        off    on          on
//   a new one       off        on     on          on
//
//     tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
//     contracts.configure("--category rack --break off --loopinvariants off");
//     if (contracts.checksAreEnabled("rack")) { ... }
//
// Categories are never removed while the object lives. Names are compared byte by byte. What a
// look-up or a new category costs grows with the logarithm of their number.
//
// Thread safety: any thread may call anything. configure, inquire, pushConfiguration and
// popConfiguration wait for each other, one call at a time; what belongs together, such as a push
// and its pop, or "--category" in one call and its switches in the next, is the caller's to order,
// for all threads share the one stack and the one current category. The accessors take no lock, so
// contracts are checked meanwhile: a switch is read and stored as a whole, and a category that is
// being made is found complete or not yet. The object is destroyed when nobody uses it any more.
// IRQL: the accessors allocate nothing and work at any IRQL at which the name may be read.
// configure, inquire, pushConfiguration and popConfiguration: PASSIVE_LEVEL. The object lies in
// non-paged memory.
class OXDIAG_API tAssertConfiguration : public tConfigurable {
 public:
// clang-format off
#define OXDIAG_ASSERT_FIELD(word, query, Name, atFirst) bool word##Enabled = atFirst;
  // The switches of one category.
  struct tConfigElem {
    OXDIAG_ASSERT_SWITCHES(OXDIAG_ASSERT_FIELD)
  };
#undef OXDIAG_ASSERT_FIELD
  // clang-format on

  // The one object of the module. `category` is accepted for callers that have one at hand; every
  // category, and none, means this object.
  static tAssertConfiguration& getInstance(char* category = nullptr);

  // Build and destroy that object: for the tables of the module's entry, and nobody else. Before
  // and after there is no category, so that no contract is checked; every operation may be called
  // and does nothing, and inquire gives an empty text.
  static void constructInstance();
  static void destroyInstance();

  // Frees the categories that options made and the saved configurations, and restores the oldest of
  // these, which is the one that pops would restore last.
  ~tAssertConfiguration() override;

  tAssertConfiguration(tAssertConfiguration const&) = delete;
  tAssertConfiguration& operator=(tAssertConfiguration const&) = delete;

// clang-format off
#define OXDIAG_ASSERT_ACCESSORS(word, query, Name, atFirst)                                     \
  bool query(char const* category) const { return isOn(category, &tConfigElem::word##Enabled); } \
  bool query(char* category) const { return isOn(category, &tConfigElem::word##Enabled); }       \
  void enable##Name(char const* category) { set(category, &tConfigElem::word##Enabled, true); }  \
  void enable##Name(char* category) { set(category, &tConfigElem::word##Enabled, true); }        \
  void disable##Name(char const* category) { set(category, &tConfigElem::word##Enabled, false); } \
  void disable##Name(char* category) { set(category, &tConfigElem::word##Enabled, false); }

  // The query, the enabler and the disabler of every switch, as in preconditionsAreEnabled("rack"),
  // enablePreconditions("rack"), disablePreconditions("rack"). For a name that is no category, null
  // included, a query is false and the others do nothing.
  OXDIAG_ASSERT_SWITCHES(OXDIAG_ASSERT_ACCESSORS)
#undef OXDIAG_ASSERT_ACCESSORS
  // clang-format on

  // Reads option words.
  //
  //   --category NAME    the options that follow, in this call and in later ones, are about the
  //                      category NAME ("default" at the start); a new name makes a category. Any
  //                      word that does not begin with "--" is a name, "on" and "" too. A word
  //                      that does is no name: the category is then "default", and that word is
  //                      used up. As the last word, "--category" has no effect.
  //   --terminate, --break, --preconditions, --postconditions, --classinvariants,
  //   --loopinvariants, --checks, --exceptions
  //                      the switches; "on" or "off" may follow. Before any other word, and as the
  //                      last word, the switch is on, and the other word is read as an option.
  //
  // A category that cannot be made because memory is exhausted leaves everything as it was,
  // including which category later calls are about. Switches that follow it in this call are
  // passed over.
  void configure(int argc, char** argv) override;
  using tConfigurable::configure;

  // Does nothing: there is no configuration source of its own.
  void configure() override;

  // Every category in ascending order of its name's bytes, with all its switches:
  // " --category default --terminate off --break on ... --exceptions on --category ...". It begins
  // with a blank. Names are written as they are: one that is empty, begins with a double quote or
  // holds blanks is not read back as the name it is.
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  // A pop configures the object with the text that inquire gave at the push, and the options are
  // then about the same category as at the push. Categories made in between stay as they are. When
  // memory is exhausted a push saves nothing, and a pop drops what was saved and changes nothing.
  void pushConfiguration() override;
  void popConfiguration() override;

  // Configurations that are saved now. PASSIVE_LEVEL.
  u32 countSavedConfigurations();

 protected:
  // A private object, as fresh as the module's: for those who derive from this class.
  tAssertConfiguration();

  // The module's object before and after its life.
  explicit tAssertConfiguration(tAtRest atRest)
      : categories(0), currentCategory(nullptr), configurationLock(atRest) {
  }

 private:
  friend class tAssertOptionReader;  // applies option words
  friend class tContractSite;        // keeps where a switch is

  struct tSavedConfiguration {
    char const* category;
    char* text;  // owned
  };

  // A switch is read while another thread may store it.
  static bool load(bool const& value) {
    return loadRelaxed(value);
  }
  static void store(bool& value, bool isOn) {
    storeRelaxed(value, isOn);
  }

  // The number of the module's object, never 0: another one for each that is built.
  static u64 const& getLife();

  // Null when there is no such category.
  bool const* findSwitch(char const* category, bool tConfigElem::*value) const;
  bool isOn(char const* category, bool tConfigElem::*value) const;
  void set(char const* category, bool tConfigElem::*value, bool isOn);

  char const* findName(char const* category) const;
  char const* addCategory(char const* category);

  tCategoryTable<tConfigElem> categories;
  char const* currentCategory;  // a key of the table, or the built-in "default"
  _STL::vector<tSavedConfiguration> savedConfigurations;
  tConfigurationLock configurationLock;
};
static_assert(sizeof(tAssertConfiguration::tConfigElem) == 8, "a byte for each switch");

}  // namespace nOXDIAG100
