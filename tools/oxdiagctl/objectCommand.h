#pragma once

#include "options/optionTable.h"
#include "oxdiagctl/controlOptions.h"
#include "oxdiagctl/iRequestChannel.h"

// `oxdiagctl trace` and `oxdiagctl assert`: shows the settings of the object that `language` is of,
// or changes them and shows what is different then. Throws tFailure, before the channel is opened
// if a word is not what the library expects.
void runObjectCommand(tOptionLanguage const& language, tControlOptions const& options);
