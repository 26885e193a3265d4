// The report display as the targets see it: a function that the program with windows
// installs (as it installs the message boxes). Null means there is no display to show a
// report in. The installed function itself returns at once when its display can't be
// reached.
#pragma once

#include <list>
#include <string>

// Shows the lines (page layout language of the display) under the title until the user
// closes the window; viewer is the command that opens a PDF, empty for none. The window
// layer's show_report has this form: report_display_hook = show_report.
using ReportDisplay = void (*)(const std::list<std::string>& lines, const std::string& title,
                               const std::string& viewer);
extern ReportDisplay report_display_hook;

// Lines for the display: the file cut at line feeds and zero bytes, and before a line
// would get its 129th character (that character is dropped); first the column line
// "#COLONNE 130 ".
std::list<std::string> report_lines_of_file(const std::string& path);
