#include "util/Stringpp.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

string unslong2S(unsigned long n) { return std::to_string(n); }
string long2S(long n) { return std::to_string(n); }
string longlong2S(long long n) { return std::to_string(n); }
string unslonglong2S(unsigned long long n) { return std::to_string(n); }

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

int Stoi(const string& s) { return static_cast<int>(Stol(s)); }

long long Stoll(const string& s) {
  if (s.empty()) return 0;
  if (s[0] == '-') return -static_cast<long long>(fold_digits(s, 1));
  return static_cast<long long>(fold_digits(s, 0));
}

char* Stoa(const string& s) {
  char* a = new char[s.size() + 1];
  std::memcpy(a, s.c_str(), s.size() + 1);
  return a;
}

bool checkuint(const string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

bool checkint(const string& s) {
  if (!s.empty() && (s[0] == '-' || s[0] == '+')) return checkuint(s.substr(1));
  return checkuint(s);
}

bool checkvarname(const string& s) {
  if (s.empty() || !std::isalpha(static_cast<unsigned char>(s[0]))) return false;
  for (char c : s)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  return true;
}

bool est_lc(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '_' || c == ',' ||
         c == '@';
}

string upcase(const string& s) {
  string r = s;
  for (char& c : r) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return r;
}

string downcase(const string& s) {
  string r = s;
  for (char& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return r;
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

string my_at(const string& s, int from, int to) {
  if (from < 0) from = 0;
  if (to > static_cast<int>(s.size())) to = static_cast<int>(s.size());
  if (from >= to) return "";
  return s.substr(from, to - from);
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

string last_record(const string& s, char sep, string& rest) {
  size_t p = s.rfind(sep);
  if (p == string::npos) {
    string all = s;
    rest = "";
    return all;
  }
  string last = s.substr(p + 1);
  rest = s.substr(0, p);
  return last;
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

string cancel_begin_end_spaces(const string& s) {
  size_t b = s.find_first_not_of(" \t");
  if (b == string::npos) return "";
  size_t e = s.find_last_not_of(" \t");
  return s.substr(b, e - b + 1);
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

string substitute_char(const string& s, char what, char by) {
  string r = s;
  std::replace(r.begin(), r.end(), what, by);
  return r;
}

string substitute_char(const string& s, char what, const string& by) {
  string r;
  for (char c : s) {
    if (c == what)
      r += by;
    else
      r += c;
  }
  return r;
}

int levenshtein(const string& a, const string& b) {
  std::vector<int> prev(b.size() + 1), cur(b.size() + 1);
  for (size_t j = 0; j <= b.size(); j++) prev[j] = static_cast<int>(j);
  for (size_t i = 1; i <= a.size(); i++) {
    cur[0] = static_cast<int>(i);
    for (size_t j = 1; j <= b.size(); j++) {
      int sub = prev[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      cur[j] = std::min({prev[j] + 1, cur[j - 1] + 1, sub});
    }
    std::swap(prev, cur);
  }
  return prev[b.size()];
}
