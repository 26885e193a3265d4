// The report display as seen from the compiler: no window header is needed to call it.
#pragma once

#include <list>
#include <string>

// Shows the lines in the modal report display under the title, in a hidden parent form
// of 740 by 665, and returns when the user closes it. viewer is the command that shows
// a saved PDF file; empty for none. Without a display (or with QUARN_BATCH set) nothing
// opens: the title and the text of the report go to the error stream, and the call
// returns at once.
void show_report(const std::list<std::string>& lines, const std::string& title,
                 const std::string& viewer = "");

// Runs a command line with /bin/sh and waits at most timeout_seconds for it; a command
// still running then is killed. Gives its exit status, or -1 when it could not be run
// or was killed. The display stays alive while waiting.
int run_report_command(const std::string& command, int timeout_seconds);

// Whether a program name (as the first word of a command) is an executable file,
// looked up in PATH when it holds no "/".
bool report_program_exists(const std::string& program);
