#!/usr/bin/env bash
# Writes the seed projects (.xps), region parameter files (.rpa) and option files (.opa)
# of corpus/ with molvera-cli, from the bundled real spectra.
# Usage: fuzz/make_binary_seeds.sh PATH/TO/molvera-cli
set -euo pipefail
cli=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
cp "$root/default.opa" .
mkdir -p "$here/corpus/project" "$here/corpus/regionparams" "$here/corpus/optionfile"

# C 1s: Shirley background, three peaks, one tie, a limit.
"$cli" import ascii "$root/tests/data/real/lg4x/C1s_sample.csv" -o c1s.xps >/dev/null
"$cli" background c1s.xps --region 1 --type shirley --low 280 --high 295 -o c1s.xps >/dev/null
"$cli" add-peak c1s.xps --region 1 --position 284.5 --fwhm 1.2 -o c1s.xps >/dev/null
"$cli" add-peak c1s.xps --region 1 --position 286 --fwhm 1.2 -o c1s.xps >/dev/null
"$cli" add-peak c1s.xps --region 1 --position 288.5 --fwhm 1.5 -o c1s.xps >/dev/null
"$cli" constrain c1s.xps --peak 1 --param fwhm --link 0 --op '*' --arg 1 -o c1s.xps >/dev/null
cp c1s.xps "$here/corpus/project/c1s_three_peaks.xps"
"$cli" save-params c1s.xps --region 1 -o "$here/corpus/regionparams/c1s_three_peaks.rpa" >/dev/null

# O 1s in region 2 with a Tougaard background and one peak, beside the C 1s region.
"$cli" import ascii "$root/tests/data/real/lg4x/111216_0459_O1s.csv" --into c1s.xps --region 2 -o two.xps >/dev/null
"$cli" background two.xps --region 2 --type tougaard --low 524 --high 540 -o two.xps >/dev/null
"$cli" add-peak two.xps --region 2 --position 531 --fwhm 1.4 -o two.xps >/dev/null
cp two.xps "$here/corpus/project/two_regions.xps"
"$cli" save-params two.xps --region 2 -o "$here/corpus/regionparams/o1s_tougaard.rpa" >/dev/null

# A region with data only; then a linear background and no peaks.
"$cli" import ascii "$root/tests/data/real/lg4x/C1s_sample.csv" -o bare.xps >/dev/null
cp bare.xps "$here/corpus/project/data_only.xps"
"$cli" background bare.xps --region 1 --type linear --low 282 --high 292 -o bare.xps >/dev/null
"$cli" save-params bare.xps --region 1 -o "$here/corpus/regionparams/bare.rpa" >/dev/null

cp "$root/default.opa" "$here/corpus/optionfile/default.opa"
head -c 204 "$root/default.opa" > "$here/corpus/optionfile/without_glsum.opa"
ls -l "$here"/corpus/{project,regionparams,optionfile}
