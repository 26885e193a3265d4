"""Random Quarn programs: a statement tree per module, printed as source.

A program is a dict: name, inputs, outputs, locals (lists of names), valued (set of
valued names, type int), body (a statement tuple), or an automaton or Mealy machine
body given as text, and submodules it runs. Statement tuples:
  ('nothing',) ('halt',) ('pause',) ('emit', X) ('emitv', X, Y) ('noemit', X)
  ('sustain', X, c) ('present', c, then, else|None) ('absent', c, then, else|None)
  ('loop', s) ('seq', [s...]) ('par', [s...]) ('weak', s, c) ('strong', s, c)
  ('wait', n, c) ('run', module, [(inner, outer)...])
Conditions: ('sig', X) ('and', a, b) ('or', a, b) ('not', a) ('abs', a) ('TT',) ('FF',)
"""
import random

# Constructs outside this set are compiled and checked, but not evaluated by the reference.
REFERENCE_STATEMENTS = {'nothing', 'halt', 'pause', 'emit', 'noemit', 'sustain', 'present',
                        'absent', 'loop', 'seq', 'par', 'weak', 'strong', 'wait'}


class Gen:
    def __init__(self, rnd, inputs, outputs, locals_, valued=(), runs=()):
        self.r = rnd
        self.inputs, self.outputs, self.locals = inputs, outputs, locals_
        self.valued = set(valued)
        self.runs = list(runs)  # (module dict) that may be run

    def cond(self, depth=0):
        r = self.r
        k = r.random()
        if depth > 1 or k < 0.55:
            pool = self.inputs * 3 + self.outputs + self.locals
            if r.random() < 0.04:
                return (r.choice(['TT', 'FF']),)
            return ('sig', r.choice(pool))
        op = r.choice(['and', 'or', 'not', 'abs'])
        if op in ('not', 'abs'):
            return (op, self.cond(depth + 1))
        return (op, self.cond(depth + 1), self.cond(depth + 1))

    def emitted(self):
        return self.r.choice(self.outputs + self.locals)

    def stmt(self, depth=0):
        r = self.r
        leaves = ['nothing', 'pause', 'pause', 'emit', 'emit', 'emit', 'noemit', 'halt', 'wait',
                  'sustain']
        if self.runs:
            leaves += ['run']
        nodes = ['seq', 'seq', 'seq', 'par', 'present', 'absent', 'loop', 'weak', 'strong']
        kind = r.choice(leaves if depth >= 4 or r.random() < 0.35 + 0.12 * depth else nodes)
        if kind in ('nothing', 'pause', 'halt'):
            return (kind,)
        if kind == 'emit':
            x = self.emitted()
            if x in self.valued:
                src = [y for y in self.inputs + self.outputs + self.locals if y in self.valued]
                return ('emitv', x, r.choice(src))
            return ('emit', x)
        if kind == 'noemit':
            return ('noemit', r.choice([x for x in self.outputs + self.locals if x not in self.valued]
                                       or self.outputs))
        if kind == 'sustain':
            xs = [x for x in self.outputs + self.locals if x not in self.valued]
            return ('sustain', r.choice(xs or self.outputs), self.cond())
        if kind == 'wait':
            return ('wait', r.choice([1, 1, 1, 2]), self.cond())
        if kind == 'run':
            sub = r.choice(self.runs)
            # GO is always renamed; the other signals meet the caller's by name or renamed.
            pairs = [('GO', r.choice(self.inputs + self.locals))]
            for s in sub['inputs'] + sub['outputs']:
                if s != 'GO' and r.random() < 0.5:
                    pool = self.inputs + self.locals if s in sub['inputs'] else self.outputs + self.locals
                    pairs.append((s, r.choice(pool)))
            return ('run', sub['name'], pairs)
        if kind in ('seq', 'par'):
            n = r.choice([2, 2, 2, 3]) if kind == 'par' else r.choice([2, 2, 3, 3, 4])
            return (kind, [self.stmt(depth + 1) for _ in range(n)])
        if kind in ('present', 'absent'):
            other = self.stmt(depth + 1) if r.random() < 0.6 else None
            return (kind, self.cond(), self.stmt(depth + 1), other)
        if kind == 'loop':
            body = self.stmt(depth + 1)
            # A loop body must not terminate in its start instant: a pause in it.
            return ('loop', ('seq', [body, ('pause',)]) if r.random() < 0.8 else body)
        return (kind, self.stmt(depth + 1), self.cond())


