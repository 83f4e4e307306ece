#include "oxdiagk/iTraceable.h"

namespace nOXDIAG100 {

iTraceable::~iTraceable() = default;

}  // namespace nOXDIAG100
