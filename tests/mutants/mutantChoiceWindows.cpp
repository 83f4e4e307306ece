// Linked into each woven kernel module. The section holds the number of the chosen mutant alone, so
// that it is found in the file of the module, and written there.

#include "mutant.h"

namespace {

unsigned char unread[OXDIAG_MUTANT_NUMBERS];

}  // namespace

__attribute__((section(".mutant"))) int oxdiagMutantChosen = 0;
unsigned char* oxdiagMutantReached = unread;
