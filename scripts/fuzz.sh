#!/bin/sh
# Builds the fuzz targets (the `fuzz` preset: clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for a bounded time.
#   scripts/fuzz.sh [SECONDS_EACH]        default 30
# New inputs found go to build/fuzz/corpus/TARGET; the committed seeds in
# fuzz/corpus/TARGET are only read. A crash stops the script with the fuzzer's
# report and leaves the crashing input (crash-*) in build/fuzz/.
set -eu
seconds=${1:-30}
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 --target fuzz_all
for target in bitmap_file jpeg png gif image_source script_line; do
  work="build/fuzz/corpus/$target"
  mkdir -p "$work"
  echo "fuzz_$target: $seconds s"
  (cd build/fuzz && "./fuzz/fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=2048 -print_final_stats=1 \
    "$root/$work" "$root/fuzz/corpus/$target")
done
