// Message boxes with string arguments over the Forms layer.
// Boxes appear only when a display is reachable and QUARN_BATCH is not set.
// The Forms layer's own header defines many macros: it is included by formspp.cpp only.
#pragma once

#include <string>

class Fl_Widget;

// True when a box may be shown: DISPLAY names a server that accepts a connection and
// the run is not a batch run (QUARN_BATCH unset).
bool quarn_display_reachable();

void fl_show_Smessages(const std::string& s);
void fl_show_Salert(const std::string& s);
// The three-line alert of the Forms layer (fl_show_alert(a, b, c, 0)) under the same rule.
void fl_show_Salert(const std::string& a, const std::string& b, const std::string& c);
// A modal form "Messages" with one browser line per line of text, "Quit" and "save".
void fl_show_Sbigmessages(const std::string& text, int width);
void fl_set_object_Slabel(Fl_Widget* w, const std::string& s, int max);
void fl_set_Sinput(Fl_Widget* w, const std::string& s);
