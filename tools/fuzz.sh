#!/usr/bin/env bash
# Builds a fuzz target with clang and libFuzzer (into build-fuzz/) and runs it for SECONDS
# seconds, starting from its seed corpus in fuzz/corpus/NAME.
#   tools/fuzz.sh NAME SECONDS     NAME: drawer_template, sample_cabinet, parsers,
#                                  manifests_and_help, page_images or exchange_tree
#   tools/fuzz.sh --all SECONDS    each target in turn
# An input that fails is written to build-fuzz/crashes/NAME/. Once the fault is fixed, copy it
# into fuzz/corpus/NAME/: the test suite replays that corpus, so it stays a regression case.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
all=(drawer_template sample_cabinet parsers manifests_and_help page_images exchange_tree)
if [ $# -ne 2 ] || ! [[ "$2" =~ ^[0-9]+$ ]]; then
  echo "Usage: tools/fuzz.sh NAME|--all SECONDS   (NAME: ${all[*]})" >&2
  exit 2
fi
if [ "$1" = "--all" ]; then
  names=("${all[@]}")
else
  [[ " ${all[*]} " == *" $1 "* ]] || { echo "No fuzz target '$1' (there are: ${all[*]})." >&2; exit 2; }
  names=("$1")
fi
seconds="$2"

bash "$root/tools/packages.sh"
build="$root/build-fuzz"
if [ ! -f "$build/build.ninja" ]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DQMR_FUZZ=ON -DBUILD_TESTING=OFF >/dev/null
fi
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
if ! cmake --build "$build" --target "${names[@]/#/fuzz_}" -- -j"$(nproc)" >"$log" 2>&1; then
  cat "$log"
  echo "The fuzz build failed." >&2
  exit 1
fi
grep -vE '^(\[[0-9]+/[0-9]+\]|ninja: no work to do)' "$log" || true

# Freed pictures wait in the sanitizer's quarantine (to catch a use after free); left at its
# default it held over a gigabyte of decoded pages and tripped the memory limit below, which is
# there for the targets' own use.
# intercept_tls_get_addr=0 for the reason given beside the tests' options in CMakeLists.txt: a
# library's thread-local block 16 bytes past a page boundary crashes the leak checker.
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}quarantine_size_mb=64:intercept_tls_get_addr=0"
# Leaks are looked for once, as the run ends, not after each input: a worker thread that has
# just done its work (Qt's threads are detached) can still be ending when a check stops the
# world, and the checker then crashes ("Tracer caught signal 11") and fails the run for nothing.
failed=0
for name in "${names[@]}"; do
  work="$build/corpus/$name"
  crashes="$build/crashes/$name"
  mkdir -p "$work" "$crashes"
  # New inputs go to the working corpus in the build directory; the seeds stay as checked in.
  if "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -print_final_stats=1 \
      -artifact_prefix="$crashes/" -rss_limit_mb=2048 -detect_leaks=0 \
      "$work" "$root/fuzz/corpus/$name" \
      >"$log" 2>&1; then
    runs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    rate="$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")"
    inputs="$(find "$work" -type f | wc -l)"
    echo "fuzz $name: ${runs:-?} runs in ${seconds} s (${rate:-?}/s), $inputs inputs in the working corpus, no failure"
  else
    failed=1
    grep -vE '^(#[0-9]+|INFO:|MS:|stat::)' "$log" | tail -60
    echo "fuzz $name FAILED; the input is in $crashes/:" >&2
    ls -1 "$crashes" >&2
  fi
done
exit "$failed"
