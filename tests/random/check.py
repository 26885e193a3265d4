#!/usr/bin/env python3
"""Random programs checked differentially.

  check.py --quarnc Q --resave R [--seed S] [--count N] [--jobs J] [--keep DIR]

For each program of the seeds S .. S+N-1:
  - quarnc compiles it to C and to .qnc (a program with a causality cycle may be refused);
  - gcc builds the C with a driver that runs a random input trace, g++ compiles it too;
  - the .qnc read back and written again is the same text as its previous rewrite;
  - a module that runs it, linked from the .qnc, reacts like the same module linked from
    the source (every third program);
  - the reference evaluator (refeval.py) gives the same outputs on the trace.
Programs that must be refused (cycles, type errors, bad renamings) are refused with their
message. A failure is shrunk (shrink.py) to a smaller program that fails the same way, and
prints that program, the inputs and the first differing reaction.
Every other target script of tests/e2e/targets runs the same trace and must agree with the C.
"""
import argparse
import concurrent.futures
import os
import random
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import gen  # noqa: E402
import refeval  # noqa: E402
import shrink  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
INT_HEADER = os.path.join(HERE, '..', 'e2e', 'trace', 'C_data_user_int.h')
VHDL_LIBS = os.path.join(HERE, '..', 'e2e', 'trace', 'vhdl_libs.inc')  # libraries and int
REACTIONS = 12
TIMEOUT = 60

TARGETS_DIR = os.path.join(HERE, '..', 'e2e', 'targets')


def script_target(name):
    """A target of the reaction traces, tests/e2e/targets/NAME.sh, run on a program's trace
    (see tests/e2e/targets/README.md): a list of sets of output words."""
    def trace_of(d, m, trace, values):
        with open(os.path.join(d, 'lines.txt'), 'w') as f:
            for i, present in enumerate(trace):
                words = [x + ('=%d' % values[i] if x == 'V0' else '') for x in sorted(present)]
                f.write(' '.join(words) + ' /\n')
        env = dict(QUARNC=QUARNC_PATH, QUARNC_ARGS='-c -qnc -main %s %s.qn' % (m, m))
        rc, out, err = run(['bash', os.path.join(TARGETS_DIR, name + '.sh'), m, 'lines.txt'], d, env=env)
        if rc:
            raise Failure('target %s fails:\n%s' % (name, err[-3000:]))
        return [set(line.split('/', 1)[1].split()) for line in out.splitlines() if '/' in line]
    return trace_of


# The other targets of the reaction traces (BLIF, VHDL, SMV, ... as their scripts land in
# tests/e2e/targets), compared with the C; QUARN_RANDOM_TARGETS="blif smv" picks some.
TARGET_TRACES = {}
# Netlist targets carry no data: only the presence of each output is compared there.
PRESENCE_ONLY = {'blif', 'netsim', 'smv'}
QUARNC_PATH = ''


def find_targets():
    present = sorted(f[:-3] for f in os.listdir(TARGETS_DIR)
                     if f.endswith('.sh') and f not in ('c.sh', 'lib.sh')) if os.path.isdir(TARGETS_DIR) else []
    wanted = os.environ.get('QUARN_RANDOM_TARGETS')
    names = [t for t in present if wanted is None or t in wanted.split()]
    return {t: script_target(t) for t in names}


class Failure(Exception):
    pass


def run(cmd, cwd, timeout=TIMEOUT, env=None):
    env = dict(os.environ, QUARN_BATCH='1', ASAN_OPTIONS='detect_leaks=0', **(env or {}))
    env.pop('DISPLAY', None)
    try:
        p = subprocess.run(cmd, cwd=cwd, env=env, capture_output=True, text=True, timeout=timeout,
                           errors='replace')
    except subprocess.TimeoutExpired:
        raise Failure('timeout: %s' % ' '.join(cmd))
    return p.returncode, p.stdout, p.stderr


