// Type, method and constant tables; typing, copies and target texts of value expressions
// without signals.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <sstream>

#include "data/data.h"
#include "util/compilation.h"

namespace {

// A regular expression that matches text literally.
std::string exact(const std::string& text) {
  std::string r;
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) r += '\\';
    r += c;
  }
  return r;
}

class DataTest : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QUARN_BATCH", "1", 1);
    Compilation::GDataTypeTable = new DataTypeTable();
    Compilation::GDataMethodTable = new DataMethodTable();
    Compilation::GDataConstantTable = new DataConstantTable();
    for (const char* t : {"int", "bool", "real"}) Compilation::GDataTypeTable->addType(t);
  }
  void TearDown() override {
    Compilation::GDataTypeTable = nullptr;
    Compilation::GDataMethodTable = nullptr;
    Compilation::GDataConstantTable = nullptr;
  }

  // A literal constant "type name := text" with its DEFAULT value; returns a reference to it.
  DataConstant* constant(const std::string& type, const std::string& name,
                         const std::string& text) {
    auto* value = new DataValue(text);
    auto* decl = new ConstantDecl(type, name, new std::map<int, DataExpr*>{{TLanguage::DEFAULT, value}});
    value->setConstDecl(decl);
    Compilation::GDataConstantTable->addConstant(decl);
    return new DataConstant(decl->getConstantIndex());
  }

  int method(const std::string& ret, const std::string& name, std::list<std::string> args) {
    auto* m = new MethodDecl(ret, name, args.empty() ? nullptr : &args);
    Compilation::GDataMethodTable->addMethod(m);
    return m->getIndex();
  }
};

template <class F>
std::string text(F put) {
  std::ostringstream out;
  put(out);
  return out.str();
}

TEST_F(DataTest, TypeTableIndexesAndListings) {
  DataTypeTable& t = *Compilation::GDataTypeTable;
  t.addType("int");  // known: nothing changes
  t.addType("complex");
  EXPECT_EQ(t.getIndex("int"), 0);
  EXPECT_EQ(t.getIndex("bool"), 1);
  EXPECT_EQ(t.getIndex("complex"), 3);
  EXPECT_EQ(t.getIndex("string"), -1);
  EXPECT_TRUE(t.isDefined("real"));
  EXPECT_FALSE(t.isDefined("string"));
  EXPECT_EQ(t.getTypeById(2), "real");
  EXPECT_EQ(t.getTypeById(4), "undefined");
  EXPECT_EQ(t.getTypeById(-1), "undefined");

  // Listings walk the index order; target declarations walk the name order.
  EXPECT_EQ(text([&](std::ostream& o) { t.print(o, false); }),
            "type:\nint;\nbool;\nreal;\ncomplex;\n\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.print(o, true); }),
            "type:\n   0: int;\n   1: bool;\n   2: real;\n   3: complex;\n\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.C_put(o); }),
            "extern const bool zero_bool;\nextern const complex zero_complex;\n"
            "extern const int zero_int;\nextern const real zero_real;\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.CSharp_put(o); }),
            "public const bool zero_bool;\npublic const complex zero_complex;\n"
            "public const int zero_int;\npublic const real zero_real;\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.LUSTRE_put(o); }),
            "const bool false;\nconst complex zero_complex;\nconst int 0;\nconst real 0.0;\n");
}

