#pragma once

namespace quarn {
// The version text shown by the banner and the panel.
extern const char* const kVersionText;
}