def step_signature(header, m):
    """The parameters of M_automaton: list of (kind, name, type), kinds in, inval, out, outval."""
    text = open(header).read().replace('\n', ' ')
    key = 'extern void %s_automaton(' % m
    i = text.find(key)
    if i < 0:
        raise Failure('no step function in %s.h' % m)
    params = text[i + len(key):text.index(')', i)]
    sig = []
    for p in params.split(','):
        p = ' '.join(p.replace('*', '* ').split())
        if not p:
            continue
        typ, name = p.rsplit(' ', 1)
        if typ.endswith('*'):
            kind = 'outval' if name.endswith('_val') else 'out'
            typ = typ[:-1].strip()
        else:
            kind = 'inval' if name.endswith('_val') else 'in'
        sig.append((kind, name, typ))
    return sig


def c_driver(m, sig, trace, values):
    lines = ['#include <stdio.h>', '#include "%s.c"' % m, 'int main(void) {']
    for kind, name, typ in sig:
        lines.append('  %s %s = %s;' % (typ, name, '0' if kind in ('in', 'out') else 'zero_' + typ))
    lines.append('  %s_reset_automaton();' % m)
    names = {n for _, n, _ in sig}
    for step, present in enumerate(trace):
        for kind, name, typ in sig:
            if kind == 'in':
                lines.append('  %s = %d;' % (name, 1 if name in present else 0))
            elif kind == 'inval':
                lines.append('  %s = %d;' % (name, values[step]))
        args = ', '.join(n if k in ('in', 'inval') else '&' + n for k, n, _ in sig)
        lines.append('  %s_automaton(%s);' % (m, args))
        lines.append('  printf("%d:");' % step)
        for kind, name, typ in sig:
            if kind != 'out':
                continue
            if name + '_val' in names:
                lines.append('  if (%s) { printf(" %s="); print_%s(stdout, %s_val); }' % (name, name, typ, name))
            else:
                lines.append('  if (%s) printf(" %s");' % (name, name))
        lines.append('  printf("\\n");')
    lines += ['  return 0;', '}']
    return '\n'.join(lines) + '\n'


def c_trace(d, m, trace, values, gxx=True):
    """Builds M.c with a driver for the trace; gives a list of sets of output words."""
    sig = step_signature(os.path.join(d, m + '.h'), m)
    drv = 'drv_%s.c' % m
    with open(os.path.join(d, drv), 'w') as f:
        f.write(c_driver(m, sig, trace, values))
    rc, _, err = run(['gcc', '-std=c99', '-w', '-Werror=implicit-function-declaration', '-o', 'drv_' + m, drv], d)
    if rc:
        raise Failure('gcc refuses the C of %s:\n%s' % (m, err[-3000:]))
    if gxx:
        rc, _, err = run(['g++', '-x', 'c++', '-w', '-fsyntax-only', drv], d)
        if rc:
            raise Failure('g++ refuses the C of %s:\n%s' % (m, err[-3000:]))
    rc, out, err = run(['./drv_' + m], d)
    if rc:
        raise Failure('the C of %s ends with status %d' % (m, rc))
    return [set(line.split(':', 1)[1].split()) for line in out.splitlines()]


def first_difference(a, b):
    for i, (x, y) in enumerate(zip(a, b)):
        if x != y:
            return i
    return None


def show_trace(trace, values, upto):
    return '\n'.join('  %d: %s%s' % (i, ' '.join(sorted(trace[i])) or '-',
                                       '  (value %d)' % values[i] if values else '')
                     for i in range(upto + 1))


def compare(what, trace, values, a, b, name_a, name_b):
    i = first_difference(a, b)
    if i is not None:
        raise Failure('%s: reaction %d differs\ninputs:\n%s\n%s: %s\n%s: %s' % (
            what, i, show_trace(trace, values, i), name_a, ' '.join(sorted(a[i])) or '-',
            name_b, ' '.join(sorted(b[i])) or '-'))


