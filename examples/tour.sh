#!/usr/bin/env bash
# A tour of molvera-cli on a real C 1s spectrum: import, background, three peaks,
# a constraint, a fit, exports, and a check that saving and re-loading changes nothing.
set -euo pipefail
cli=$(realpath "${1:-build/molvera-cli}")
here=$(cd "$(dirname "$0")/.." && pwd)
spectrum="$here/tests/data/real/lg4x/C1s_sample.csv"
work=$(mktemp -d)
cd "$work"
cp "$here/default.opa" .
echo "== working in $work"

echo "== import the two-column spectrum into region 1"
"$cli" import ascii "$spectrum" -o c1s.xps

echo "== Shirley background from 280 to 295 eV"
"$cli" background c1s.xps --region 1 --type shirley --low 280 --high 295 -o c1s.xps

echo "== three peaks (their slot numbers are printed)"
"$cli" add-peak c1s.xps --region 1 --position 284.5 --fwhm 1.2 -o c1s.xps
"$cli" add-peak c1s.xps --region 1 --position 286 --fwhm 1.2 -o c1s.xps
"$cli" add-peak c1s.xps --region 1 --position 288.5 --fwhm 1.5 -o c1s.xps

echo "== peak 2 keeps the FWHM of peak 1"
"$cli" constrain c1s.xps --peak 1 --param fwhm --link 0 --op '*' --arg 1 -o c1s.xps

echo "== fit region 1 with the method of default.opa"
"$cli" fit c1s.xps --region 1 -o fitted.xps

echo "== exports"
"$cli" export-peaks fitted.xps --region 1 -o fitted.par
"$cli" export-spectrum fitted.xps --region 1 -o fitted.dat
cat fitted.par

echo "== save, dump, re-load and export again: nothing changes"
"$cli" dump fitted.xps > fitted.json
"$cli" save fitted.xps -o reloaded.xps   # open and save again
"$cli" dump reloaded.xps > reloaded.json
"$cli" export-spectrum reloaded.xps --region 1 -o reloaded.dat
cmp fitted.xps reloaded.xps
cmp fitted.json reloaded.json
cmp fitted.dat reloaded.dat
echo "identical: project file, JSON dump and spectrum export"