TEST_F(DataTest, MethodTable) {
  EXPECT_EQ(method("int", "add3", {"int", "int", "int"}), 0);
  EXPECT_EQ(method("bool", "ready", {}), 1);
  DataMethodTable& t = *Compilation::GDataMethodTable;
  EXPECT_EQ(t.getMethod("ready")->getReturnType(), "bool");
  EXPECT_EQ(t.getMethod("nope"), nullptr);
  EXPECT_EQ(t.getMethodIndex("add3"), 0);
  EXPECT_LT(t.getMethodIndex("nope"), 0);
  EXPECT_EQ(t.getMethodById(1)->getName(), "ready");
  EXPECT_EQ(t.getMethodById(2), nullptr);

  EXPECT_EQ(text([&](std::ostream& o) { t.C_put(o); }),
            "extern int add3(int, int, int);\nextern bool ready();\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.CSharp_put(o); }),
            "public int add3(int, int, int);\npublic bool ready();\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.LUSTRE_put(o); }), "");
  EXPECT_EQ(text([&](std::ostream& o) { t.print(o, false); }),
            "method:\nint add3(int, int, int);\nbool ready();\n\n");
  EXPECT_EQ(text([&](std::ostream& o) { t.print(o, true); }),
            "method:\n   0: int add3(int, int, int);\n   1: bool ready();\n\n");
  EXPECT_EQ(text([&](std::ostream& o) { o << *t.getMethod("add3"); }), "int add3(int, int, int)");

  // Null return type and name are empty; the argument list is copied.
  std::list<std::string> args{"int"};
  MethodDecl m(static_cast<const std::string*>(nullptr), nullptr, &args);
  args.push_back("bool");
  EXPECT_EQ(text([&](std::ostream& o) { m.print(o); }), " (int)");
  EXPECT_EQ(m.getIndex(), -1);
  EXPECT_TRUE(MethodDecl("int", "f", nullptr) == MethodDecl("int", "f", nullptr));
  EXPECT_TRUE(MethodDecl("int", "f", &args) != MethodDecl("int", "f", nullptr));

  EXPECT_EXIT(method("real", "add3", {}), testing::ExitedWithCode(1),
              exact("Error: Already defined : add3: overloading_of_method_not_yet_implemented"));
}

TEST_F(DataTest, ConstantNumbering) {
  DataConstantTable& t = *Compilation::GDataConstantTable;
  constant("int", "C__1", "1");
  // A computed value keeps -1 and is not reachable by number.
  auto* computed = new ConstantDecl(
      "int", "two", new std::map<int, DataExpr*>{{TLanguage::DEFAULT, new DataBinaryOp(DataExpr::Plus, new DataConstant(0), new DataConstant(0))}});
  t.addConstant(computed);
  auto* external = new ConstantDecl("real", "pi", nullptr);
  t.addConstant(external);
  // "T c := ;" has no value at all.
  auto* empty = new ConstantDecl("int", "none", new std::map<int, DataExpr*>{{TLanguage::DEFAULT, nullptr}});
  t.addConstant(empty);

  EXPECT_EQ(computed->getConstantIndex(), -1);
  EXPECT_EQ(external->getConstantIndex(), 1);
  EXPECT_EQ(empty->getValueTable(), nullptr);
  EXPECT_EQ(empty->getConstantIndex(), 2);
  EXPECT_EQ(t.getConstantById(1), external);
  EXPECT_EQ(t.getConstantById(-1), nullptr);
  EXPECT_EQ(t.getConstantIndex("two"), -1);
  EXPECT_EQ(t.getConstantIndex("nope"), -1);
  EXPECT_EQ(t.getConstant("two"), computed);
  EXPECT_TRUE(t.isAlreadyDefined("pi"));
  EXPECT_FALSE(t.isAlreadyDefined("PI"));
  EXPECT_EQ(computed->getEvalIndex(), -1);

  // Listings show numbered constants only.
  EXPECT_EQ(text([&](std::ostream& o) { t.print(o, true); }),
            "constant:\n   0: int C__1 value: 1;\n   1: real pi;\n   2: int none;\n\n");

  EXPECT_EXIT(
      {
        t.addConstant(new ConstantDecl("int", "pi", nullptr));
      },
      testing::ExitedWithCode(1),
      exact("Warning: constant pi already defined!\nError: Already defined : pi: constant"));
}

// Value of each language form for a constant with the given table.
TEST_F(DataTest, ConstantDeclarationsPerLanguage) {
  struct Case {
    const char* what;
    std::map<int, std::string> values;  // empty: no value table
    const char *c, *csharp, *lustre, *esterel, *vhdl;
  };
  const Case cases[] = {
      {"no value", {},
       "extern const int k;", "public static int k;", "const  k;", "constant  k: int;",
       "constant k : int;"},
      {"default alone", {{TLanguage::DEFAULT, "7"}},
       "const int k = 7;", "private const int k = 7;", "const  k = 7;", "constant  k: int;",
       "constant k : int := 7;"},
      {"each language",
       {{TLanguage::C, "1"}, {TLanguage::CSHARP, "2"}, {TLanguage::LUSTRE, "3"},
        {TLanguage::VHDL, "4"}, {TLanguage::DEFAULT, "0"}},
       "const int k = 1;", "private const int k = 2;", "const  k = 3;", "constant  k: int;",
       "constant k : int := 4;"},
      {"some languages", {{TLanguage::VHDL, "x\"0F\""}, {TLanguage::DEFAULT, "15"}},
       "const int k = 15;", "private const int k = 15;", "const  k = 15;",
       "constant  k: int;", "constant k : int := x\"0F\";"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::map<int, DataExpr*>* table = nullptr;
    if (!c.values.empty()) {
      table = new std::map<int, DataExpr*>();
      for (const auto& [language, v] : c.values) (*table)[language] = new DataValue(v);
    }
    ConstantDecl decl("int", "k", table);
    EXPECT_EQ(text([&](std::ostream& o) { decl.C_put(o, nullptr); }), c.c);
    EXPECT_EQ(text([&](std::ostream& o) { decl.CSharp_put(o, nullptr); }), c.csharp);
    EXPECT_EQ(text([&](std::ostream& o) { decl.LUSTRE_put(o, nullptr); }), c.lustre);
    EXPECT_EQ(text([&](std::ostream& o) { decl.ESTEREL_put(o, nullptr); }), c.esterel);
    EXPECT_EQ(text([&](std::ostream& o) { decl.VHDL_put(o, nullptr); }), c.vhdl);
  }

  // The table forms put a line end behind each declaration.
  constant("int", "one", "1");
  Compilation::GDataConstantTable->addConstant(new ConstantDecl("bool", "flag", nullptr));
  EXPECT_EQ(text([&](std::ostream& o) { Compilation::GDataConstantTable->C_put(o, nullptr); }),
            "const int one = 1;\nextern const bool flag;\n");
  EXPECT_EQ(text([&](std::ostream& o) { Compilation::GDataConstantTable->VHDL_put(o, nullptr); }),
            "constant one : int := 1;\nconstant flag : bool;\n");

  // A value for another language only.
  ConstantDecl vhdlOnly("int", "v", new std::map<int, DataExpr*>{{TLanguage::VHDL, new DataValue("1")}});
  std::ostringstream sink;
  const std::pair<const char*, std::function<void()>> missing[] = {
      {"C", [&] { vhdlOnly.C_put(sink, nullptr); }},
      {"CSharp", [&] { vhdlOnly.CSharp_put(sink, nullptr); }},
      {"LUSTRE", [&] { vhdlOnly.LUSTRE_put(sink, nullptr); }},
  };
  for (const auto& [language, put] : missing)
    EXPECT_EXIT(put(), testing::ExitedWithCode(1),
                exact(std::string("ERROR: no initial value provided for ") + language +
                      " language for the constant: \"v\""));
}

TEST_F(DataTest, ConstantDebugTexts) {
  ConstantDecl decl("int", "k",
                    new std::map<int, DataExpr*>{{TLanguage::C, new DataValue("1")},
                                                 {TLanguage::ESTEREL, new DataValue("2")},
                                                 {TLanguage::DEFAULT, new DataValue("3")}});
  EXPECT_EQ(text([&](std::ostream& o) { decl.print(o); }), "int k value: C:1 Esterel:2 default:3");
  EXPECT_EQ(text([&](std::ostream& o) { decl.DEBUG_put(o, nullptr); }),
            "int k:c=number:-1 (value=\"1\"):esterel=number:-1 (value=\"2\")"
            ":default=number:-1 (value=\"3\")");
  ConstantDecl ext("real", "pi", nullptr);
  EXPECT_EQ(text([&](std::ostream& o) { ext.DEBUG_put(o, nullptr); }), "extern real pi");

  ConstantDecl wrong("int", "w", new std::map<int, DataExpr*>{{9, new DataValue("1")}});
  std::ostringstream sink;
  EXPECT_EXIT(wrong.print(sink), testing::ExitedWithCode(1),
              exact("****error:ConstantDecl:print: constant:w : wrong target language"));
  EXPECT_EXIT(wrong.DEBUG_put(sink, nullptr), testing::ExitedWithCode(1),
              exact("*****internal error: ConstantDecl::DEBUG_put: constant w wrong target "
                    "language specification"));
}

TEST_F(DataTest, OperatorTexts) {
  struct Case {
    int op;
    const char *c, *csharp, *sync, *debug;
  };
  const Case cases[] = {
      {DataExpr::Plus, " add_T", " + ", " + ", " + "},
      {DataExpr::Minus, " sub_T", " - ", " - ", " - "},
      {DataExpr::Mult, " mult_T", " * ", " * ", " * "},
      {DataExpr::Div, " div_T", " / ", " / ", " / "},
      {DataExpr::Uminus, " neg_T", " -", " -", " -"},
      {DataExpr::And, " && ", " && ", " and ", " and "},
      {DataExpr::Or, " || ", " | ", " or ", " or "},
      {DataExpr::Not, " !", " !", " not", " not"},
      {DataExpr::Eq, " eq_T", " == ", " = ", " == "},
      {DataExpr::Neq, " neq_T", " != ", " <> ", " <> "},
      {DataExpr::Inf, " less_T", " < ", " < ", " < "},
      {DataExpr::Infe, " lesseq_T", " <= ", " <= ", " <= "},
      {DataExpr::Sup, " sup_T", " > ", " > ", " > "},
      {DataExpr::Supe, " supeq_T", " >= ", " >= ", " >= "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.op);
    EXPECT_EQ(DataExpr::C_opname(c.op, "T"), c.c);
    EXPECT_EQ(DataExpr::CSharp_opname(c.op), c.csharp);
    EXPECT_EQ(DataExpr::QUARNS_opname(c.op), c.csharp);
    EXPECT_EQ(DataExpr::LUSTRE_opname(c.op), c.sync);
    EXPECT_EQ(DataExpr::ESTEREL_opname(c.op), c.sync);
    EXPECT_EQ(DataExpr::VHDL_opname(c.op), c.sync);
    EXPECT_EQ(DataExpr::DEBUG_opname(c.op), c.debug);
  }

  const std::pair<const char*, std::function<void()>> invalid[] = {
      {"DataExpr::C_opname: invalid_operator", [] { DataExpr::C_opname(DataExpr::SignalVal, "T"); }},
      {"DataExpr::CShap_opname: invalid_operator", [] { DataExpr::CSharp_opname(15); }},
      {"DataExpr::QUARNS_opname: invalid_operator", [] { DataExpr::QUARNS_opname(-1); }},
      {"DataExpr::LUSTRE_opname: invalid_operator", [] { DataExpr::LUSTRE_opname(14); }},
      {"DataExpr::ESTEREL_opname: invalid_operator", [] { DataExpr::ESTEREL_opname(14); }},
      {"DataExpr::VHDL_opname: invalid_operator", [] { DataExpr::VHDL_opname(14); }},
  };
  for (const auto& [message, call] : invalid)
    EXPECT_EXIT(call(), testing::ExitedWithCode(1),
                exact(std::string("Error: Illegal operation!\n") + message));

  testing::internal::CaptureStderr();
  EXPECT_EQ(DataExpr::DEBUG_opname(14), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "in DataExpr::_opname():14 is an invalid_operator\n");
}

TEST_F(DataTest, ExpressionTextsPerLanguage) {
  DataConstant* a = constant("int", "a", "1");
  DataConstant* b = constant("int", "b", "2");
  DataConstant* t = constant("bool", "t", "true");
  int f = method("int", "f", {"int", "bool"});
  int g = method("bool", "g", {});

  struct Case {
    const char* what;
    DataExpr* e;
    const char *c, *csharp, *lustre, *vhdl;
  };
  const Case cases[] = {
      {"constant", a, "a", "a", "a", "a"},
      {"method call", new DataMethodCall(f, new std::list<DataExpr*>{a, t}), "f(a, t)", "f(a, t)",
       "f(a, t)", "f(a, t)"},
      {"call without arguments", new DataMethodCall(g, nullptr), "g()", "g()", "g()", "g()"},
      {"arithmetic", new DataBinaryOp(DataExpr::Plus, a, b), " add_int(a,b)", "(a + b)",
       "(a + b)", "(a + b)"},
      {"comparison", new DataBinaryOp(DataExpr::Infe, a, b), " lesseq_int(a,b)", "(a <= b)",
       "(a <= b)", "'1' when (a <= b) else '0'"},
      {"and", new DataBinaryOp(DataExpr::And, t, t), "t && t", "(t && t)", "(t and t)",
       "(t and t)"},
      {"or", new DataBinaryOp(DataExpr::Or, t, t), "t || t", "(t | t)", "(t or t)", "(t or t)"},
      {"minus", new DataUnaryOp(DataExpr::Uminus, a), " neg_int(a)", " -a", " -a", " -a"},
      {"not", new DataUnaryOp(DataExpr::Not, t), " !(t)", " !t", " not t", " not t"},
      {"nested",
       new DataBinaryOp(DataExpr::Mult, new DataMethodCall(f, new std::list<DataExpr*>{a, t}),
                        new DataUnaryOp(DataExpr::Uminus, b)),
       " mult_int(f(a, t), neg_int(b))", "(f(a, t) *  -b)", "(f(a, t) *  -b)", "(f(a, t) *  -b)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->C_put(o, nullptr); }), c.c);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->CSharp_put(o, nullptr); }), c.csharp);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->LUSTRE_put(o, nullptr); }), c.lustre);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->ESTEREL_put(o, nullptr); }), c.lustre);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->VHDL_put(o, nullptr); }), c.vhdl);
  }
  DataValue literal("0x1F");
  for (auto put : {&DataExpr::C_put, &DataExpr::CSharp_put, &DataExpr::LUSTRE_put,
                   &DataExpr::ESTEREL_put, &DataExpr::VHDL_put})
    EXPECT_EQ(text([&](std::ostream& o) { (literal.*put)(o, nullptr); }), "0x1F");
}

TEST_F(DataTest, Typing) {
  DataConstant* one = constant("int", "one", "1");
  DataConstant* yes = constant("bool", "yes", "true");
  int f = method("real", "f", {"int"});

  EXPECT_EQ(one->getType(nullptr), "int");
  EXPECT_EQ(DataMethodCall(f, new std::list<DataExpr*>{one}).getType(nullptr), "real");
  EXPECT_EQ(DataUnaryOp(DataExpr::Not, yes).getType(nullptr), "bool");
  // A comparison has the type of its operands: no "bool" is assumed.
  EXPECT_EQ(DataBinaryOp(DataExpr::Eq, one, one).getType(nullptr), "int");

  // A set type is kept: getType doesn't compute again.
  DataUnaryOp typed(DataExpr::Uminus, one);
  typed.setType("long");
  EXPECT_EQ(typed.getType(nullptr), "long");
  EXPECT_EQ(typed.getType(), "long");

  // Different operand types are reported and typed "?type_error?", without ending the run.
  testing::internal::CaptureStderr();
  DataBinaryOp mixed(DataExpr::Plus, one, yes);
  EXPECT_EQ(mixed.getType(nullptr), "?type_error?");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "*** Type check error in binary operator: type: \"int\" differs from type: "
            "\"bool\" --> return \"?type_error?\"\n");

  const std::pair<const char*, std::function<void()>> failures[] = {
      {"Error: Undefined constant: constant: ", [] { DataConstant(42).getType(nullptr); }},
      {"Error: Undefined type: 3.5", [] { DataValue("3.5").getType(nullptr); }},
      {"Error: Undefined method: method", [] { DataMethodCall(7, nullptr).getType(nullptr); }},
      {"Error: Undefined constant: 42: constant_table", [] { DataConstant(42).setIndex(0); }},
  };
  for (const auto& [message, call] : failures)
    EXPECT_EXIT(call(), testing::ExitedWithCode(1), exact(message));
}

TEST_F(DataTest, CopiesAndDependencies) {
  DataConstant* one = constant("int", "one", "1");
  int f = method("int", "f", {"int", "int"});
  auto* tree = new DataBinaryOp(
      DataExpr::Minus, new DataMethodCall(f, new std::list<DataExpr*>{one, one}),
      new DataUnaryOp(DataExpr::Uminus, one));
  tree->setIndex(5);

  DataExpr* copies[] = {tree->duplicate(), tree->changeModule(nullptr, nullptr),
                        tree->instanciate(nullptr, nullptr, nullptr),
                        tree->applyRenaming(nullptr, nullptr)};
  for (DataExpr* copy : copies) {
    ASSERT_NE(copy, tree);
    EXPECT_TRUE(copy->isDataBinaryOp());
    EXPECT_FALSE(copy->hasIndex());
    auto* op = static_cast<DataBinaryOp*>(copy);
    EXPECT_NE(op->getLeft(), tree->getLeft());
    EXPECT_NE(op->getRight(), tree->getRight());
    EXPECT_EQ(text([&](std::ostream& o) { copy->C_put(o, nullptr); }),
              " sub_int(f(one, one), neg_int(one))");
  }
  DataValue literal("9");
  ConstantDecl decl("int", "nine", nullptr);
  literal.setConstDecl(&decl);
  auto* copy = static_cast<DataValue*>(literal.duplicate());
  EXPECT_EQ(copy->getText(), "9");
  EXPECT_EQ(copy->getConstDecl(), &decl);

  // Without signals there are no dependencies.
  EXPECT_EQ(tree->computeDependencySet(), nullptr);
  EXPECT_EQ(DataMethodCall(f, nullptr).computeDependencySet(), nullptr);
  std::set<Signal*> deps;
  tree->computeValueSignalDependencies(deps);
  EXPECT_TRUE(deps.empty());

  EXPECT_EQ(text([&](std::ostream& o) { tree->print_debug(o); }), "(f(C: 0, C: 0) -  -(C: 0))");
  EXPECT_TRUE(one->isDataConstant() && !one->isDataValue() && literal.isDataValue());
}

// The evaluation table of .qnc files is flat: arguments are numbers of further entries,
// and a constant is pushed once.
TEST_F(DataTest, QncEvaluationEntries) {
  DataConstant* one = constant("int", "one", "1");
  auto* computed = new ConstantDecl(
      "int", "c2", new std::map<int, DataExpr*>{{TLanguage::C, new DataValue("2")}, {TLanguage::DEFAULT, new DataValue("2")}});
  Compilation::GDataConstantTable->addConstant(computed);
  DataConstant* two = new DataConstant(computed->getConstantIndex());
  int f = method("int", "f", {"int", "int"});
  // Type index of "int" is 0, of "bool" 1.
  auto* call = new DataMethodCall(f, new std::list<DataExpr*>{
                                         one, new DataBinaryOp(DataExpr::Plus, one, two)});
  auto* root = new DataUnaryOp(DataExpr::Uminus, call);
  root->setIndex(0);

  std::list<DataExpr*> list{root};
  int next = 1;
  std::ostringstream out;
  for (auto it = list.begin(); it != list.end(); ++it) {
    out << (*it)->getIndex() << ": ";
    (*it)->QNC_put(out, nullptr, nullptr, list, next, 1);
    out << ";\n";
  }
  EXPECT_EQ(out.str(),
            "0: %%4(1)\n;\n"
            "1: %0(2, 3);\n"
            "2: $0;\n"
            "3: %%0(2, 4);\n"
            "4: $1;\n");
  EXPECT_EQ(next, 5);
  // The DEFAULT-only constant lends its literal to the table; the other one stands itself.
  EXPECT_EQ(Compilation::GDataConstantTable->getConstant("one")->getEvalIndex(), 2);
  EXPECT_EQ(computed->getEvalIndex(), 4);
  EXPECT_TRUE((*std::next(list.begin(), 2))->isDataValue());
  EXPECT_EQ(*std::next(list.begin(), 4), two);

  auto* bogus = new DataConstant(99);
  EXPECT_EXIT(bogus->QNC_put(out, nullptr, nullptr, list, next, 1), testing::ExitedWithCode(1),
              exact("Error: Undefined constant: 99 "));
}

TEST_F(DataTest, DebugTexts) {
  DataConstant* one = constant("int", "one", "1");
  int f = method("int", "f", {"int"});
  struct Case {
    const char* what;
    DataExpr* e;
    const char* text;
  };
  const Case cases[] = {
      {"constant", one, "CONSTANT one$(number:-1 (value=\"1\"))"},
      {"call", new DataMethodCall(f, new std::list<DataExpr*>{one}),
       "METHOD number0(CONSTANT one$(number:-1 (value=\"1\")))"},
      {"binary", new DataBinaryOp(DataExpr::Neq, one, nullptr),
       "PREDEFINE BINARY OP: <> (CONSTANT one$(number:-1 (value=\"1\")), abnormal null! Right "
       "argument of a binary operator have to be defined ...)"},
      {"unary", new DataUnaryOp(DataExpr::Not, nullptr),
       "UNARY OP number:7(abnormal null! Argument of an unary operator have to be defined ...)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(text([&](std::ostream& o) { c.e->DEBUG_put(o, nullptr); }), c.text);
  }
}

}  // namespace
