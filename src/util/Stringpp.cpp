#include "util/Stringpp.h"

#include <algorithm>
#include <cctype>

// Digits are folded in without a check; unsigned arithmetic keeps an over-long text
// from overflowing into undefined behaviour.
static unsigned long long fold_digits(const string& s, size_t from) {
  unsigned long long v = 0;
  for (size_t i = from; i < s.size(); i++)
    v = v * 10 + static_cast<unsigned long long>(static_cast<long long>(s[i] - '0'));
  return v;
}

long Stol(const string& s) {
  if (s.empty()) return 0;
  if (s[0] == '-') return -static_cast<long>(fold_digits(s, 1));
  return static_cast<long>(fold_digits(s, 0));
}

bool checkuint(const string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

bool est_lc(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '_' || c == ',' ||
         c == '@';
}

string my_before(const string& s, int n) {
  if (n < 1) return "";
  return s.substr(0, std::min(static_cast<size_t>(n), s.size()));
}

string my_after(const string& s, int n) {
  if (n < 0) n = 0;
  if (static_cast<size_t>(n) >= s.size()) return "";
  return s.substr(n);
}

string next_record(const string& s, char sep, string& rest) {
  size_t p = s.find(sep);
  // rest may be s itself: take the result before writing rest.
  if (p == string::npos) {
    string all = s;
    rest = "";
    return all;
  }
  string first = s.substr(0, p);
  rest = s.substr(p + 1);
  return first;
}

string next_Stringtoken(const string& s, char sep, string* rest) {
  size_t i = 0;
  while (i < s.size() && s[i] == sep) i++;
  if (i >= s.size()) {
    if (rest) *rest = "";
    return "";
  }
  // rest may alias s: the token is taken before rest is written.
  size_t start = i;
  if (s[i] == '-') {
    i++;
    while (i < s.size() && (std::isdigit(static_cast<unsigned char>(s[i])) || s[i] == '.')) i++;
  } else if (est_lc(s[i])) {
    while (i < s.size() && est_lc(s[i])) i++;
  } else {
    i++;
  }
  string token = s.substr(start, i - start);
  if (rest) *rest = s.substr(i);
  return token;
}

bool contains(const string& s, const string& part) { return s.find(part) != string::npos; }

int find(const string& s, const string& part) {
  size_t p = s.find(part);
  return p == string::npos ? -1 : static_cast<int>(p);
}

int char_occurences(const string& s, char c) {
  return static_cast<int>(std::count(s.begin(), s.end(), c));
}

string substitute_string(const string& s, const string& what, const string& by) {
  if (what.empty()) return s;
  string r;
  size_t i = 0;
  while (i < s.size()) {
    if (s.compare(i, what.size(), what) == 0) {
      r += by;
      i += what.size();
    } else {
      r += s[i++];
    }
  }
  return r;
}
