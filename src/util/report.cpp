#include "util/report.h"

namespace {
ReportBoxes boxes;
}

void install_report_boxes(const ReportBoxes& b) { boxes = b; }

void report_message(const std::string& text) {
  if (boxes.message) boxes.message(text);
}

void report_alert(const std::string& a, const std::string& b, const std::string& c) {
  if (boxes.alert) boxes.alert(a, b, c);
}

void report_big_message(const std::string& text, int width) {
  if (boxes.bigMessage) boxes.bigMessage(text, width);
}

void report_display(const std::list<std::string>& lines, const std::string& title,
                    const std::string& viewer) {
  if (boxes.display) boxes.display(lines, title, viewer);
}
