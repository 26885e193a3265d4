#include "util/version.h"

namespace quarn {
const char* const kVersionText = "3.4.3";
}
