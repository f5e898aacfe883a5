#!/usr/bin/env bash
# Runs every fuzz target in turn for SECONDS each and prints its execution count.
# Usage: fuzz/run.sh BUILD_DIR SECONDS [EXTRA_SEED_DIR]   (FUZZ_TARGETS="a b" for a subset)
# Exits non-zero when any target finds a crash, leak, undefined behaviour, a hang over
# one second, an allocation over 64 MiB or a resident size over FUZZ_RSS_MB (128); the input is kept in BUILD_DIR/findings/.
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=$(realpath "$1")
seconds=$2
extra=${3:-}
targets=(${FUZZ_TARGETS:-project extension regionparams optionfile vamas kratos leybold phi ascii})
imports=" vamas kratos leybold phi ascii "
mkdir -p "$build/findings"
failed=0
for t in "${targets[@]}"; do
  work="$build/corpus/$t"          # grows as the fuzzer finds new paths
  mkdir -p "$work"
  seeds=()
  [ -d "$here/corpus/$t" ] && seeds+=("$here/corpus/$t")
  [ -d "$here/regressions/$t" ] && seeds+=("$here/regressions/$t")
  if [[ "$imports" == *" $t "* ]]; then
    seeds+=("$root/tests/data/real")
    [ -d "$root/../shared/testdata/real" ] && seeds+=("$(realpath "$root/../shared/testdata/real")")
  fi
  [ -n "$extra" ] && seeds+=("$(realpath "$extra")")
  log="$build/findings/$t.log"
  # No single allocation may pass 64 MiB. The resident size of the whole process is
  # limited to 128 MiB: ASan's shadow and libFuzzer's own buffers (about 25 MiB) and
  # in-memory corpus leave a target at 35 MiB before its first input and past 64 MiB
  # within a minute. A small quarantine keeps ASan's share down.
  ASAN_OPTIONS=detect_leaks=1:quarantine_size_mb=4 UBSAN_OPTIONS=print_stacktrace=1 \
    "$build/fuzz/fuzz_$t" "$work" "${seeds[@]}" -max_total_time="$seconds" \
    -rss_limit_mb="${FUZZ_RSS_MB:-128}" -malloc_limit_mb=64 -timeout=1 -print_final_stats=1 \
    -artifact_prefix="$build/findings/$t-" >"$log" 2>&1
  rc=$?
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  if [ $rc -ne 0 ]; then
    failed=1
    echo "$t: FINDING after ${execs:-?} executions (exit $rc); see $log"
    grep -m3 -E "ERROR|SUMMARY|runtime error|Test unit written" "$log" | sed 's/^/  /'
  else
    echo "$t: ${execs:-?} executions in ${seconds} s, no findings"
  fi
done
exit $failed
