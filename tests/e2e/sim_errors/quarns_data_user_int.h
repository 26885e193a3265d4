// What the data server needs of the type int.
#include <string>
bool check_int(std::string s);
int string_to_int(std::string s);
std::string int_to_string(int v);
int plus(int a, int b);
