#!/bin/sh
# Runs the bundled example job and says where its results are.
set -e
binary="$1"
here="$(cd "$(dirname "$0")" && pwd)"
job="$here/cubic-profile"
cd "$job"
"$binary" cubic < /dev/null
echo
echo "Example finished. Results are in $job:"
for f in cubic.out cubic.sum cubic.rpa; do
  [ -f "$f" ] && echo "  $job/$f"
done
