#!/usr/bin/env bash
# Levenberg-Marquardt in molvera-cli against fityk (MPFIT) on the synthetic 4- and 10-peak,
# 5000-point spectra of molvera_benchgen: the same data, model, starting values and
# objective. Prints wall-clock medians, the chi-squares, the ratio of the times, and each
# program's chi-square of the other's result (the two objectives must agree).
#
#   bench/versus_fityk.sh [BUILD_DIR [REPETITIONS [SEED]]]     (default: build 11 1)
#
# Needs molvera-cli and bench/molvera_benchgen built in BUILD_DIR, cfityk (Debian package
# fityk) and jq.
set -euo pipefail

build=$(cd "${1:-build}" && pwd)
reps=${2:-11}
seed=${3:-1}
cli=$build/molvera-cli
gen=$build/bench/molvera_benchgen

if ! command -v cfityk >/dev/null; then
    echo "fityk is not installed: cfityk was not found (Debian: apt-get install -y fityk)" >&2
    exit 1
fi
command -v jq >/dev/null || { echo "jq is not installed (Debian: apt-get install -y jq)" >&2; exit 1; }
for tool in "$cli" "$gen"; do
    [ -x "$tool" ] || { echo "$tool is missing: cmake --build $build --target molvera-cli molvera_benchgen" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# The median of the numbers on stdin.
median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# Seconds of wall clock that "$@" takes (its output goes to last.out).
wall() {
    local t0=$EPOCHREALTIME
    "$@" >last.out 2>&1
    awk -v a="$t0" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.6f\n", b - a }'
}

# Molvera's chi-square of region 1 of a project, with the spectrum's options.
molvera_chi() { "$cli" dump --options "$1.opa" "$2" | jq '.Regions[0].ChiSquare'; }

rows=()
notes=()
for peaks in 4 10; do
    p=s$peaks
    "$gen" --peaks "$peaks" --seed "$seed" "$p"
    points=$(wc -l <"$p.fityk.dat")
    grep -v '^fit$' "$p.fit" >"$p.nofit.fit"

    fityk_all=() fityk_load=() molvera_fit=() molvera_all=()
    for ((i = 0; i < reps; i++)); do
        fityk_all+=("$(wall cfityk -I -n -q "$p.fit")")
        cp last.out "$p.fityk.out"
        fityk_load+=("$(wall cfityk -I -n -q "$p.nofit.fit")")
        molvera_all+=("$(wall "$cli" fit "$p.xps" --region 1 --options "$p.opa" --json -o "$p.lm.xps")")
        cp last.out "$p.lm.json"
        molvera_fit+=("$(jq -r '.seconds | . * 1e6 | round / 1e6' "$p.lm.json")")
    done
    fa=$(printf '%s\n' "${fityk_all[@]}" | median)
    fl=$(printf '%s\n' "${fityk_load[@]}" | median)
    ma=$(printf '%s\n' "${molvera_all[@]}" | median)
    mf=$(printf '%s\n' "${molvera_fit[@]}" | median)
    ff=$(awk -v a="$fa" -v b="$fl" 'BEGIN { printf "%.6f", a - b }')

    fityk_wssr=$(awk '$1 == "wssr" { print $2 }' "$p.fityk.out")
    fityk_chi=$(awk -v w="$fityk_wssr" -v n="$points" 'BEGIN { printf "%.8g", w / n }')
    fityk_evals=$(sed -n 's/^mpfit: \([0-9]*\) evaluations.*/\1/p' "$p.fityk.out")
    lm_chi=$(jq .chi_square "$p.lm.json")
    lm_iter=$(jq .iterations "$p.lm.json")

    # Each program's chi-square of the other's parameters: fityk scores Molvera's fitted
    # peaks; Molvera scores fityk's (%GL rounded to a whole number, as a peak holds it).
    "$gen" --score "$p.lm.xps" "$p" >"$p.score.fit"
    fityk_of_lm=$(cfityk -I -n -q "$p.score.fit" | awk -v n="$points" '$1 == "wssr" { printf "%.8g", $2 / n }')
    cp "$p.xps" "$p.from-fityk.xps"
    k=0
    while read -r _ position fwhm area gl; do
        "$cli" edit-peak "$p.from-fityk.xps" --options "$p.opa" --peak $k --position "$position" \
            --fwhm "$fwhm" --area "$area" --gl "$gl" -o "$p.from-fityk.xps"
        k=$((k + 1))
    done < <(grep '^peak ' "$p.fityk.out")
    lm_of_fityk=$(molvera_chi "$p" "$p.from-fityk.xps")

    rows+=("$(printf '%-8s %-22s %10s %10s %12s %6s' "$peaks peaks" "fityk MPFIT" "$ff" "$fa" "$fityk_chi" "${fityk_evals}e")")
    rows+=("$(printf '%-8s %-22s %10s %10s %12s %6s' "$peaks peaks" "molvera-cli fit (LM)" "$mf" "$ma" "$lm_chi" "${lm_iter}i")")
    rows+=("$(awk -v p="$peaks" -v ff="$ff" -v fa="$fa" -v mf="$mf" -v ma="$ma" \
        'BEGIN { printf "%-8s %-22s %10.3f %10.3f", p " peaks", "ratio fityk / Molvera", ff / mf, fa / ma }')")
    notes+=("$peaks peaks: fityk's chi-square of Molvera's result $fityk_of_lm (Molvera: $lm_chi); Molvera's chi-square of fityk's result $lm_of_fityk (fityk: $fityk_chi)")
done

echo "versus_fityk: $points points, seed $seed, medians of $reps runs; $(nproc) cores, $(lscpu | sed -n 's/^Model name: *//p')"
printf '%-8s %-22s %10s %10s %12s %6s\n' spectrum program "fit s" "process s" chi-square "steps"
printf '%s\n' "${rows[@]}"
echo "fit s: Molvera's summary \"seconds\"; fityk's process time minus that of the same script without"
echo "'fit'. steps: e = fityk's WSSR evaluations, i = Levenberg-Marquardt iterations."
printf '%s\n' "${notes[@]}"
