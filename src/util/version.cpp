namespace quarn {
// The version text shown by the banner and the panel.
const char* const kVersionText = "3.4.3";
}
