#include "oxdiagctl/objectCommand.h"

#include "options/optionText.h"
#include "options/quotedWord.h"
#include "options/tOptionCheck.h"
#include "oxdiagctl/libraryState.h"
#include "oxdiagctl/print.h"
#include "oxdiagctl/tFailure.h"
#include "oxdiagctl/tSettings.h"
#include "oxdiagctl/tTunnel.h"

namespace {

constexpr std::string_view kDestination = "--destination";
constexpr std::string_view kNamelessDestination = "vex";

// The words as the text that the library cuts into them.
std::string makeText(tOptionLanguage const& language, std::vector<std::string> const& words) {
  auto const problem = tOptionCheck(language, words).findProblem();
  if (problem) throw tFailure{kExitWord, *problem};
  auto const text = joinOptionWords(words);
  if (text) return *text;
  throw tFailure{kExitWord, "no word can have blanks and double quotes in it"};
}

// The destination that the words ask for last; empty when they ask for none.
std::string_view findDestination(std::vector<std::string> const& words) {
  std::string_view name;
  for (size_t index = 0; index < words.size(); ++index) {
    if (words[index] != kDestination) continue;
    name = index + 1 < words.size() ? std::string_view(words[index + 1]) : kNamelessDestination;
  }
  return name;
}

// A destination that cannot be opened is passed over, and the trace stays where it was.
void demandDestination(std::vector<std::string> const& words, tSettings const& now) {
  std::string_view const wanted = findDestination(words);
  std::string_view const found = now.getValue(kDestination);
  if (wanted.empty() || found.substr(0, found.find(' ')) == wanted) return;
  throw tFailure{kExitNotTaken, "the destination cannot be opened, it is " + std::string(found)};
}

void showSettings(tOptionLanguage const& language, tTunnel& tunnel, bool isRaw) {
  std::string const text = tunnel.inquire();
  print(isRaw ? text + "\n" : tSettings(text).describe(language));
}

// What the file of the trace did not take shows nowhere in it.
void showLoss(iRequestChannel& channel) {
  auto const state = askLibraryState(channel);
  if (!state || state->lostFileTexts == 0) return;
  print("lost: " + std::to_string(state->lostFileTexts) +
        " texts that could not be written into a file\n");
}

// A pop of nothing would pass without a word.
void demandSaved(tOptionLanguage const& language, iRequestChannel& channel) {
  auto const state = askLibraryState(channel);
  if (!state) return;
  bool const isTrace = language.name == kTraceLanguage.name;
  if ((isTrace ? state->savedTrace : state->savedAssert) != 0) return;
  throw tFailure{kExitNotTaken, "nothing is saved of " + std::string(language.name) +
                                    ", so there was nothing to take back"};
}

std::string_view describeNoChange(tControlOptions const& options) {
  if (options.pops) return "restored, nothing is different\n";
  return options.pushes && options.words.empty() ? "saved\n" : "nothing has changed\n";
}

void change(tTunnel& tunnel, tControlOptions const& options, std::string const& text) {
  tSettings const before(tunnel.inquire());
  if (options.pushes) tunnel.push();
  if (options.pops) tunnel.pop();
  if (!text.empty()) tunnel.configure(text);
  std::string const settings = tunnel.inquire();
  tSettings const now(settings);
  std::string const changes = now.describeChangesSince(before);
  if (options.isRaw) {
    print(settings + "\n");
  } else if (!changes.empty()) {
    print(changes);
  } else {
    print(describeNoChange(options));
  }
  demandDestination(options.words, now);
}

}  // namespace

void runObjectCommand(tOptionLanguage const& language, tControlOptions const& options) {
  std::string const text = makeText(language, options.words);
  auto const channel = openRequestChannel(options.place);
  tTunnel tunnel(*channel, language.name);
  if (!tunnel.isThere()) {
    throw tFailure{kExitNotTaken,
                   "the target does not let its " + std::string(language.name) + " be set"};
  }
  if (text.empty() && !options.pushes && !options.pops) {
    showSettings(language, tunnel, options.isRaw);
    if (language.name == kTraceLanguage.name && !options.isRaw) showLoss(*channel);
  } else {
    if (options.pops) demandSaved(language, *channel);
    change(tunnel, options, text);
  }
}