def cond_text(c):
    k = c[0]
    if k == 'sig':
        return c[1]
    if k in ('TT', 'FF'):
        return k
    if k in ('not', 'abs'):
        return '%s (%s)' % (k, cond_text(c[1]))
    return '(%s %s %s)' % (cond_text(c[1]), k, cond_text(c[2]))


def stmt_text(s):
    k = s[0]
    if k in ('nothing', 'pause', 'halt'):
        return k
    if k == 'emit':
        return 'emit ' + s[1]
    if k == 'emitv':
        return 'emit %s($%s + one)' % (s[1], s[2])
    if k == 'noemit':
        return 'noemit ' + s[1]
    if k == 'sustain':
        return 'sustain %s until %s' % (s[1], cond_text(s[2]))
    if k == 'wait':
        return 'wait %s' % cond_text(s[2]) if s[1] == 1 else 'wait %d %s' % (s[1], cond_text(s[2]))
    if k == 'seq':
        return '{ ' + ' >> '.join(stmt_text(x) for x in s[1]) + ' }'
    if k == 'par':
        return '{ ' + ' || '.join(stmt_text(x) for x in s[1]) + ' }'
    if k in ('present', 'absent'):
        t = '{ %s %s { %s }' % (k, cond_text(s[1]), stmt_text(s[2]))
        if s[3] is not None:
            t += ' else { %s }' % stmt_text(s[3])
        return t + ' }'
    if k == 'loop':
        return 'loop { %s }' % stmt_text(s[1])
    if k in ('weak', 'strong'):
        return '%s abort { %s } when %s' % (k, stmt_text(s[1]), cond_text(s[2]))
    if k == 'run':
        if not s[2]:
            return 'run ' + s[1]
        return 'run %s [%s]' % (s[1], ', '.join('%s \\ %s' % (o, i) for i, o in s[2]))
    raise ValueError(k)


def uses(s, kinds):
    """True if the statement tree holds a statement of one of these kinds."""
    if not isinstance(s, tuple) or not s:
        return False
    if s[0] in kinds:
        return True
    return any(uses(x, kinds) for x in s[1:] if isinstance(x, tuple)) or \
        any(uses(x, kinds) for x in s[1:] if isinstance(x, list) for x in x)


def decl(names, valued):
    return ', '.join(n + (' : int' if n in valued else '') for n in names)


def module_text(m):
    lines = ['module %s:' % m['name']]
    if m['inputs']:
        lines.append('Input: %s;' % decl(m['inputs'], m['valued']))
    if m['outputs']:
        lines.append('Output: %s;' % decl(m['outputs'], m['valued']))
    if m['locals']:
        lines.append('Local: %s;' % decl(m['locals'], m['valued']))
    lines.append(m['text'] if 'text' in m else stmt_text(m['body']))
    lines.append('end')
    return '\n'.join(lines) + '\n'


DATA = 'data:\nType: int;\nConstant:\nint one := 1;\nend data\n\n'


def program_text(p):
    mods = [p] + p.get('subs', [])
    data = any(m['valued'] for m in mods)
    return (DATA if data else '') + '\n'.join(module_text(m) for m in mods)


def automaton_text(r, inputs, outputs):
    n = r.choice([2, 3])
    states = ['s%d' % i for i in range(n)]
    lines = ['automaton']
    final = r.random() < 0.3
    for s in states:
        act = ' / ' + r.choice(outputs) if r.random() < 0.5 else ''
        lines.append('state: %s%s;' % (s, act))
    if final:
        lines.append('state: f final;')
    lines.append('transition:')
    lines.append('initial-> s0;')
    for i, s in enumerate(states):
        targets = [t for t in states if t != s] + (['f'] if final else [])
        used = set()
        for j in range(r.choice([1, 2])):
            arrow = r.choice(['->', 'weak->', 'strong->'])
            trig = r.choice(inputs)
            prio = '%d ' % (j + 1)
            act = ' / ' + r.choice(outputs) if r.random() < 0.5 else ''
            t = r.choice(targets)
            if (trig, arrow) in used:
                continue
            used.add((trig, arrow))
            lines.append('%s %s[%s]%s %s %s;' % (s, prio, trig, act, arrow, t))
    return '\n'.join(lines)


