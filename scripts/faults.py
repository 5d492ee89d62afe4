#!/usr/bin/env python3
"""Proves the suite's worth: makes each deliberate fault of a table in turn (a comparison
flipped, a byte order swapped, a lock left out, ...), rebuilds, runs the whole suite and prints
the tests that fail, or NOT CAUGHT. The source is restored after each fault.
Usage: python3 scripts/faults.py scripts/faults.txt BUILD_DIR [F01 F02 ...]
FAULT_TESTS=REGEX limits the run to the tests ctest -R selects (a quick look at one area).
The table: '## NAME what it breaks', then per edit 'file: PATH', '- exact line part', '+ its replacement'."""
import os, re, subprocess, sys

def read_table(path):
    faults, cur = [], None
    for line in open(path):
        line = line.rstrip('\n')
        if line.startswith('## '):
            cur = {'name': line[3:].strip(), 'edits': []}
            faults.append(cur)
        elif line.startswith('file: '):
            cur['edits'].append([line[6:].strip(), None, None])
        elif line.startswith('- '):
            cur['edits'][-1][1] = line[2:]
        elif line.startswith('+ '):
            cur['edits'][-1][2] = line[2:]
    return faults

def main():
    table, build = sys.argv[1], sys.argv[2]
    only = set(sys.argv[3:])
    only_tests = ['-R', os.environ['FAULT_TESTS']] if os.environ.get('FAULT_TESTS') else []
    root = subprocess.check_output(['git', 'rev-parse', '--show-toplevel'], text=True).strip()
    for f in read_table(table):
        if only and f['name'].split()[0] not in only:
            continue
        saved = {}
        ok = True
        for path, old, new in f['edits']:
            full = os.path.join(root, path)
            cur = open(full).read()
            saved.setdefault(full, cur)
            if cur.count(old) != 1:
                print(f"{f['name']}: NOT APPLIED ({path}: found {cur.count(old)} times)", flush=True)
                ok = False
                break
            open(full, 'w').write(cur.replace(old, new))
        try:
            if not ok:
                continue
            b = subprocess.run(['cmake', '--build', build, '-j2'], capture_output=True, text=True)
            if b.returncode != 0:
                print(f"{f['name']}: BUILD FAILED\n{b.stdout[-1500:]}", flush=True)
                continue
            r = subprocess.run(['xvfb-run', '-a', '-s', '-screen 0 1280x1024x24', 'ctest', '--test-dir', build,
                                '-j2', '--timeout', '120'] + only_tests, capture_output=True, text=True)
            failed = re.findall(r'^\s*\d+ - (\S+)', r.stdout, re.M)
            print(f"{f['name']}: {len(failed)} failing: {' '.join(failed) if failed else 'NOT CAUGHT'}", flush=True)
        finally:
            for full, text in saved.items():
                open(full, 'w').write(text)
    subprocess.run(['cmake', '--build', build, '-j2'], capture_output=True)

main()
