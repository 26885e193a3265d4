// Free functions on std::string: conversions, tests, cutting and substitution.
#pragma once

#include <string>

using std::string;

// Number to text.
string unslong2S(unsigned long n);
string long2S(long n);
string longlong2S(long long n);
string unslonglong2S(unsigned long long n);

// Text to number. No error path: other characters than digits add their code minus '0'.
long Stol(const string& s);
int Stoi(const string& s);
long long Stoll(const string& s);
// A new zero-terminated copy, owned by the caller (delete[]).
char* Stoa(const string& s);

// Tests.
bool checkuint(const string& s);
bool checkint(const string& s);
bool checkvarname(const string& s);
bool est_lc(char c);

// Case.
string upcase(const string& s);
string downcase(const string& s);

// Cutting.
string my_before(const string& s, int n);
string my_after(const string& s, int n);
string my_at(const string& s, int from, int to);
string next_record(const string& s, char sep, string& rest);
string last_record(const string& s, char sep, string& rest);
string next_Stringtoken(const string& s, char sep, string* rest);
string cancel_begin_end_spaces(const string& s);

// Search and substitution.
bool contains(const string& s, const string& part);
int find(const string& s, const string& part);
int char_occurences(const string& s, char c);
string substitute_string(const string& s, const string& what, const string& by);
string substitute_char(const string& s, char what, char by);
string substitute_char(const string& s, char what, const string& by);

// Edit distance with insert, delete and replace at cost 1.
int levenshtein(const string& a, const string& b);
