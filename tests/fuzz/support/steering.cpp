#include "support/steering.h"

#include <algorithm>
#include <string_view>

#include "options/utf8Text.h"
#include "support/fuzzing.h"

void demandNoSteering(std::string const& text) {
  for (std::string_view rest = text; !rest.empty();) {
    std::string_view const character = rest.substr(0, std::max<size_t>(lengthOfCharacter(rest), 1));
    demand(character == "\n" || !steersTerminal(character), "nothing steers a terminal",
           [&] { return readable(text); });
    rest.remove_prefix(character.size());
  }
}
