"""Reference evaluator: the circuit of each statement, built as the language defines it and
evaluated reaction by reaction, with no BDDs and none of the compiler's reductions.

Every quantity is a pair (over, under) of Boolean terms over named variables. A variable
"s:N" is the over side of N, "v:N" its under side. A signal X has occurrences: X is
occurrence 0, the signal as the world sees it, and X_1, X_2, ... are its sections; the
equation of occurrence 0 ors the sections. An equation's right member is a set of terms
that are or'ed, so that the or of two branch tables is the union of their sets.
"""
import itertools

ZERO, ONE = ('c', 0), ('c', 1)


def V(n):
    return ('v', n)


def NOT(a):
    if a[0] == 'c':
        return ONE if a[1] == 0 else ZERO
    if a[0] == 'not':
        return a[1]
    return ('not', a)


def AND(a, b):
    if a == ZERO or b == ZERO:
        return ZERO
    if a == ONE:
        return b
    if b == ONE:
        return a
    return ('and', a, b)


def OR(a, b):
    if a == ONE or b == ONE:
        return ONE
    if a == ZERO:
        return b
    if b == ZERO:
        return a
    return ('or', a, b)


# Four-valued connectives on pairs (over, under).
def q_or(a, b):
    return (OR(a[0], b[0]), AND(a[1], b[1]))


def q_and(a, b):
    return (AND(a[0], b[0]), OR(a[1], b[1]))


def q_not(a):
    return (a[1], a[0])


def q_np(a):
    return (OR(NOT(a[0]), AND(a[0], a[1])), a[0])


def q_then(k, x):
    return (AND(k[0], x[0]), AND(k[0], x[1]))


def q_else(k, x):
    return (AND(NOT(k[0]), x[0]), AND(NOT(k[0]), x[1]))


def q_dthen(k, x):
    return (AND(k[1], x[0]), AND(k[1], x[1]))


def q_delse(k, x):
    return (AND(NOT(k[1]), x[0]), AND(NOT(k[1]), x[1]))


Q_TRUE, Q_FALSE = (ONE, ZERO), (ZERO, ONE)


def support(t, acc):
    if t[0] == 'v':
        acc.add(t[1])
    elif t[0] != 'c':
        for x in t[1:]:
            support(x, acc)
    return acc


def term_eval(t, env):
    k = t[0]
    if k == 'v':
        return env(t[1])
    if k == 'c':
        return t[1]
    if k == 'not':
        return 1 - term_eval(t[1], env)
    if k == 'and':
        return term_eval(t[1], env) and term_eval(t[2], env)
    return term_eval(t[1], env) or term_eval(t[2], env)


def is_zero(terms):
    """A right member is zero when every term is the zero function of its variables,
    each variable free."""
    for t in terms:
        if t == ZERO:
            continue
        vs = sorted(support(t, set()))
        if len(vs) > 12:
            return False
        for bits in itertools.product((0, 1), repeat=len(vs)):
            env = dict(zip(vs, bits))
            if term_eval(t, env.__getitem__):
                return False
    return True


class Table:
    def __init__(self, eqs=None, occ=None):
        self.eqs = eqs if eqs is not None else {}
        self.occ = occ if occ is not None else {}

    def duplicate(self):
        return Table(dict(self.eqs), dict(self.occ))

    def unify(self, other):
        for var, terms in other.eqs.items():
            self.eqs[var] = self.eqs[var] | terms if var in self.eqs else terms
        for s, n in other.occ.items():
            if self.occ.get(s, -1) < n:
                self.occ[s] = n


class Unsupported(Exception):
    pass


class Cycle(Exception):
    pass


def occ_name(x, n):
    return x if n == 0 else '%s_%d' % (x, n)


