// Panel mode of quarnc: the front panel is shown and polled until compile or quit.
#pragma once

#include <string>

#include "driver/driver.h"

class winquarnc_interface;

// Shows the panel (a lone argument is a source file to preload) and polls it. On compile
// the flags and output statics are set from the panel, run holds the file and main
// module, and the result is true; quit ends the process with 0. False, with nothing
// shown, when no display is reachable.
bool panel_mode(int argc, char** argv, PanelRun& run);

// Puts path into the file field and, for a path holding ".qn", sets MainFlag and
// proposes the file's base name as main module.
void load_file(const std::string& path, winquarnc_interface* panel);

// Reads the check buttons into the flags (never clears one), the main module name,
// OutputFile, OutputDir (kept when the field is empty) and a new compiled-files list.
void readPanel(winquarnc_interface* panel, PanelRun& run);
