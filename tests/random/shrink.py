"""Shrinking of a failing random program (a gen.py program dict).

shrink(p, fails) tries smaller programs, one change at a time, and keeps each that still
fails, until no change does or the budget runs out. A change replaces a statement by
`nothing`, by one of its own statements, drops one branch of a sequence or parallel, or
replaces a condition by one of its parts. Modules given as text are kept as they are.
"""
import time


def size(p):
    return sum(stmt_size(m['body']) for m in [p] + p.get('subs', []) if 'body' in m)


def stmt_size(s):
    n = 1
    for x in s[1:]:
        if isinstance(x, tuple) and x and isinstance(x[0], str) and x[0] in STATEMENTS:
            n += stmt_size(x)
        elif isinstance(x, list):
            n += sum(stmt_size(y) for y in x)
    return n


STATEMENTS = {'nothing', 'halt', 'pause', 'emit', 'emitv', 'noemit', 'sustain', 'present',
              'absent', 'loop', 'seq', 'par', 'weak', 'strong', 'wait', 'run'}
CONDITION_AT = {'sustain': 2, 'present': 1, 'absent': 1, 'weak': 2, 'strong': 2, 'wait': 2}


def smaller_conditions(c):
    if c[0] in ('not', 'abs'):
        yield c[1]
    elif c[0] in ('and', 'or'):
        yield c[1]
        yield c[2]
    for i, x in enumerate(c[1:], 1):
        if isinstance(x, tuple):
            for y in smaller_conditions(x):
                yield c[:i] + (y,) + c[i + 1:]


def smaller(s):
    """Statements one change smaller than s, the biggest cuts first."""
    k = s[0]
    if k == 'nothing':
        return
    yield ('nothing',)
    if k in ('seq', 'par'):
        items = s[1]
        for x in items:
            yield x
        if len(items) > 2:
            for i in range(len(items)):
                yield (k, items[:i] + items[i + 1:])
        for i, x in enumerate(items):
            for y in smaller(x):
                yield (k, items[:i] + [y] + items[i + 1:])
    elif k in ('present', 'absent'):
        yield s[2]
        if s[3] is not None:
            yield s[3]
            yield s[:3] + (None,)
        for y in smaller(s[2]):
            yield s[:2] + (y,) + s[3:]
        if s[3] is not None:
            for y in smaller(s[3]):
                yield s[:3] + (y,)
    elif k in ('loop', 'weak', 'strong'):
        yield s[1]
        for y in smaller(s[1]):
            yield (k, y) + s[2:]
    at = CONDITION_AT.get(k)
    if at is not None:
        for c in smaller_conditions(s[at]):
            yield s[:at] + (c,) + s[at + 1:]


def changes(p):
    for i, m in enumerate([p] + p.get('subs', [])):
        if 'body' not in m:
            continue
        for body in smaller(m['body']):
            q = dict(m, body=body)
            if i == 0:
                yield dict(p, body=body)
            else:
                subs = list(p['subs'])
                subs[i - 1] = q
                yield dict(p, subs=subs)


def shrink(p, fails, budget=300, seconds=180):
    """The smallest program found that still fails, and the number of programs tried."""
    tried, end = 0, time.monotonic() + seconds
    progress = True
    while progress and tried < budget and time.monotonic() < end:
        progress = False
        for q in changes(p):
            if tried >= budget or time.monotonic() >= end:
                break
            tried += 1
            if fails(q):
                p, progress = q, True
                break
    return p, tried


if __name__ == '__main__':
    # Self-check: a failure that needs an emit of O0 under a loop shrinks to just that.
    import gen

    def holds(s, inside=False):
        if s[0] == 'emit' and s[1] == 'O0':
            return inside
        return any(holds(x, inside or s[0] == 'loop') for x in s[1:] if isinstance(x, tuple)
                   and x and x[0] in STATEMENTS) or \
            any(holds(y, inside or s[0] == 'loop') for x in s[1:] if isinstance(x, list) for y in x)

    checked = 0
    for seed in range(1, 2000):
        p = gen.program(seed)
        if 'body' not in p or not holds(p['body']) or size(p) < 6:
            continue
        small, tried = shrink(p, lambda q: holds(q['body']), budget=10000)
        assert holds(small['body']) and stmt_size(small['body']) == 2, (seed, gen.stmt_text(small['body']))
        checked += 1
    assert checked >= 10, checked
    print('shrunk %d programs to a loop around the emit' % checked)
