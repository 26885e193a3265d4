#!/usr/bin/env python3
"""Replays a reaction trace on a NuSMV model as quarnc writes it.

    smv_eval.py MODEL.smv OUTPUTS TRACE

Reads the subset the writer emits: two MODULEs, the first with parameters, VAR of
booleans, ASSIGN with init()/next(), DEFINE, and expressions over names, TRUE, FALSE,
!, &, |, -> and parentheses; MODULE main declares the free inputs, instantiates the
first module with them and leaves them free with {FALSE, TRUE}. Every name must be
defined exactly once. OUTPUTS is a comma-separated list of the module's outputs (its
DEFINEs that are visible to the user). Prints "N / OUT ..." per reaction, the outputs
present in that reaction, like the C driver of the traces.
"""
import re
import sys

TOKEN = re.compile(r"\s*(?:(--[^\n]*)|([A-Za-z_][A-Za-z0-9_$#\-]*)|(:=|->|[():;,{}!&|])|(\S))")
KEYWORDS = {"MODULE", "VAR", "ASSIGN", "DEFINE", "init", "next", "boolean", "TRUE", "FALSE"}


class ModelError(Exception):
    pass


def tokens(text):
    out = []
    for m in TOKEN.finditer(text):
        comment, word, sym, bad = m.groups()
        if comment:
            continue
        if bad:
            raise ModelError("unexpected character %r" % bad)
        if word or sym:
            out.append(word or sym)
    return out


class Parser:
    def __init__(self, toks):
        self.t = toks
        self.i = 0

    def peek(self):
        return self.t[self.i] if self.i < len(self.t) else None

    def take(self, want=None):
        tok = self.peek()
        if tok is None:
            raise ModelError("unexpected end of model")
        if want is not None and tok != want:
            raise ModelError("expected %r, got %r" % (want, tok))
        self.i += 1
        return tok

    def name(self):
        tok = self.take()
        if not re.match(r"[A-Za-z_]", tok) or tok in KEYWORDS:
            raise ModelError("expected a name, got %r" % tok)
        return tok

    # expr := or ("->" expr)? ; or := and ("|" and)* ; and := unary ("&" unary)*
    def expr(self):
        left = self.disj()
        if self.peek() == "->":
            self.take()
            return ("|", ("!", left), self.expr())
        return left

    def disj(self):
        e = self.conj()
        while self.peek() == "|":
            self.take()
            e = ("|", e, self.conj())
        return e

    def conj(self):
        e = self.unary()
        while self.peek() == "&":
            self.take()
            e = ("&", e, self.unary())
        return e

    def unary(self):
        tok = self.peek()
        if tok == "!":
            self.take()
            return ("!", self.unary())
        if tok == "(":
            self.take()
            e = self.expr()
            self.take(")")
            return e
        if tok in ("TRUE", "FALSE"):
            self.take()
            return ("const", tok == "TRUE")
        return ("var", self.name())

    def names_in_parens(self):
        self.take("(")
        names = []
        while self.peek() != ")":
            if names:
                self.take(",")
            names.append(self.name())
        self.take(")")
        return names

    def module(self):
        self.take("MODULE")
        mod = {"name": self.name(), "params": [], "vars": [], "init": {}, "next": {},
               "define": {}, "free": [], "instance": None}
        if self.peek() == "(":
            mod["params"] = self.names_in_parens()
        while self.peek() not in (None, "MODULE"):
            section = self.take()
            if section == "VAR":
                while self.peek() not in (None, "MODULE", "VAR", "ASSIGN", "DEFINE"):
                    v = self.name()
                    self.take(":")
                    if self.peek() == "boolean":
                        self.take()
                        mod["vars"].append(v)
                    else:
                        mod["instance"] = (v, self.name(), self.names_in_parens())
                    self.take(";")
            elif section == "ASSIGN":
                while self.peek() not in (None, "MODULE", "VAR", "ASSIGN", "DEFINE"):
                    if self.peek() in ("init", "next"):
                        kind = self.take()
                        self.take("(")
                        v = self.name()
                        self.take(")")
                        self.take(":=")
                        if v in mod[kind]:
                            raise ModelError("%s(%s) assigned twice" % (kind, v))
                        mod[kind][v] = self.expr()
                    else:
                        v = self.name()
                        self.take(":=")
                        self.take("{")
                        self.take("FALSE")
                        self.take(",")
                        self.take("TRUE")
                        self.take("}")
                        mod["free"].append(v)
                    self.take(";")
            elif section == "DEFINE":
                while self.peek() not in (None, "MODULE", "VAR", "ASSIGN", "DEFINE"):
                    v = self.name()
                    self.take(":=")
                    if v in mod["define"]:
                        raise ModelError("%s defined twice" % v)
                    mod["define"][v] = self.expr()
                    self.take(";")
            else:
                raise ModelError("unexpected %r" % section)
        return mod


