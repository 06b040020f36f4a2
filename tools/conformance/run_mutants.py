"""The work of tools/conformance_mutants.sh, whose heading says what it does."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

LISTS = pathlib.Path(__file__).resolve().parents[2] / 'tests' / 'conformance'


def rows(path):
    """The rows of a table whose columns stand between bars."""
    for line in path.read_text(encoding='utf-8').splitlines():
        if line.strip() and not line.startswith('#'):
            yield [column.strip() for column in line.split('|')]


def run(command, preload, limit_s):
    """The suite's verdicts by point, and how it ended."""
    environment = dict(os.environ)
    if preload is not None:
        environment['LD_PRELOAD'] = str(preload)
    with tempfile.NamedTemporaryFile(suffix='.json') as report:
        with subprocess.Popen(command + ['--json', report.name], env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              start_new_session=True) as process:
            try:
                status = process.wait(timeout=limit_s)
                ended = 'ended' if status >= 0 else f'killed by signal {-status}'
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)  # the session that was started here, and no other
                ended = f'hung for {limit_s} s'
        try:
            points = json.load(report)['points']
        except (ValueError, KeyError):
            return {}, ended
    return {point['name']: point['verdict'] for point in points}, ended


def broken(verdicts):
    return {name for name, verdict in verdicts.items() if verdict == 'broken'}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--jobs', type=int, default=1)
    parser.add_argument('--only')
    parser.add_argument('--limit', type=int, default=180)
    parser.add_argument('mutant_dir', type=pathlib.Path)
    parser.add_argument('suite', nargs=argparse.REMAINDER)
    options = parser.parse_args()
    if not options.suite:
        parser.error('no suite')

    contracts = {row[0]: row[2] for row in rows(LISTS / 'mutants' / 'mutants.txt')}
    expected = {row[0]: set(row[1].split()) for row in rows(LISTS / 'expected_points.txt') if len(row) > 1}
    names = [options.only] if options.only else list(contracts)
    missing = [name for name in names if not (options.mutant_dir / f'{name}.so').is_file()]
    if missing:
        print(f'not built: {" ".join(missing)}')
        return 2

    verdicts, ended = run(options.suite, None, options.limit)
    if not verdicts or ended != 'ended' or broken(verdicts):
        print(f'without a mutant: {len(verdicts)} points, {ended}; broken: {" ".join(sorted(broken(verdicts)))}')
        return 2
    print(f'without a mutant: {len(verdicts)} points, none broken')
    unknown = {point for points in expected.values() for point in points} - set(verdicts)
    for point in sorted(unknown):
        print(f'expected_points.txt: the suite has no point {point}')

    def try_one(name):
        return name, run(options.suite, (options.mutant_dir / f'{name}.so').resolve(), options.limit)

    named = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for name, (seen, ended) in pool.map(try_one, names):
            hit = broken(seen) & expected.get(name, set())
            named += bool(hit)
            verdict = 'named' if hit else 'not named' if name in expected else 'not mapped'
            how = '' if ended == 'ended' else f' ({ended})'
            print(f'{verdict:10} {name}{how}: {" ".join(sorted(broken(seen))) or "nothing broke"}')
            if not hit:
                print(f'           contract: {contracts[name]}')
            sys.stdout.flush()
    needed = 1 if options.only else int(os.environ.get('NVRHAL_MUTANTS_NEEDED', '48'))
    print(f'{named} of {len(names)} mutants named, {needed} needed')
    return 0 if named >= needed and not unknown else 1


if __name__ == '__main__':
    sys.exit(main())
