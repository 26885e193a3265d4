// What the debug trace hands to the report display (report_display in util/report.h).
#pragma once

#include <list>
#include <string>

// Lines for the display: the file cut at line feeds and zero bytes, and before a line
// would get its 129th character (that character is dropped); first the column line
// "#COLONNE 130 ".
std::list<std::string> report_lines_of_file(const std::string& path);
