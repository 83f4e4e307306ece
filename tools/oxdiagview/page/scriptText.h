#pragma once

#include <string>
#include <string_view>

namespace oxdiagview {

// Appends `text` as a JSON string that may stand in a script element of a page: there is no '<' in
// it. What is not UTF-8 becomes U+FFFD, a byte each; a control character its picture, such as
// U+241B for the escape; a tab stays.
void appendScriptText(std::string& json, std::string_view text);

}  // namespace oxdiagview
