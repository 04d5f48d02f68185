#!/bin/sh
# Runs the bundled example job and says where its results are.
set -e
binary="$1"
here="$(cd "$(dirname "$0")" && pwd)"
job="$here/simulated-head"
cd "$job"
"$binary" example < /dev/null
echo
echo "Example finished. Results are in $job:"
for f in example.out example.sum example.rpa example.sym; do
  [ -f "$f" ] && echo "  $job/$f"
done
