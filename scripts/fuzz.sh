#!/bin/sh
# Builds the fuzz targets (the `fuzz` preset: clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for a bounded time.
#   scripts/fuzz.sh [SECONDS_EACH]        default 30; the whole control gets twice that
# New inputs found go to build/fuzz/corpus/TARGET; the committed seeds in
# fuzz/corpus/TARGET are only read. A crash stops the script with the fuzzer's
# report and leaves the crashing input (crash-*) in build/fuzz/.
set -eu
seconds=${1:-30}
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
# Undefined behaviour stops a run as the debug build's does, so that the input that
# reached it is kept.
UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
export UBSAN_OPTIONS
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 --target fuzz_all
for target in bitmap_file jpeg png gif image_source script_line control font_string draw_text balloon_text \
  registry_file type_library; do
  work="build/fuzz/corpus/$target"
  mkdir -p "$work"
  options=""
  time=$seconds
  # A sequence of control calls needs room for many steps from the first run on, one
  # that does not end within 30 s is a hang, and the whole control has by far the
  # most code to reach, so it gets twice the time. A sequence touches tens of
  # thousands of coverage features, and the entropic schedule's bookkeeping of each
  # one took half the time: without it nearly twice as many sequences run.
  [ "$target" = control ] && options="-len_control=0 -max_len=1024 -timeout=30 -entropic=0" &&
    time=$((seconds * 2))
  # Every new character of a text may cost a glyph of up to 1024 pixels an em.
  [ "$target" = draw_text ] && options="-max_len=512 -timeout=30"
  echo "fuzz_$target: $time s"
  # shellcheck disable=SC2086
  (cd build/fuzz && "./fuzz/fuzz_$target" -max_total_time="$time" -rss_limit_mb=2048 -print_final_stats=1 \
    $options "$root/$work" "$root/fuzz/corpus/$target")
done
