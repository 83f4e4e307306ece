#pragma once

#include <string_view>

#include "oxdiagview/tRecord.h"

namespace oxdiagview {

// Finds out by its text, behind prefix and indentation, what a line is: sets the kind of `record`
// and what belongs to the kind. A text of no form known leaves the record as it is.
void readTextForm(tRecord& record);

// Whether a line without prefix is the first of those that a status writes, or may be a later one.
bool beginsStatus(std::string_view line);
bool continuesStatus(std::string_view line);

// The number behind "Error Code = ", if the line has it.
std::optional<int32_t> errorCodeOf(std::string_view line);

// Whether `text` ends with a row of a hex dump: address, groups, characters.
bool hasDumpRow(std::string_view text);

// The list of names in the legend of a prefix, without its brackets, if the text is one.
std::optional<std::string_view> legendOf(std::string_view text);

}  // namespace oxdiagview
