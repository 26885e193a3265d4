#include <iostream>

int main(int, char**) {
  std::cout << "   quarnc Compiler of Quarn Module version: 3.4.3\n\n";
  return 0;
}
