#!/usr/bin/env bash
# `make package-check`: the checks of the Debian package built by `make package`.
#   packaging/check.sh PACKAGE.deb BUILD-DIR
# lintian (no errors), desktop-file-validate and appstreamcli on the files in the
# package, the MIME types on real files; then, as root with dpkg, an install test: the
# installed programs' --version, a short fit with the installed default.opa from a folder
# without one (the same numbers as the build tree's molvera-cli with the repository's
# default.opa), the GUI started offscreen, and the package removed again.
set -euo pipefail
deb=$(realpath "$1")
build=$(realpath "$2")
src=$(cd "$(dirname "$0")/.." && pwd)
app=io.github.molvera.Molvera
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "== lintian $(basename "$deb")"
lintian --fail-on error "$deb"

dpkg-deb -x "$deb" "$work/root"
share="$work/root/usr/share"
echo "== desktop-file-validate"
desktop-file-validate "$share/applications/$app.desktop"
echo "== appstreamcli validate"
appstreamcli validate --no-net "$share/metainfo/$app.metainfo.xml"

echo "== MIME types"
mkdir -p "$work/mime/mime/packages"
cp "$share/mime/packages/molvera.xml" "$work/mime/mime/packages/"
update-mime-database "$work/mime/mime" 2>/dev/null
printf 'PK\003\004 not a project' > "$work/document.xps"
cp "$src/fuzz/corpus/project/c1s_three_peaks.xps" "$work/project-no-extension"
for pair in "$src/fuzz/corpus/project/c1s_three_peaks.xps application/x-molvera-project" \
            "$src/fuzz/corpus/project/version30.xps application/x-molvera-project" \
            "$src/fuzz/corpus/project/old_sf.xps application/x-molvera-project" \
            "$work/project-no-extension application/x-molvera-project" \
            "$work/document.xps application/vnd.ms-xpsdocument" \
            "$src/tests/data/real/lg4x/0-150W.vms chemical/x-vamas-iso14976" \
            "$src/tests/data/real/lg4x/Mutlipak_vms.npl chemical/x-vamas-iso14976"; do
    set -- $pair
    got=$(XDG_DATA_HOME="$work/mime" gio info -a standard::content-type "$1" |
          sed -n 's/.*content-type: //p')
    if [ "$got" != "$2" ]; then echo "$1: $got, expected $2"; exit 1; fi
    echo "$(basename "$1"): $got"
done

if [ "$(id -u)" != 0 ] || ! command -v dpkg >/dev/null; then
    echo "skipped: the install test (it installs the package with dpkg -i, so it needs root)"
    exit 0
fi
if dpkg-query -W -f='${Status}' molvera 2>/dev/null | grep -q 'install ok installed'; then
    echo "skipped: the install test (a molvera package is installed already; it stays)"
    exit 0
fi
echo "== install"
trap 'dpkg -r molvera >/dev/null || true; rm -rf "$work"' EXIT
dpkg -i "$deb" || DEBIAN_FRONTEND=noninteractive apt-get -f install -y --no-install-recommends
mkdir -p "$work/home" "$work/run" "$work/ref"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_STATE_HOME="$work/home/state"
/usr/bin/molvera-cli --version
/usr/bin/molvera --version
# The same short fit from the installed files (no default.opa here: the installed one)
# and from the build tree with the repository's default.opa.
cp "$src/default.opa" "$work/ref/"
fit() {
    local cli=$1
    "$cli" import ascii "$src/tests/data/real/lg4x/C1s_sample.csv" -o c1s.xps >/dev/null
    "$cli" background c1s.xps --region 1 --type shirley --low 280 --high 295 -o c1s.xps
    "$cli" add-peak c1s.xps --region 1 --position 284.5 --fwhm 1.2 -o c1s.xps >/dev/null
    "$cli" add-peak c1s.xps --region 1 --position 286 --fwhm 1.2 -o c1s.xps >/dev/null
    "$cli" fit c1s.xps --region 1 -o fitted.xps | sed -n 's/^chi-square after/&/p'
    "$cli" export-peaks fitted.xps --region 1 -o fitted.par
}
(cd "$work/run" && fit /usr/bin/molvera-cli)
(cd "$work/ref" && fit "$build/molvera-cli" >/dev/null)
cmp "$work/run/fitted.par" "$work/ref/fitted.par"
echo "the installed molvera-cli fits as the build tree's does, with the installed default.opa"
# The GUI for two seconds, offscreen, on the fitted project: it must still run then.
status=0
(cd "$work/run" && QT_QPA_PLATFORM=offscreen timeout 2 /usr/bin/molvera fitted.xps) || status=$?
if [ "$status" != 124 ]; then echo "molvera ended with status $status"; exit 1; fi
echo "molvera ran offscreen for 2 s"
echo "== remove"
dpkg -r molvera >/dev/null
trap 'rm -rf "$work"' EXIT
echo "package-check: all passed"
