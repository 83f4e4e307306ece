#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/tLanguage.h"

// One item of a status' description.
struct tDescribedItem {
  i32 usageType;
  std::string className;          // of the reportable
  std::string text;               // in the language, UTF-8
  nlohmann::ordered_json values;  // as tRawValues says
};

// The items of the description, in its order; none when there is no description, or one of a class
// of the component's own. An item that cannot be rendered has the failure's code for its text.
std::vector<tDescribedItem> describedItems(nOXDIAG100::tStatus2 const& status,
                                           tLanguage const& language);