class Module:
    def __init__(self, prog):
        self.inputs = list(prog['inputs'])
        self.outputs = list(prog['outputs'])
        self.declared_locals = list(prog['locals'])
        self.locals = []  # names of wires and registers, occurrence 0 only
        self.registers = []  # (current, next, initial)
        self.count = 0
        self.table = Table()
        t = self.table
        # Occurrence 1 of an output or local starts at bottom; occurrence 0 equals it.
        for x in self.outputs + self.declared_locals:
            t.occ[x] = 1
            t.eqs['s:' + occ_name(x, 1)] = frozenset()
            t.eqs['v:' + occ_name(x, 1)] = frozenset()
            t.eqs['s:' + x] = frozenset([V('s:' + occ_name(x, 1))])
            t.eqs['v:' + x] = frozenset([V('v:' + occ_name(x, 1))])
        root = prog['body']
        w = self.compile(root, t)
        # The module's wires: the root's start is the module's, and so on.
        self.equation(t, w['S'], (V('s:SET'), V('v:SET')))
        self.equation(t, w['R'], (V('s:RESET'), V('v:RESET')))
        self.equation(t, 'RTL', (V('s:' + w['T']), V('v:' + w['T'])))
        self.finalize()

    # ---- signals and equations -------------------------------------------------------
    def leaf(self, name, t, initial):
        if name in self.inputs or initial or t.occ.get(name, 0) == 0:
            return (V('s:' + name), V('v:' + name))
        n = occ_name(name, t.occ[name])
        return (V('s:' + n), V('v:' + n))

    def cond(self, c, t, initial=True):
        k = c[0]
        if k == 'sig':
            return self.leaf(c[1], t, initial)
        if k == 'TT':
            return Q_TRUE
        if k == 'FF':
            return Q_FALSE
        if k == 'not':
            return q_np(self.cond(c[1], t, initial))
        if k == 'abs':
            return q_not(self.cond(c[1], t, initial))
        a, b = self.cond(c[1], t, initial), self.cond(c[2], t, initial)
        return q_or(a, b) if k == 'or' else q_and(a, b)

    def wires(self):
        self.count += 1
        i = self.count
        names = {'S': 'S%d' % i, 'R': 'R%d' % i, 'T': 'T%d' % i, 'id': i}
        self.locals += [names['S'], names['R'], names['T']]
        return names

    def register(self, w, tag='A', initial=0):
        a, ap = '%s%d' % (tag, w['id']), '%s+%d' % (tag, w['id'])
        self.locals += [a, ap]
        self.registers.append((a, ap, initial))
        return a, ap

    def equation(self, t, wire, q):
        """A wire's equation: over from the expression, under the negated over variable."""
        t.eqs['s:' + wire] = frozenset([q[0]])
        t.eqs['v:' + wire] = frozenset([NOT(V('s:' + wire))])

    def register_equation(self, t, a):
        t.eqs['v:' + a] = frozenset([NOT(V('s:' + a))])

    def drive(self, t, x, q, initial):
        """An emission's driver, or'ed into the signal's equations."""
        over = occ_name(x, 0 if initial else t.occ[x])
        under = occ_name(x, t.occ[x])
        if q[0] != ZERO:
            t.eqs['s:' + over] = t.eqs['s:' + over] | {q[0]}
        if q[1] != ZERO:
            t.eqs['v:' + under] = t.eqs['v:' + under] | {q[1]}

    def pre(self, t):
        for x in self.outputs + self.declared_locals:
            if x not in t.occ:
                continue
            n = t.occ[x] + 1
            t.occ[x] = n
            for side in 'sv':
                t.eqs['%s:%s' % (side, occ_name(x, n))] = frozenset()
                t.eqs['%s:%s' % (side, x)] = t.eqs['%s:%s' % (side, x)] | {V('%s:%s' % (side, occ_name(x, n)))}

    # ---- statements ------------------------------------------------------------------
    @staticmethod
    def reincarnate(s):
        k = s[0]
        if k in ('pause', 'wait', 'halt', 'sustain'):
            return False
        if k == 'seq':
            return all(Module.reincarnate(x) for x in s[1])
        if k == 'par':
            return any(Module.reincarnate(x) for x in s[1])
        if k in ('present', 'absent'):
            return Module.reincarnate(s[2]) or (s[3] is not None and Module.reincarnate(s[3]))
        if k == 'loop':
            return Module.reincarnate(s[1])
        return True

    def compile(self, s, t):
        k = s[0]
        w = None
        S = lambda x: (V('s:' + x), V('v:' + x))  # a wire as a four-valued leaf
        if k == 'nothing':
            w = self.wires()
            self.equation(t, w['T'], S(w['S']))
        elif k == 'halt':
            w = self.wires()
            self.equation(t, w['T'], Q_FALSE)
        elif k == 'pause':
            self.pre(t)
            w = self.wires()
            a, ap = self.register(w)
            self.register_equation(t, a)
            self.equation(t, w['T'], S(a))
            self.equation(t, ap, q_and(S(w['S']), q_not(S(w['R']))))
        elif k == 'wait':
            if s[1] != 1:
                return self.compile(('seq', [('wait', 1, s[2])] * s[1]), t)
            self.pre(t)
            w = self.wires()
            kk = self.cond(s[2], t)
            a, ap = self.register(w)
            self.register_equation(t, a)
            self.equation(t, w['T'], q_and(S(a), kk))
            notr = q_not(S(w['R']))
            self.equation(t, ap, q_or(q_and(S(w['S']), notr), q_and(q_and(S(a), notr), q_np(kk))))
        elif k == 'emit':
            w = self.wires()
            self.equation(t, w['T'], S(w['S']))
            self.drive(t, s[1], q_then(S(w['T']), Q_TRUE), False)
        elif k == 'noemit':
            w = self.wires()
            self.equation(t, w['T'], S(w['S']))
            self.drive(t, s[1], q_then(S(w['T']), Q_FALSE), True)
        elif k == 'sustain':
            w = self.wires()
            a, ap = self.register(w)
            kk = self.cond(s[2], t)
            notr = q_not(S(w['R']))
            self.equation(t, ap, q_and(q_or(q_and(S(w['S']), notr), q_and(S(a), notr)), q_np(kk)))
            self.equation(t, w['T'], q_and(q_or(S(a), S(w['S'])), kk))
            self.drive(t, s[1], q_and(q_or(S(a), S(w['S'])), q_np(kk)), True)
        elif k == 'seq':
            cs = [self.compile(x, t) for x in s[1]]
            w = self.wires()
            self.equation(t, cs[0]['S'], S(w['S']))
            for i in range(1, len(cs)):
                self.equation(t, cs[i]['S'], S(cs[i - 1]['T']))
            for c in cs:
                self.equation(t, c['R'], S(w['R']))
            self.equation(t, w['T'], S(cs[-1]['T']))
        elif k == 'loop':
            body = s[1]
            if self.reincarnate(body):
                body = ('seq', [body, body])
            c = self.compile(body, t)
            w = self.wires()
            self.equation(t, c['S'], q_or(S(w['S']), S(c['T'])))
            self.equation(t, c['R'], S(w['R']))
            self.equation(t, w['T'], Q_FALSE)
        elif k in ('present', 'absent'):
            then_, else_ = s[2], s[3]
            if else_ is not None:
                t2 = t.duplicate()
                ct = self.compile(then_, t)
                ce = self.compile(else_, t2)
                t.unify(t2)
            else:
                ct = self.compile(then_, t)
            w = self.wires()
            kk = self.cond(s[1], t)
            gate, other = (q_then, q_else) if k == 'present' else (q_dthen, q_delse)
            self.equation(t, ct['S'], gate(kk, S(w['S'])))
            if else_ is not None:
                self.equation(t, ce['S'], other(kk, S(w['S'])))
            self.equation(t, ct['R'], S(w['R']))
            if else_ is not None:
                self.equation(t, ce['R'], S(w['R']))
                self.equation(t, w['T'], q_or(S(ct['T']), S(ce['T'])))
            else:
                self.equation(t, w['T'], q_or(S(ct['T']), other(kk, S(w['S']))))
        elif k == 'par':
            n = len(s[1])
            copies = [t.duplicate() for _ in range(1, n)]
            cs = [self.compile(s[1][0], t)]
            for i in range(1, n):
                cs.append(self.compile(s[1][i], copies[i - 1]))
                t.unify(copies[i - 1])
            w = self.wires()
            regs = []
            rs = []
            for i in range(n):
                regs.append(self.register(w, 'P%d_' % i))
                self.register_equation(t, regs[-1][0])
                rs.append('r%d_%d' % (w['id'], i))
                self.locals.append(rs[-1])
            for c in cs:
                self.equation(t, c['S'], S(w['S']))
                self.equation(t, c['R'], S(w['R']))
            self.equation(t, rs[0], q_or(S(regs[0][0]), S(cs[0]['T'])))
            for i in range(1, n):
                self.equation(t, rs[i], q_and(q_or(S(regs[i][0]), S(cs[i]['T'])), S(rs[i - 1])))
            self.equation(t, w['T'], S(rs[n - 1]))
            g = q_and(q_not(S(w['T'])), q_not(S(w['R'])))
            for i in range(n):
                self.equation(t, regs[i][1], q_and(q_or(S(regs[i][0]), S(cs[i]['T'])), g))
        elif k in ('weak', 'strong'):
            c = self.compile(s[1], t)
            w = self.wires()
            kk = self.cond(s[2], t)
            a, ap = self.register(w)
            self.register_equation(t, a)
            notr = q_not(S(w['R']))
            self.equation(t, c['S'], S(w['S']))
            self.equation(t, c['R'], q_or(q_and(S(a), q_and(notr, kk)), S(w['R'])))
            self.equation(t, w['T'], q_or(S(c['T']), q_and(kk, S(a))))
            self.equation(t, ap, q_and(notr, q_and(q_or(q_and(S(a), q_np(kk)), S(w['S'])),
                                                      q_not(S(c['T'])))))
            if k == 'strong':
                # The emissions of the instant of the firing go: every section of every
                # output and local that this table holds now, with the current forms.
                kc = self.cond(s[2], t, initial=False)
                g = OR(OR(kc[1], NOT(kc[0])), NOT(V('s:' + a)))
                if g != ONE:
                    for x in self.outputs + self.declared_locals:
                        for n in range(1, t.occ.get(x, 0) + 1):
                            for side in 'sv':
                                var = '%s:%s' % (side, occ_name(x, n))
                                if var in t.eqs:
                                    t.eqs[var] = frozenset(AND(g, u) for u in t.eqs[var])
        else:
            raise Unsupported(k)
        return w

    # ---- closing the module ------------------------------------------------------------
    def finalize(self):
        eqs = self.table.eqs
        for x in self.inputs:
            eqs['v:' + x] = frozenset([NOT(V('s:' + x))])
        for x in self.outputs:
            for n in range(0, self.table.occ.get(x, 0) + 1):
                self.close(occ_name(x, n), output=True, register=False)
        regs = {r[0] for r in self.registers} | {r[1] for r in self.registers}
        for x in self.declared_locals:
            for n in range(0, self.table.occ.get(x, 0) + 1):
                self.close(occ_name(x, n), output=False, register=False)
        for x in self.locals:
            self.close(x, output=False, register=x in regs)
        # The boot register: SET in the first reaction only, RESET never.
        self.registers.append(('boot', 'boot+', 1))
        eqs['s:boot+'] = frozenset([ZERO])
        eqs['s:SET'] = frozenset([V('s:boot')])
        eqs['v:SET'] = frozenset([NOT(V('s:SET'))])
        eqs['s:RESET'] = frozenset([ZERO])
        eqs['v:RESET'] = frozenset([ONE])

    def close(self, n, output, register):
        eqs = self.table.eqs
        o, u = eqs.get('s:' + n), eqs.get('v:' + n)
        if u is None:
            eqs['v:' + n] = frozenset([NOT(V('s:' + n))])
        elif o is not None:
            # Nothing emits it and nothing excludes it in this section: false.
            if output and is_zero(o) and is_zero(u):
                eqs['v:' + n] = frozenset([ONE])
        elif not register or output:
            eqs['s:' + n] = frozenset([NOT(V('v:' + n))])

    # ---- reactions ---------------------------------------------------------------------
    def run(self, trace):
        """trace: list of sets of present inputs; gives the list of sets of present outputs."""
        state = {r[0]: r[2] for r in self.registers}
        out = []
        eqs = self.table.eqs
        for present in trace:
            memo = {}
            busy = set()

            def val(var):
                if var in memo:
                    return memo[var]
                if var.startswith('s:') and var[2:] in self.inputs:
                    return 1 if var[2:] in present else 0
                if var.startswith('s:') and var[2:] in state:
                    return state[var[2:]]
                if var not in eqs:
                    raise Unsupported('free variable ' + var)
                if var in busy:
                    raise Cycle(var)
                busy.add(var)
                r = 0
                for term in eqs[var]:
                    if term_eval(term, val):
                        r = 1
                        break
                busy.discard(var)
                memo[var] = r
                return r
            out.append({x for x in self.outputs if val('s:' + x)})
            state = {r[0]: val('s:' + r[1]) for r in self.registers}
        return out
