#include "driver/driver.h"
#include "gui/panel.h"

void install_message_boxes();

int main(int argc, char** argv) {
  install_message_boxes();
  return quarnc_main(argc, argv, panel_mode);
}
