// Changes of a filter against the model: what is written, which lines are shown, and whether the
// written form builds the same filter again. One change a line of the input:
//
//     pEXPRESSION  parses it             aFIELD CONNECTOR TERM  adds a term
//     rFIELD       removes a field       z                      removes all
//     fN EXPRESSION parses it with the Nth allocation failing
//     wSIZE        writes into a buffer of that size

#include "filter/writtenFilter.h"
#include "ntoshost/faults.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"
#include "support/tScript.h"

namespace {

using nOXDIAG100::tTraceFilter;

constexpr char kDefaultTerm[] = ">=100";
constexpr int kMostLines = 12;
constexpr unsigned kMostFaults = 8;

class tPair {
 public:
  tPair() { model.add(kDefaultTerm, 0, tTraceFilter::kVerbosity); }

  void apply(tScript& script);

 private:
  void parse(std::string const& expression);
  void add(tScript& script);
  void removeField(int field);
  void removeAll();
  void parseWithoutMemory(unsigned n, std::string const& expression);
  void writeCut(unsigned size) const;

  void demandSame(std::string const& text) const;
  void demandSameLines(std::string const& text) const;
  void demandSameLine(tModelLine const& line) const;
  void demandRoundTrip() const;

  tTraceFilter filter;
  tModelFilter model;
  bool isFailed = false;
  bool hasLooseTerm = false;  // one behind others that nothing joins, as no expression can say
};

void tPair::apply(tScript& script) {
  std::string const whole = script.text();
  switch (script.operation("parzfw")) {
    case 'a':
      add(script);
      break;
    case 'r':
      removeField(static_cast<int>(script.number() % 8) - 1);
      break;
    case 'z':
      removeAll();
      break;
    case 'f': {
      unsigned const n = script.number();
      parseWithoutMemory(1 + n % kMostFaults, upToNul(script.text()));
      break;
    }
    case 'w':
      writeCut(script.number() % 512);
      break;
    default:
      parse(upToNul(whole));
      break;
  }
  demandSame(whole);
}

void tPair::parse(std::string const& expression) {
  tExactText exact(expression);
  filter.parseExpression(exact.get());
  demand(exact.is(expression), "the expression is left as it was", [&] { return expression; });
  model.parse(expression);
}

// The field is -1 to 6 and the connector 0 to 3, so some of both are none.
void tPair::add(tScript& script) {
  int const field = static_cast<int>(script.number() % 8) - 1;
  unsigned const connector = script.number() % 4;
  std::string const term = upToNul(script.text());
  tExactText exact(term, false);
  filter.addTerm(exact.get(), term.size(), connector, field);
  bool const isTerm = field < tTraceFilter::kFieldCount && connector <= tTraceFilter::kOr;
  if (!isTerm) return;
  hasLooseTerm = hasLooseTerm || (connector == tTraceFilter::kFirst && !model.written().empty());
  model.add(term, connector, field);
}

void tPair::removeField(int field) {
  filter.removeField(field);
  model.removeField(field);
}

void tPair::removeAll() {
  hasLooseTerm = false;
  filter.removeAll();
  model.removeAll();
}

// Which terms are missing then only the filter knows; it goes on from nothing.
void tPair::parseWithoutMemory(unsigned n, std::string const& expression) {
  ntoshost::failNth(ntoshost::kFaultMemory, n);
  filter.parseExpression(expression.c_str());
  ntoshost::clearFaults();
  isFailed = isFailed || ntoshost::faultsInjected() != 0;
  demand(filter.hasFailed() == isFailed, "the filter says whether a term was lost",
         [&] { return readable(expression); });
  writtenFilter(filter);
  showsLine(filter, {"a", "b", 1, "c", 2, 3});
  removeAll();
}

void tPair::writeCut(unsigned size) const {
  std::string const whole = model.written();
  tExactText buffer(std::string(size, '#'), false);
  unsigned int needed = 0;
  char* const end = filter.write(buffer.get(), size, &needed);
  demand(needed == whole.size() + 1, "the size needed is that of the whole text",
         [&] { return std::to_string(needed) + " for " + readable(whole); });
  if (size == 0) return;
  size_t const written = std::min<size_t>(whole.size(), size - 1);
  size_t const copied = std::min<size_t>(whole.size(), size);
  demandEqual(buffer.get(), whole.substr(0, written), "a cut text is the front of the whole");
  demand(end == buffer.get() + copied, "writing returns where it stopped",
         [&] { return std::to_string(end - buffer.get()) + " of " + std::to_string(size); });
}

void tPair::demandSame(std::string const& text) const {
  demandEqual(writtenFilter(filter), model.written(), "the filter is written as the model");
  demand(filter.isEmpty() == model.written().empty(), "the filter is empty when the model is",
         [&] { return model.written(); });
  demand(filter.hasFailed() == isFailed, "the filter failed when memory did",
         [&] { return model.written(); });
  demandSameLines(text);
  demandRoundTrip();
}

// Lines made of the words of the operation, which are the values that its terms ask for.
void tPair::demandSameLines(std::string const& text) const {
  static char const kSeparators[] = " \t\v\f\r|&=!<>";
  demandSameLine({"", "", 0, "", 0, 0});
  size_t begin = 0;
  for (int count = 0; count < kMostLines && begin < text.size(); ++count) {
    size_t const end = std::min(text.find_first_of(kSeparators, begin), text.size());
    std::string const word = upToNul(text.substr(begin, end - begin));
    uint32_t const number = modelNumber(word);
    demandSameLine({word, word, number, word, number, number});
    demandSameLine({word + "a", "", number + 1, word.substr(0, word.size() / 2), number - 1, 0});
    begin = end + 1;
  }
}

void tPair::demandSameLine(tModelLine const& line) const {
  demand(showsLine(filter, line) == model.shows(line), "a line is shown when the model shows it",
         [&] {
           return readable(line.component) + " line " + std::to_string(line.line) + " thread " +
                  std::to_string(line.threadId) + " for" + readable(model.written());
         });
}

void tPair::demandRoundTrip() const {
  if (hasLooseTerm || !model.isWritable() || filter.isEmpty()) return;
  tTraceFilter again;
  again.parseExpression(writtenExpression(filter).c_str());
  demandEqual(writtenFilter(again), writtenFilter(filter), "the written form is read again");
}

}  // namespace

void fuzzInput(std::string const& input) {
  tPair pair;
  for (tScript script(input); script.next();) pair.apply(script);
}