def mealy_text(r, inputs, outputs):
    ops = ['and', 'or', 'xor', 'nand', 'nor']
    lines = ['Mealy Machine', 'Register: p : %d : pn, q : %d : qn;' % (r.randint(0, 1), r.randint(0, 1))]

    def rp(d=0):
        if d > 1 or r.random() < 0.4:
            return r.choice(inputs + ['p', 'q', 'p', '1', '0'])
        if r.random() < 0.2:
            return r.choice(['not ', 'abs ']) + '(' + rp(d + 1) + ')'
        return '(%s %s %s)' % (rp(d + 1), r.choice(ops), rp(d + 1))
    lines.append('pn = %s;' % rp())
    lines.append('qn = %s;' % rp())
    for o in outputs:
        lines.append('%s = %s;' % (o, rp()))
    return '\n'.join(lines)


def program(seed):
    """One accepted-looking program; its kind depends on the seed."""
    r = random.Random(seed)
    kind = r.choices(['pure', 'pure', 'pure', 'pure', 'valued', 'run', 'automaton', 'mealy'])[0]
    ni, no, nl = r.randint(1, 3), r.randint(1, 3), r.randint(0, 2)
    inputs = ['I%d' % i for i in range(ni)]
    outputs = ['O%d' % i for i in range(no)]
    locals_ = ['L%d' % i for i in range(nl)]
    name = 'm%d' % seed
    p = {'name': name, 'inputs': inputs, 'outputs': outputs, 'locals': locals_, 'valued': set(),
         'kind': kind, 'subs': []}
    if kind == 'automaton':
        p['locals'] = []
        p['text'] = automaton_text(r, inputs, outputs)
        return p
    if kind == 'mealy':
        p['locals'] = []
        p['text'] = mealy_text(r, inputs, outputs)
        return p
    valued = set()
    if kind == 'valued':
        valued = {'V0', 'W0'}
        p['inputs'] = inputs + ['V0']
        p['outputs'] = outputs + ['W0']
        p['valued'] = valued
    runs = []
    if kind == 'run':
        sub = {'name': name + 'sub', 'inputs': ['GO', 'I0'], 'outputs': ['O0'], 'locals': [],
               'valued': set(), 'subs': []}
        sub['body'] = Gen(r, sub['inputs'], sub['outputs'], [], ()).stmt(2)
        p['subs'] = [sub]
        runs = [sub]
    g = Gen(r, p['inputs'], p['outputs'], locals_, valued, runs)
    p['body'] = g.stmt()
    if kind == 'run' and not uses(p['body'], {'run'}):
        p['body'] = ('seq', [p['body'], ('run', runs[0]['name'], [('GO', 'I0')])])
    return p


# Programs that the compiler must refuse, with a piece of the message it must give.
def refused(seed):
    r = random.Random(seed)
    k = r.choice(['cycle', 'type', 'renaming', 'undeclared', 'emit_input'])
    name = 'x%d' % seed
    if k == 'cycle':
        o = r.choice(['O0', 'L0'])
        body = r.choice(['{ present %s { emit %s } }' % (o, o),
                         '{ present I0 { emit O1 } else { present %s { emit %s } } }' % (o, o),
                         'loop { { present %s { emit O1 } || present O1 { emit %s } } >> pause }' % (o, o)])
        text = 'module %s:\nInput: I0;\nOutput: O0, O1;\nLocal: L0;\n%s\nend\n' % (name, body)
        return text, name, 'dependance cycle'
    if k == 'type':
        text = DATA + 'module %s:\nInput: V : int;\nOutput: W : float;\nloop { emit W($V + one) >> pause }\nend\n' % name
        return text, name, 'type "float" is not defined'
    if k == 'renaming':
        bad = r.choice(['NOPE', 'I0'])
        text = ('module %s:\nInput: I0;\nOutput: O0;\nrun %ssub [%s \\ DONE]\nend\n\n'
                'module %ssub:\nInput: GO;\nOutput: DONE;\nwait GO >> emit DONE\nend\n') % (name, name, bad, name)
        return text, name, 'undeclared signal "NOPE"' if bad == 'NOPE' else 'is an input or pre whereas DONE'
    if k == 'undeclared':
        text = 'module %s:\nInput: I0;\nOutput: O0;\npresent Z emit O0\nend\n' % name
        return text, name, 'undeclared signal "Z"'
    text = 'module %s:\nInput: I0;\nOutput: O0;\nemit I0\nend\n' % name
    return text, name, 'undeclared output or local signal "I0"'
