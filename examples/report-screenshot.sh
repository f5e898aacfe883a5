#!/usr/bin/env bash
# The HTML report of a fitted Ni-W sample, with its quantification, drawn by a
# headless chromium into a PNG: `make screenshots` writes docs/screenshots/report-html.png.
# Usage: examples/report-screenshot.sh MOLVERA-CLI OUT.png [KEEP_DIR]
set -euo pipefail
cli=$(realpath "$1")
out=$(realpath "$2")
here=$(cd "$(dirname "$0")/.." && pwd)
data="$here/tests/data/real/lg4x"
work=${3:-$(mktemp -d)}
mkdir -p "$work"
cd "$work"
cp "$here/default.opa" .

# A Ni-W sample: a survey, Ni 2p, O 1s, C 1s and W 4f; three of them fitted and labelled.
"$cli" import vamas "$data/0-150W.vms" -o p.xps >/dev/null
"$cli" background p.xps --region 3 --type shirley --low 524 --high 536 -o p.xps 2>/dev/null
"$cli" background p.xps --region 4 --type shirley --low 278 --high 292 -o p.xps 2>/dev/null
"$cli" background p.xps --region 5 --type shirley --low 31 --high 38 -o p.xps 2>/dev/null
"$cli" add-peak p.xps --region 3 --position 528.4 --fwhm 1.5 --label 'O 1s' -o p.xps >/dev/null
"$cli" add-peak p.xps --region 4 --position 282.5 --fwhm 1.5 --label 'C 1s' -o p.xps >/dev/null
"$cli" add-peak p.xps --region 5 --position 33.6 --fwhm 1 --type f --splitting 2.15 \
  --label 'W 4f' -o p.xps >/dev/null
"$cli" fit p.xps --all -o p.xps >/dev/null
"$cli" report p.xps -o report.html
chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --screenshot="$out" \
  --window-size=1200,1600 "file://$work/report.html" 2>/dev/null
echo "wrote $out"
