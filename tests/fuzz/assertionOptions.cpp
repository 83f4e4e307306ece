// Sequences of options, accessors, pushes, pops and inquiries of a private assertion configuration,
// with exhausted memory now and then, against a model. One operation a line of the input:
//
//     c OPTIONS    v WORD;WORD;...    + push    - pop    i SIZE (of the buffer)    r round trip
//     q NAME       queries all switches         s SWITCH ON NAME   sets one by its accessor
//     ! N   the Nth allocation of the next operation fails     * N   the Nth and all later ones

#include "assert/tAssertModel.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "support/fuzzing.h"
#include "support/inquiredText.h"
#include "support/tOptionVector.h"
#include "support/tScript.h"

namespace {

using nOXDIAG100::tAssertConfiguration;

constexpr unsigned kMostSize = 1024;
constexpr unsigned kMostFault = 10;

class tPrivateConfiguration : public tAssertConfiguration {};

struct tAccessors {
  bool (*query)(tAssertConfiguration const&, char const*);
  void (*enable)(tAssertConfiguration&, char const*);
  void (*disable)(tAssertConfiguration&, char const*);
};

// clang-format off
#define ACCESSORS(word, question, Name, atFirst)                                             \
  {[](tAssertConfiguration const& object, char const* name) { return object.question(name); }, \
   [](tAssertConfiguration& object, char const* name) { object.enable##Name(name); },          \
   [](tAssertConfiguration& object, char const* name) { object.disable##Name(name); }},
// clang-format on

constexpr tAccessors kAccessors[] = {OXDIAG_ASSERT_SWITCHES(ACCESSORS)};
static_assert(std::size(kAccessors) == tAssertModel::kSwitches);

class tMachine {
 public:
  void apply(tScript& script);
  void roundTrip();

 private:
  void run(char operation, tScript& script);
  void configure(std::string const& options);
  void configureWords(std::string const& list);
  void query(std::string const& name);
  void set(tScript& script);

  tPrivateConfiguration configuration;
  tAssertModel model;
};

void tMachine::apply(tScript& script) {
  char const operation = script.operation("cv+-iqsr!*");
  if (operation == '!' || operation == '*') {
    model.memory.failAt(1 + script.number() % kMostFault, operation == '*');
    return;
  }
  model.memory.arm();
  run(operation, script);
  model.memory.end();
  demandEqual(inquiredText(configuration), model.text(), "the switches are those of the model");
}

void tMachine::run(char operation, tScript& script) {
  switch (operation) {
    case 'c':
      return configure(upToNul(script.text()));
    case 'v':
      return configureWords(upToNul(script.text()));
    case '+':
      configuration.pushConfiguration();
      return model.push();
    case '-':
      configuration.popConfiguration();
      return model.pop();
    case 'i':
      return demandCutInquiry(configuration, script.number() % kMostSize);
    case 'q':
      return query(upToNul(script.text()));
    case 's':
      return set(script);
    default:
      return roundTrip();
  }
}

void tMachine::configure(std::string const& options) {
  tExactText exact(options);
  configuration.configure(exact.get());
  demand(exact.is(options), "option text is left as it was", [&] { return readable(options); });
  model.configure(options);
}

void tMachine::configureWords(std::string const& list) {
  tWords const words = listedWords(list);
  tOptionVector vector(words);
  configuration.configure(vector.getCount() + 1, vector.get());  // the null word ends the list
  model.configure(words);
}

void tMachine::query(std::string const& name) {
  for (size_t index = 0; index < tAssertModel::kSwitches; ++index) {
    demand(kAccessors[index].query(configuration, name.c_str()) == model.isOn(name, index),
           "a query answers as the model", [&] { return std::to_string(index) + readable(name); });
  }
}

void tMachine::set(tScript& script) {
  size_t const index = script.number() % tAssertModel::kSwitches;
  bool const isOn = script.number() % 2 != 0;
  std::string const name = upToNul(script.text());
  tAccessors const& accessors = kAccessors[index];
  (isOn ? accessors.enable : accessors.disable)(configuration, name.c_str());
  model.set(name, index, isOn);
}

// Every switch of the other object is changed first, so that nothing is right by chance.
void tMachine::roundTrip() {
  model.memory.end();
  tPrivateConfiguration other;
  for (char const* name : {"default", "statusFatal", "statusWarning", "warning"}) {
    for (tAccessors const& accessors : kAccessors) {
      bool const isOn = accessors.query(other, name);
      (isOn ? accessors.disable : accessors.enable)(other, name);
    }
  }
  if (!model.hasSayableNames()) return;
  other.configure(inquiredText(configuration).c_str());
  demandEqual(inquiredText(other), inquiredText(configuration),
              "the inquired text gives the same switches");
}

}  // namespace

void fuzzInput(std::string const& input) {
  tMachine machine;
  for (tScript script(input); script.next();) machine.apply(script);
  machine.roundTrip();
}
