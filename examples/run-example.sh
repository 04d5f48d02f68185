#!/bin/sh
# Runs the bundled example job (a Rietveld refinement of simulated anglesite data) in a copy
# beside the binary and says where its results are.
set -e
binary="$1"
here="$(cd "$(dirname "$0")" && pwd)"
run="$(dirname "$binary")/example-anglesite"
rm -rf "$run"
mkdir -p "$run"
cp "$here/anglesite-xray/anglesite.pcr" "$here/anglesite-xray/anglesite.dat" "$run/"
cd "$run"
"$binary" anglesite < /dev/null > anglesite.console
echo "Rietveld refinement of anglesite (PbSO4) from simulated X-ray data:"
grep -m1 " => Cycle:" anglesite.sum || true
grep -m1 " => Rp:" anglesite.sum || true
grep -m1 " => Bragg R-factor:" anglesite.sum || true
echo
echo "Results are in $run:"
for f in anglesite.out anglesite.sum anglesite.pcr anglesite.prf anglesite.console; do
  [ -f "$f" ] && echo "  $run/$f"
done
echo "(anglesite.pcr there is the new control file with the refined values)"
if [ -f anglesite_fit.png ]; then
  echo
  echo "The picture of the fit: $run/anglesite_fit.png (and anglesite_fit.svg)"
fi
