// Where a message meant for a person goes besides the error stream. The core reports
// through these; the program that has a display (quarnc, the panels) installs the boxes.
// Without an installed box a report shows nothing more: the caller writes the error
// stream itself.
#pragma once

#include <list>
#include <string>

struct ReportBoxes {
  void (*message)(const std::string& text) = nullptr;
  void (*alert)(const std::string& a, const std::string& b, const std::string& c) = nullptr;
  void (*bigMessage)(const std::string& text, int width) = nullptr;
  void (*display)(const std::list<std::string>& lines, const std::string& title,
                  const std::string& viewer) = nullptr;
};

void install_report_boxes(const ReportBoxes& boxes);

// A message box (fl_show_Smessages when installed).
void report_message(const std::string& text);
// A three-line alert box (fl_show_Salert when installed).
void report_alert(const std::string& a, const std::string& b = "", const std::string& c = "");
// A long report in a scrolling box with a save button (fl_show_Sbigmessages when installed).
void report_big_message(const std::string& text, int width);
// A long report in the page-by-page report display (show_report when installed); the
// lines may carry its column language. viewer is the PDF viewer command, empty for none.
void report_display(const std::list<std::string>& lines, const std::string& title,
                    const std::string& viewer = "");
