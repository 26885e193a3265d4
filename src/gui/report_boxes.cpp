// The message boxes of the Forms layer, installed for the core's reports.
#include "gui/formspp.h"
#include "gui/report.h"
#include "util/report.h"

void install_message_boxes() {
  ReportBoxes boxes;
  boxes.message = [](const std::string& text) { fl_show_Smessages(text); };
  boxes.alert = [](const std::string& a, const std::string& b, const std::string& c) { fl_show_Salert(a, b, c); };
  boxes.bigMessage = [](const std::string& text, int width) { fl_show_Sbigmessages(text, width); };
  boxes.display = show_report;
  install_report_boxes(boxes);
}
