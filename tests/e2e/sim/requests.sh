#!/usr/bin/env bash
# requests.sh MODULE TABLE: builds quarns_MODULE.cc's compute_data_value into a driver
# and checks the reply to each "request|reply" line of TABLE.
set -u
m=$1
{
  echo "#define main quarns_server_main"
  echo "#include \"quarns_$m.cc\""
  echo "#undef main"
  echo "int main() {"
  echo "  string line;"
  echo "  while (getline(cin, line)) cout << compute_data_value(line) << \"|\" << endl;"
  echo "}"
} > requests_driver.cc
g++ -o requests_driver requests_driver.cc quarns_data_user_int.cc || { echo "requests: no driver"; exit 1; }
grep -v '^#' "$2" | cut -d'|' -f1 > requests_in.txt
grep -v '^#' "$2" | sed 's/^[^|]*|//' > requests_expected.txt
./requests_driver < requests_in.txt 2> requests_err.txt | sed 's/|$//' > requests_got.txt
paste -d'|' requests_in.txt requests_expected.txt > a.txt
paste -d'|' requests_in.txt requests_got.txt > b.txt
diff -u a.txt b.txt || { echo "requests: replies differ"; exit 1; }
grep -q "Error: Binary operator with arguments not having the same type" requests_err.txt || exit 1
grep -q "Error: SIMUL_QNC:unknown binary operator" requests_err.txt || exit 1
grep -q "Error: SIMUL_QNC:unknown unary operator" requests_err.txt || exit 1
