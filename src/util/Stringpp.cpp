#include "util/Stringpp.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <cctype>
#include <cstring>
#include <vector>

string unslong2S(unsigned long n) { return std::to_string(n); }
string long2S(long n) { return std::to_string(n); }
string longlong2S(long long n) { return std::to_string(n); }
string unslonglong2S(unsigned long long n) { return std::to_string(n); }

string dtoS(double d) {
  std::ostringstream out;
  out << d;
  return out.str();
}

string ctoS(char c) { return string(1, c); }

static string fixedHex(unsigned long v, int digits) {
  static const char kDigits[] = "0123456789ABCDEF";
  string r(digits, '0');
  for (int i = digits - 1; i >= 0; i--, v >>= 4) r[i] = kDigits[v & 0xF];
  return r;
}

string hex1toS(unsigned long v) { return fixedHex(v, 1); }
string hex2toS(unsigned long v) { return fixedHex(v, 2); }
string hex4toS(unsigned long v) { return fixedHex(v, 4); }
string hex8toS(unsigned long v) { return fixedHex(v, 8); }

string bin8toS(unsigned long v) {
  string r(8, '0');
  for (int i = 7; i >= 0; i--, v >>= 1) r[i] = (v & 1) ? '1' : '0';
  return r;
}

double Stod(const string& s) { return std::strtod(s.c_str(), nullptr); }

unsigned long Stouhex(const string& s) {
  unsigned long v = 0;
  for (char c : s) {
    if (c >= '0' && c <= '9')
      v = v * 16 + static_cast<unsigned long>(c - '0');
    else if (c >= 'a' && c <= 'f')
      v = v * 16 + static_cast<unsigned long>(c - 'a' + 10);
    else if (c >= 'A' && c <= 'F')
      v = v * 16 + static_cast<unsigned long>(c - 'A' + 10);
  }
  return v;
}

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

bool checkdouble(const string& s) {
  if (s.empty()) return false;
  char* end = nullptr;
  std::strtod(s.c_str(), &end);
  return end != nullptr && *end == '\0' && !std::isspace(static_cast<unsigned char>(s[0]));
}

bool checkhex(const string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
  return true;
}

bool checkbin(const string& s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c != '0' && c != '1') return false;
  return true;
}

bool beginbynumber(const string& s) {
  return !s.empty() && std::isdigit(static_cast<unsigned char>(s[0]));
}

// Position of the first occurrence of token at or after from that stands as a token.
static size_t find_token(const string& s, const string& token, size_t from) {
  if (token.empty()) return string::npos;
  for (size_t p = s.find(token, from); p != string::npos; p = s.find(token, p + 1)) {
    bool before = p == 0 || !est_lc(s[p - 1]);
    size_t e = p + token.size();
    bool after = e >= s.size() || !est_lc(s[e]);
    if (before && after) return p;
  }
  return string::npos;
}

bool contains_token(const string& s, const string& token) {
  return find_token(s, token, 0) != string::npos;
}

string substitute_token(const string& s, const string& what, const string& by) {
  string r;
  size_t from = 0;
  for (size_t p = find_token(s, what, 0); p != string::npos; p = find_token(s, what, from)) {
    r += s.substr(from, p - from) + by;
    from = p + what.size();
  }
  return r + s.substr(from);
}

string extract_filename_name(const string& path) {
  size_t p = path.rfind('/');
  return p == string::npos ? path : path.substr(p + 1);
}

string extract_filename_path(const string& path) {
  size_t p = path.rfind('/');
  return p == string::npos ? "" : path.substr(0, p);
}

string supress_filename_extension(const string& name) {
  size_t slash = name.rfind('/');
  size_t dot = name.rfind('.');
  if (dot == string::npos || (slash != string::npos && dot < slash)) return name;
  return name.substr(0, dot);
}

string my_current_directory() {
  std::error_code ec;
  return std::filesystem::current_path(ec).string();
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