def wrapper_text(p, qnc):
    w = dict(p, name='w' + p['name'], locals=[], subs=[], valued=p['valued'])
    run_decl = 'Run: "./%s" : %s;\n' % (p['name'], p['name']) if qnc else ''
    text = gen.module_text(dict(w, text=run_decl + 'run ' + p['name']))
    if not qnc:
        return gen.program_text(dict(w, text=run_decl + 'run ' + p['name'], subs=[p] + p.get('subs', [])))
    return (gen.DATA if p['valued'] else '') + text


def check_program(seed, quarnc, resave, stats):
    p = gen.program(seed)
    r = random.Random(seed * 7919 + 1)
    trace = [{x for x in p['inputs'] if r.random() < 0.4} for _ in range(REACTIONS)]
    values = [r.randint(-5, 5) for _ in range(REACTIONS)]
    try:
        check(p, seed, trace, values, quarnc, resave, stats)
    except Failure as e:
        last = [e]  # the failure of the smallest failing program so far

        def fails(q):
            try:
                check(q, seed, trace, values, quarnc, resave, dict.fromkeys(stats, 0))
            except Failure as f:
                if failure_kind(f) == failure_kind(e):
                    last[0] = f
                    return True
            return False
        small, tried = shrink.shrink(p, fails)
        detail = str(last[0])
        raise Failure('program (seed %d), shrunk in %d tries from %d to %d statements:\n%s\n%s' % (
            seed, tried, shrink.size(p), shrink.size(small), gen.program_text(small), detail))


def failure_kind(e):
    """What went wrong, without the reaction and the details: shrinking keeps it."""
    return str(e).split(':', 1)[0].rstrip('0123456789 ')


def check(p, seed, trace, values, quarnc, resave, stats):
    m = p['name']
    text = gen.program_text(p)
    d = tempfile.mkdtemp(prefix='qrand_')
    try:
        with open(os.path.join(d, m + '.qn'), 'w') as f:
            f.write(text)
        if p['valued']:
            shutil.copy(INT_HEADER, d)
        shutil.copy(VHDL_LIBS, d)
        rc, out, err = run([quarnc, '-c', '-qnc', '-main', m, m + '.qn'], d)
        if 'Sanitizer' in err or 'runtime error' in err:
            raise Failure('sanitizer report from quarnc:\n' + err[-3000:])
        ref = None
        if gen.uses(p.get('body', ('automaton',)), {'run', 'emitv', 'automaton'}) or 'text' in p \
                or p['valued']:
            stats['unreferenced'] += 1
        else:
            try:
                ref = refeval.Module(p)
            except refeval.Unsupported:
                stats['unreferenced'] += 1
        if rc != 0:
            if 'dependance cycle' in err:
                stats['cycles'] += 1
                return
            raise Failure('quarnc ends with status %d:\n%s' % (rc, err[-3000:]))
        got = c_trace(d, m, trace, values)
        stats['c'] += 1

        # The compiled module read back and written again. The writer numbers the nodes in
        # the variable order of its manager, which the reader builds anew from the file: the
        # first rewrite may differ from the compiler's text, a rewrite of a rewrite may not.
        for src, dst in ((m + '.qnc', m + '.again.qnc'), (m + '.again.qnc', m + '.third.qnc')):
            rc, _, err = run([resave, src, dst], d)
            if rc or 'Sanitizer' in err:
                raise Failure('%s is not read back:\n%s' % (src, err[-3000:]))
        if open(os.path.join(d, m + '.again.qnc')).read() != open(os.path.join(d, m + '.third.qnc')).read():
            raise Failure('the .qnc of %s read back and written again differs' % m)
        stats['qnc'] += 1

        # A module that runs this one, from the source and from the .qnc (every third
        # program, which keeps the fixed-seed run short).
        wm = 'w' + m
        traces = {}
        for qnc in ((False, True) if seed % 3 == 0 else ()):
            sub = os.path.join(d, 'qnc' if qnc else 'src')
            os.mkdir(sub)
            with open(os.path.join(sub, wm + '.qn'), 'w') as f:
                f.write(wrapper_text(p, qnc))
            if p['valued']:
                shutil.copy(INT_HEADER, sub)
            args = [quarnc, '-c', '-main', wm, wm + '.qn']
            if qnc:
                shutil.copy(os.path.join(d, m + '.qnc'), sub)
                args += ['-comp_files', '[', m + '.qnc', ']']
            rc, _, err = run(args, sub)
            if rc:
                raise Failure('the module that runs %s (%s) is refused:\n%s' % (
                    m, 'from .qnc' if qnc else 'from source', err[-3000:]))
            traces[qnc] = c_trace(sub, wm, trace, values, gxx=False)
        if traces:
            compare('linked from .qnc against source', trace, values, traces[True], traces[False],
                    'from .qnc', 'from source')
            stats['linked'] += 1

        for name, target in TARGET_TRACES.items():
            t = target(d, m, trace, values)
            if t:
                want = got
                if name in PRESENCE_ONLY:  # a valued output there is its presence
                    want = [set(w.split('=', 1)[0] for w in r) for r in got]
                    t = [set(w.split('=', 1)[0] for w in r) for r in t]
                compare('%s against C' % name, trace, values, t, want, name, 'C')

        if ref is not None:
            try:
                want = ref.run(trace)
            except refeval.Cycle:
                stats['unreferenced'] += 1
                return
            got_pure = [{w for w in s if '=' not in w} for s in got]
            compare('C against the reference', trace, values, got_pure, want, 'C', 'reference')
            stats['reference'] += 1
    finally:
        shutil.rmtree(d, ignore_errors=True)