def check(mod):
    """Every name read is a parameter, a state variable or a DEFINE, once."""
    known = {}
    for kind in ("params", "vars"):
        for v in mod[kind]:
            if v in known:
                raise ModelError("%s declared twice in %s" % (v, mod["name"]))
            known[v] = kind
    for v in mod["define"]:
        if v in known:
            raise ModelError("%s both declared and defined in %s" % (v, mod["name"]))
        known[v] = "define"
    for v in mod["vars"]:
        if v not in mod["init"] or v not in mod["next"]:
            raise ModelError("state variable %s lacks init or next" % v)

    def reads(e):
        if e[0] == "var":
            yield e[1]
        elif e[0] != "const":
            for sub in e[1:]:
                yield from reads(sub)

    for e in list(mod["define"].values()) + list(mod["init"].values()) + list(mod["next"].values()):
        for v in reads(e):
            if v not in known:
                raise ModelError("%s is read but never declared in %s" % (v, mod["name"]))


def evaluate(e, env, mod, cache, stack):
    op = e[0]
    if op == "const":
        return e[1]
    if op == "var":
        v = e[1]
        if v in env:
            return env[v]
        if v not in cache:
            if v in stack:
                raise ModelError("cycle through %s" % v)
            stack.add(v)
            cache[v] = evaluate(mod["define"][v], env, mod, cache, stack)
            stack.discard(v)
        return cache[v]
    if op == "!":
        return not evaluate(e[1], env, mod, cache, stack)
    a = evaluate(e[1], env, mod, cache, stack)
    b = evaluate(e[2], env, mod, cache, stack)
    return (a and b) if op == "&" else (a or b)


def main():
    model_file, outputs_arg, trace_file = sys.argv[1:4]
    with open(model_file) as f:
        p = Parser(tokens(f.read()))
    mod = p.module()
    main_mod = p.module()
    if p.peek() is not None or main_mod["name"] != "main":
        raise ModelError("expected the module and then MODULE main")
    check(mod)
    inst = main_mod["instance"]
    if not inst or inst[1] != mod["name"] or inst[2] != mod["params"]:
        raise ModelError("main does not instantiate %s with its parameters" % mod["name"])
    if sorted(main_mod["free"]) != sorted(main_mod["vars"]) or sorted(main_mod["vars"]) != sorted(mod["params"]):
        raise ModelError("main does not leave exactly the parameters free")
    outputs = [o for o in outputs_arg.split(",") if o]
    for o in outputs:
        if o not in mod["define"]:
            raise ModelError("output %s is not defined" % o)

    state = {}
    for v in mod["vars"]:
        state[v] = evaluate(mod["init"][v], {}, mod, {}, set())
    n = 0
    with open(trace_file) as f:
        for line in f:
            line = line.split("#", 1)[0]
            if not line.strip():
                continue
            if "/" not in line:
                raise ModelError("trace line without '/': " + line)
            n += 1
            present = set()
            for w in line.split("/", 1)[0].split():
                s = w.split("=", 1)[0]
                if s not in mod["params"]:
                    raise ModelError("%s is not an input of %s" % (s, mod["name"]))
                present.add(s)
            env = dict(state)
            for v in mod["params"]:
                env[v] = v in present
            cache = {}
            shown = [o for o in outputs if evaluate(("var", o), env, mod, cache, set())]
            print(" ".join(["%d /" % n] + shown))
            state = {v: evaluate(mod["next"][v], env, mod, cache, set()) for v in mod["vars"]}


if __name__ == "__main__":
    try:
        main()
    except ModelError as e:
        print("smv: " + str(e), file=sys.stderr)
        sys.exit(1)
