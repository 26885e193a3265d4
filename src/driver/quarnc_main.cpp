#include "driver/driver.h"
#include "gui/panel.h"

int main(int argc, char** argv) { return quarnc_main(argc, argv, panel_mode); }
