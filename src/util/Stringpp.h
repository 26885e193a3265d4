// Free functions on std::string: conversions, tests, cutting and substitution.
#pragma once

#include <string>

using std::string;

// Number to text.
string unslong2S(unsigned long n);
string long2S(long n);
string longlong2S(long long n);
string unslonglong2S(unsigned long long n);

string dtoS(double d);
string ctoS(char c);
// Fixed-width upper-case hexadecimal and binary text of the low bits.
string hex1toS(unsigned long v);
string hex2toS(unsigned long v);
string hex4toS(unsigned long v);
string hex8toS(unsigned long v);
string bin8toS(unsigned long v);

// Text to number. No error path: other characters than digits add their code minus '0'.
long Stol(const string& s);
int Stoi(const string& s);
long long Stoll(const string& s);
double Stod(const string& s);
// Hexadecimal digits (either case) to a number; other characters are skipped.
unsigned long Stouhex(const string& s);
// A new zero-terminated copy, owned by the caller (delete[]).
char* Stoa(const string& s);

// Tests.
bool checkuint(const string& s);
bool checkint(const string& s);
bool checkvarname(const string& s);
bool checkdouble(const string& s);
bool checkhex(const string& s);
bool checkbin(const string& s);
bool beginbynumber(const string& s);
bool est_lc(char c);
// Whether token stands in s with no identifier character (est_lc) right before or after.
bool contains_token(const string& s, const string& token);

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

// File names.
string extract_filename_name(const string& path);       // behind the last "/"
string extract_filename_path(const string& path);       // before the last "/", or empty
string supress_filename_extension(const string& name);  // before the last "." of the name
string my_current_directory();

// Search and substitution.
bool contains(const string& s, const string& part);
int find(const string& s, const string& part);
int char_occurences(const string& s, char c);
string substitute_string(const string& s, const string& what, const string& by);
string substitute_char(const string& s, char what, char by);
string substitute_char(const string& s, char what, const string& by);
// Replaces the occurrences of what that stand as tokens (see contains_token).
string substitute_token(const string& s, const string& what, const string& by);

// Edit distance with insert, delete and replace at cost 1.
int levenshtein(const string& a, const string& b);
