#include "driver/driver.h"

int main(int argc, char** argv) { return quarnc_main(argc, argv); }
