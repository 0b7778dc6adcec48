#!/usr/bin/env python3
"""Puts the includes at the top of each source file in the house order: the file's own
header, then Qt and standard headers, then the project's headers, each group sorted."""
import os
import re
import sys

INCLUDE = re.compile(r'#include\s+([<"])([^>"]+)[>"]')


def own_header(path):
    folder, name = os.path.split(path)
    stem, ext = os.path.splitext(name)
    if ext != '.cpp':
        return None
    return f'{os.path.basename(folder)}/{stem}.h'


def fix(path):
    with open(path, encoding='utf-8') as f:
        lines = f.read().split('\n')
    start = next((i for i, l in enumerate(lines) if l.startswith('#include')), None)
    if start is None:
        return False
    end = start
    while end < len(lines) and (lines[end].startswith('#include') or lines[end].strip() == ''):
        end += 1
    while end > start and lines[end - 1].strip() == '':
        end -= 1
    block = [l for l in lines[start:end] if l.strip()]
    if any(not l.startswith('#include') for l in block):
        return False
    own, system, project, generated = [], [], [], []
    mine = own_header(path)
    for line in block:
        kind, name = INCLUDE.match(line).groups()
        if kind == '"' and name == mine:
            own.append(line)
        elif kind == '<':
            system.append(line)
        elif name.startswith('ui_') or name.endswith('.moc'):
            generated.append(line)
        else:
            project.append(line)
    groups = [g for g in (own, sorted(set(system)), sorted(set(project)) + generated) if g]
    new = []
    for g in groups:
        new += g + ['']
    new.pop()
    if new == lines[start:end]:
        return False
    lines[start:end] = new
    with open(path, 'w', encoding='utf-8') as f:
        f.write('\n'.join(lines))
    return True


if __name__ == '__main__':
    changed = [p for p in sys.argv[1:] if fix(p)]
    for p in changed:
        print(p)
