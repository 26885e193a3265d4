// The simulator panels' paging, colours, buttons and timeout; run by the window case
// gui/windows/sim_panels on a private X server (skipped without a display).
#include <gtest/gtest.h>

#include <FL/Enumerations.H>
#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Browser.H>
#include <FL/Fl_Window.H>

#include <cstdlib>

#include "gui/formspp.h"
#include "gui/sim_panels.h"

namespace {

// The panels are what a batch run skips; here they are the thing under test.
bool display() {
  unsetenv("QUARN_BATCH");
  return quarn_display_reachable();
}

#define NEED_DISPLAY() \
  if (!display()) GTEST_SKIP() << "no display"

// Height 85 + 16 * 3: three lines a page.
const int ThreeLines = 85 + 16 * 3;

TEST(Panels, OutputPagesFollowTheSignals) {
  NEED_DISPLAY();
  OFD_simulator_output out(ThreeLines, "Outputs");
  ASSERT_EQ(out.lines_per_page(), 3);
  for (const char* n : {"a", "b", "c"}) out.add(n);
  EXPECT_EQ(out.page(), 0);  // an exact multiple stays on the last full page
  out.add("d");
  EXPECT_EQ(out.page(), 1);  // the next one opens a page
  out.next_page();
  EXPECT_EQ(out.page(), 1);  // on the last page: the same page again
  out.previous_page();
  out.previous_page();
  EXPECT_EQ(out.page(), 0);
  int states[] = {1, 0, 2, 1};
  out.eval(states);
  EXPECT_EQ(out.box_colour(0), FL_BLUE);
  EXPECT_EQ(out.box_colour(1), FL_YELLOW);
  EXPECT_EQ(out.box_colour(2), FL_RED);
  out.my_plus_button()->do_callback();
  EXPECT_EQ(out.page(), 1);
  EXPECT_EQ(out.box_colour(0), FL_BLUE);
  EXPECT_EQ(out.box_colour(1), -1);
  out.form->hide();
}

TEST(Panels, InputButtons) {
  NEED_DISPLAY();
  OFD_simulator_input in(300);
  in.add("A");
  in.add("B");
  in.signals->checked(1, 1);
  in.signals->checked(2, 1);
  in.sticky->checked(2, 1);
  int init = 0, quit = 0, values[2] = {0, 0};
  in.goButton->do_callback();  // default callback: into the queue
  in.check(&init, &quit, values);
  EXPECT_EQ(quit, 0);
  EXPECT_EQ(init, 0);
  EXPECT_EQ(values[0], 1);
  EXPECT_EQ(values[1], 1);
  EXPECT_EQ(in.signals->checked(1), 0);  // an input of one instant
  EXPECT_EQ(in.signals->checked(2), 1);  // sticky
  in.initButton->do_callback();
  in.check(&init, &quit, values);
  EXPECT_EQ(init, 1);
  EXPECT_EQ(in.signals->nchecked(), 0);
  int auto_values[2] = {1, 0};
  in.eval(&quit, auto_values);
  EXPECT_EQ(quit, 0);
  EXPECT_EQ(in.signals->checked(1), 1);
  in.quitButton->do_callback();
  in.check(&init, &quit, values);
  EXPECT_EQ(quit, 1);
  EXPECT_FALSE(in.timed_out());
  setenv("QUARN_PANEL_TIMEOUT", "1", 1);
  quit = 0;
  in.check(&init, &quit, values);  // nobody presses a button
  unsetenv("QUARN_PANEL_TIMEOUT");
  EXPECT_EQ(quit, 1);
  EXPECT_TRUE(in.timed_out());
  in.form->hide();
}

}  // namespace
