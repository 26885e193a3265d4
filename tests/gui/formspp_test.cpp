#include "gui/formspp.h"

#include <FL/Fl_Box.H>
#include <FL/Fl_Input.H>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

// Without a display every box returns at once: a test that waited for a click would hang.
TEST(Boxes, SkippedWithoutDisplay) {
  unsetenv("QUARN_BATCH");
  unsetenv("DISPLAY");
  EXPECT_FALSE(quarn_display_reachable());
  fl_show_Smessages("message");
  fl_show_Salert("alert");
  fl_show_Salert("Main module:", "m", "undefined");
  fl_show_Sbigmessages("line 1\nline 2\n", 40);
}

TEST(Boxes, SkippedInBatchRuns) {
  setenv("QUARN_BATCH", "1", 1);
  setenv("DISPLAY", ":0", 1);
  EXPECT_FALSE(quarn_display_reachable());
  fl_show_Salert("alert");
  unsetenv("DISPLAY");
}

TEST(Widgets, LabelIsCutAndInputIsSet) {
  Fl_Box box(0, 0, 10, 10);
  fl_set_object_Slabel(&box, "abcdef", 3);
  EXPECT_STREQ(box.label(), "abc");
  fl_set_object_Slabel(&box, "xy", 3);
  EXPECT_STREQ(box.label(), "xy");
  Fl_Input input(0, 0, 10, 10);
  fl_set_Sinput(&input, "value");
  EXPECT_STREQ(input.value(), "value");
  fl_set_Sinput(&box, "ignored");  // not an input: nothing happens
}

}  // namespace