def check_refused(seed, quarnc, stats):
    text, m, message = gen.refused(seed)
    d = tempfile.mkdtemp(prefix='qrand_')
    try:
        with open(os.path.join(d, m + '.qn'), 'w') as f:
            f.write(text)
        rc, _, err = run([quarnc, '-c', '-main', m, m + '.qn'], d)
        if rc != 1 or message not in err or 'Sanitizer' in err:
            raise Failure('program (seed %d) should be refused with "%s":\n%s\nstatus %d:\n%s' % (
                seed, message, text, rc, err[-2000:]))
        stats['refused'] += 1
    finally:
        shutil.rmtree(d, ignore_errors=True)


def main():
    a = argparse.ArgumentParser()
    a.add_argument('--quarnc', required=True)
    a.add_argument('--resave', required=True)
    a.add_argument('--seed', type=int, default=1)
    a.add_argument('--count', type=int, default=300)
    a.add_argument('--jobs', type=int, default=os.cpu_count() or 2)
    a.add_argument('--keep-going', action='store_true')
    o = a.parse_args()
    quarnc, resave = os.path.abspath(o.quarnc), os.path.abspath(o.resave)
    global QUARNC_PATH, TARGET_TRACES
    QUARNC_PATH = quarnc
    TARGET_TRACES.update(find_targets())
    stats = {k: 0 for k in ('c', 'qnc', 'linked', 'reference', 'unreferenced', 'cycles', 'refused')}
    failures = []
    seeds = range(o.seed, o.seed + o.count)
    with concurrent.futures.ThreadPoolExecutor(o.jobs) as pool:
        jobs = {}
        for s in seeds:
            jobs[pool.submit(check_program, s, quarnc, resave, stats)] = s
            if s % 5 == 0:
                jobs[pool.submit(check_refused, s, quarnc, stats)] = s
        for f in concurrent.futures.as_completed(jobs):
            if f.cancelled():
                continue
            try:
                f.result()
            except Failure as e:
                failures.append((jobs[f], str(e)))
                if not o.keep_going:
                    for j in jobs:
                        j.cancel()
    for seed, text in sorted(failures)[:3]:
        print('FAIL ' + text + '\n')
    print('random programs %d..%d: %d built in C, %d .qnc round trips, %d linked from .qnc, '
          '%d agree with the reference (%d outside it), %d cycles refused, %d refused programs; '
          '%d failures' % (o.seed, o.seed + o.count - 1, stats['c'], stats['qnc'], stats['linked'],
                           stats['reference'], stats['unreferenced'], stats['cycles'],
                           stats['refused'], len(failures)))
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
