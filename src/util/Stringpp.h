// Free functions on std::string: conversions, tests, cutting and substitution.
#pragma once

#include <string>

using std::string;

// Text to number. No error path: other characters than digits add their code minus '0'.
long Stol(const string& s);

// Tests.
bool checkuint(const string& s);
// A character that continues a token: a letter, a digit, or one of . _ , @
bool est_lc(char c);

// Cutting.
string my_before(const string& s, int n);
string my_after(const string& s, int n);
// The text before the first sep; rest gets the text behind it (or nothing).
string next_record(const string& s, char sep, string& rest);
// The first token behind leading seps: an identifier, a negative number, or one character.
string next_Stringtoken(const string& s, char sep, string* rest);

// Search and substitution.
bool contains(const string& s, const string& part);
int find(const string& s, const string& part);
int char_occurences(const string& s, char c);
string substitute_string(const string& s, const string& what, const string& by);
