// Structural checks of generated Lustre and Esterel text: the files are parsed, and a
// fault is a missing or double definition, a name used but not declared, or a block
// that does not close. Each check gives the list of faults found.
#pragma once

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace text_check {

// Identifiers, numbers and operators; `comment` starts a comment to the end of the line.
inline std::vector<std::string> tokens(const std::string& text, const std::string& comment) {
  std::vector<std::string> out;
  size_t i = 0, n = text.size();
  while (i < n) {
    char c = text[i];
    if (isspace(static_cast<unsigned char>(c))) {
      i++;
    } else if (text.compare(i, comment.size(), comment) == 0) {
      while (i < n && text[i] != '\n') i++;
    } else if (isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.') {
      size_t j = i;
      while (j < n && (isalnum(static_cast<unsigned char>(text[j])) || text[j] == '_' || text[j] == '.')) j++;
      out.push_back(text.substr(i, j - i));
      i = j;
    } else if (text.compare(i, 2, "->") == 0 || text.compare(i, 2, "<>") == 0 || text.compare(i, 2, "<=") == 0 ||
               text.compare(i, 2, ">=") == 0 ||
               text.compare(i, 2, "||") == 0) {
      out.push_back(text.substr(i, 2));
      i += 2;
    } else {
      out.push_back(std::string(1, c));
      i++;
    }
  }
  return out;
}

inline bool is_name(const std::string& t) {
  return !t.empty() && (isalpha(static_cast<unsigned char>(t[0])) || t[0] == '_');
}

class Cursor {
 public:
  explicit Cursor(const std::vector<std::string>& t) : toks(t) {}
  bool done() const { return at >= toks.size(); }
  const std::string& peek(size_t k = 0) const {
    static const std::string none;
    return at + k < toks.size() ? toks[at + k] : none;
  }
  std::string next() { return done() ? "" : toks[at++]; }
  bool accept(const std::string& t) {
    if (peek() != t) return false;
    at++;
    return true;
  }
  bool expect(const std::string& t, std::vector<std::string>& faults) {
    if (accept(t)) return true;
    faults.push_back("expected '" + t + "' at '" + peek() + "'");
    return false;
  }

 private:
  const std::vector<std::string>& toks;
  size_t at = 0;
};

// name: type groups separated by ";" up to the closing token.
inline void declarations(Cursor& c, const std::string& close, std::map<std::string, std::string>& into,
                         std::vector<std::string>& faults) {
  while (!c.done() && c.peek() != close) {
    std::vector<std::string> names{c.next()};
    while (c.accept(",")) names.push_back(c.next());
    if (!c.expect(":", faults)) return;
    std::string type = c.next();
    for (const std::string& n : names) {
      if (!is_name(n)) faults.push_back("bad declared name '" + n + "'");
      if (!into.emplace(n, type).second) faults.push_back("declared twice: " + n);
    }
    if (!c.accept(";")) break;
  }
}

// A Lustre file of constants and one node. `external` names the user's functions and
// constants that the text may use without declaring them.
inline std::vector<std::string> check_lustre(const std::string& text, const std::set<std::string>& external) {
  static const std::set<std::string> keywords{"if", "then", "else", "and", "or", "not", "pre", "true", "false"};
  std::vector<std::string> faults;
  std::vector<std::string> toks = tokens(text, "--");
  Cursor c(toks);
  std::set<std::string> constants;
  while (c.accept("const")) {
    std::string name = c.next();
    if (!constants.insert(name).second) faults.push_back("constant twice: " + name);
    if (!c.accept("=") && !c.accept(":")) faults.push_back("constant without value or type: " + name);
    c.next();
    c.expect(";", faults);
  }
  std::map<std::string, std::string> inputs, outputs, locals;
  if (!c.expect("node", faults)) return faults;
  c.next();
  c.expect("(", faults);
  declarations(c, ")", inputs, faults);
  c.expect(")", faults);
  c.expect("returns", faults);
  c.expect("(", faults);
  declarations(c, ")", outputs, faults);
  c.expect(")", faults);
  c.expect(";", faults);
  if (c.accept("var")) {
    declarations(c, "let", locals, faults);
    if (locals.empty()) faults.push_back("var without declarations");
  }
  if (!c.expect("let", faults)) return faults;
  std::map<std::string, int> defined;
  while (!c.done() && c.peek() != "tel") {
    std::string left = c.next();
    defined[left]++;
    if (inputs.count(left)) faults.push_back("input defined: " + left);
    else if (!outputs.count(left) && !locals.count(left)) faults.push_back("undeclared flow defined: " + left);
    if (!c.expect("=", faults)) return faults;
    int depth = 0, conditionals = 0;
    while (!c.done() && !(depth == 0 && c.peek() == ";")) {
      std::string t = c.next();
      if (t == "(") depth++;
      if (t == ")" && --depth < 0) faults.push_back("unbalanced ')' in " + left);
      if (t == "if") conditionals++;
      if (t == "else") conditionals--;
      if (!is_name(t) || keywords.count(t) || constants.count(t) || external.count(t)) continue;
      if (c.peek() == "(") {
        faults.push_back("unknown function: " + t);
        continue;
      }
      if (!inputs.count(t) && !outputs.count(t) && !locals.count(t)) faults.push_back("undeclared: " + t);
    }
    if (depth != 0) faults.push_back("unbalanced '(' in " + left);
    if (conditionals != 0) faults.push_back("if without else in " + left);
    c.expect(";", faults);
  }
  c.expect("tel", faults);
  if (!c.done()) faults.push_back("text after tel: " + c.peek());
  for (const auto& [name, type] : outputs)
    if (defined[name] != 1) faults.push_back("output defined " + std::to_string(defined[name]) + " times: " + name);
  for (const auto& [name, type] : locals)
    if (defined[name] != 1) faults.push_back("flow defined " + std::to_string(defined[name]) + " times: " + name);
  return faults;
}

// An Esterel module. Every signal tested or emitted is declared, inputs are never
// emitted, a pure signal is emitted by one branch, every output by at least one, and
// brackets, present, loop and signal blocks close.
inline std::vector<std::string> check_esterel(const std::string& text, const std::set<std::string>& external) {
  static const std::set<std::string> words{"and", "or", "not", "tick", "true", "false"};
  std::vector<std::string> faults;
  std::vector<std::string> toks = tokens(text, "%");
  Cursor c(toks);
  std::map<std::string, std::string> inputs, outputs, locals;
  std::set<std::string> constants;
  if (!c.expect("module", faults)) return faults;
  c.next();
  c.expect(":", faults);
  while (c.accept("constant")) {
    constants.insert(c.next());
    c.expect(":", faults);
    c.next();
    c.expect(";", faults);
  }
  auto interface = [&](const std::string& keyword, std::map<std::string, std::string>& into) {
    if (!c.accept(keyword)) return;
    while (!c.done()) {
      std::string name = c.next();
      std::string type;
      if (c.accept(":")) type = c.next();
      if (!into.emplace(name, type).second) faults.push_back("declared twice: " + name);
      if (!c.accept(",")) break;
    }
    c.expect(";", faults);
  };
  interface("input", inputs);
  interface("output", outputs);
  bool has_signal = c.accept("signal");
  if (has_signal) {
    while (!c.done()) {
      std::string name = c.next();
      std::string type;
      if (c.accept(":")) type = c.next();
      if (!locals.emplace(name, type).second) faults.push_back("declared twice: " + name);
      if (!c.accept(",")) break;
    }
    c.expect("in", faults);
  }
  auto declared = [&](const std::string& n) { return inputs.count(n) || outputs.count(n) || locals.count(n); };
  // A data expression up to `end`: values ?S of valued signals, constants, the user's
  // functions and constants.
  auto value = [&](const std::string& end) {
    int depth = 0;
    while (!c.done() && !(depth == 0 && c.peek() == end)) {
      std::string v = c.next();
      if (v == "(") depth++;
      if (v == ")") depth--;
      if (v == "?") {
        std::string n = c.next();
        if (!declared(n)) faults.push_back("value of undeclared signal: " + n);
        else if ((inputs.count(n) ? inputs[n] : outputs.count(n) ? outputs[n] : locals[n]).empty())
          faults.push_back("value of pure signal: " + n);
        continue;
      }
      if (!is_name(v) || words.count(v) || constants.count(v) || external.count(v)) continue;
      faults.push_back((c.peek() == "(" ? "unknown function: " : "undeclared in value: ") + v);
    }
    c.expect(end, faults);
  };
  std::map<std::string, int> emitted;
  std::vector<std::string> blocks;  // open "[", "present", "loop"
  while (!c.done()) {
    std::string t = c.next();
    if (t == "[") {
      blocks.push_back("[");
    } else if (t == "]") {
      if (blocks.empty() || blocks.back() != "[") return faults.push_back("unbalanced ']'"), faults;
      blocks.pop_back();
    } else if (t == "loop") {
      blocks.push_back("loop");
    } else if (t == "each") {
      if (blocks.empty() || blocks.back() != "loop") return faults.push_back("'each' without loop"), faults;
      blocks.pop_back();
      c.expect("tick", faults);
    } else if (t == "present") {
      blocks.push_back("present");
      c.expect("[", faults);
      while (!c.done() && c.peek() != "]") {
        std::string n = c.next();
        if (is_name(n) && !words.count(n) && !declared(n)) faults.push_back("undeclared in test: " + n);
      }
      c.expect("]", faults);
      c.expect("then", faults);
    } else if (t == "emit") {
      std::string n = c.next();
      emitted[n]++;
      if (!declared(n)) faults.push_back("undeclared emitted: " + n);
      if (inputs.count(n)) faults.push_back("input emitted: " + n);
      const std::string& type = inputs.count(n) ? inputs[n] : outputs.count(n) ? outputs[n] : locals[n];
      if (type.empty() == (c.peek() == "(")) faults.push_back("emission does not fit the declaration of " + n);
      if (c.accept("(")) value(")");
      c.accept(";");
    } else if (t == "if") {
      blocks.push_back("if");
      value("then");
    } else if (t == "end") {
      std::string what = c.next();
      if (what == "present" || what == "if") {
        if (blocks.empty() || blocks.back() != what) return faults.push_back("unbalanced end " + what), faults;
        blocks.pop_back();
      } else if (what == "signal") {
        if (!has_signal || !blocks.empty()) faults.push_back("misplaced end signal");
        has_signal = false;
      } else if (what == "module") {
        if (!blocks.empty() || has_signal) faults.push_back("module ends inside a block");
        if (!c.done()) faults.push_back("text after end module");
      }
    } else if (t == "run") {
      c.expect("my_pre", faults);
      c.expect("[", faults);
      c.expect("signal", faults);
      std::string s = c.next();
      c.expect("/", faults);
      c.expect("S", faults);
      c.expect(",", faults);
      std::string pre = c.next();
      c.expect("/", faults);
      c.expect("preS", faults);
      c.expect("]", faults);
      if (!declared(s)) faults.push_back("undeclared: " + s);
      if (inputs.count(pre)) faults.push_back("input emitted: " + pre);
      if (!declared(pre)) faults.push_back("undeclared: " + pre);
      emitted.emplace(pre, 0);
    } else if (t != "||" && t != ";") {
      faults.push_back("unexpected '" + t + "'");
    }
  }
  if (!blocks.empty()) faults.push_back("block not closed: " + blocks.back());
  for (const auto& [name, type] : outputs)
    if (!emitted.count(name)) faults.push_back("output never emitted: " + name);
  for (const auto& [name, count] : emitted)
    if (count > 1 && (outputs.count(name) ? outputs[name] : locals[name]).empty())
      faults.push_back("pure signal emitted " + std::to_string(count) + " times: " + name);
  return faults;
}

}  // namespace text_check
