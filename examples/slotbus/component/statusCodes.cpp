#include "slotbus/component/statusCodes.h"

#include "slotbus/component/statusSentences.h"

namespace nSLOTBUS100 {
namespace {

struct tMeaning {
  i32 code;
  char const* text;
};

#define SLOTBUS_MEANING(code, text) {code, text},
constexpr tMeaning kMeanings[] = {SLOTBUS_STATUS_SENTENCES(SLOTBUS_MEANING)};

}  // namespace

char const* describeStatusCode(i32 code) {
  for (tMeaning const& meaning : kMeanings) {
    if (meaning.code == code) {
      return meaning.text;
    }
  }
  return "an unexpected failure";
}

}  // namespace nSLOTBUS100
