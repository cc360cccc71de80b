"""shows.py PROGRAM [ARGUMENT...] -- LINE...: fails unless the program ends well and its standard
output has the lines, each whole, in this order. Other lines may stand between them."""

import subprocess
import sys

split = sys.argv.index("--")
command, wanted = sys.argv[1:split], sys.argv[split + 1:]
done = subprocess.run(command, capture_output=True, text=True, timeout=50, check=False)
shown = iter(done.stdout.splitlines())
missing = next((line for line in wanted if line not in shown), None)
if done.returncode != 0 or missing is not None:
    print(done.stdout, done.stderr, sep="\n")
    sys.exit(f"exit code {done.returncode}, missing line: {missing}")
