#!/usr/bin/env bash
# Runs every script-host scenario (tests/cli/*.ies) and the sample tour with the
# script host of an earlier revision and with the one of the working tree, and
# compares what each run printed and every file it wrote, byte for byte: a change that
# should change nothing a user sees must leave them all equal.
#   scripts/compare-runs.sh [REV]        REV defaults to HEAD
# The earlier revision is built in its own worktree under build/compare/. Exit status
# 0 when every transcript and picture is the same, 1 when any differs (they are listed).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
# Named here, not in the worktree: there HEAD would be the worktree's own.
rev=$(git rev-parse --verify "${1:-HEAD}^{commit}")

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target imageedit

base=build/compare
rm -rf "$base/runs"
if [ -d "$base/src" ]; then
  git -C "$base/src" checkout -q --detach "$rev"
else
  git worktree add -q --detach "$base/src" "$rev"
fi
cmake -S "$base/src" -B "$base/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DIE_TESTS=OFF >/dev/null
cmake --build "$base/build" -j "$(nproc)" --target imageedit

# run NAME IMAGEEDIT SCRIPT: the script runs in a folder of its own, with the test data
# beside it as the scenarios expect and the temp folder inside it.
run() {
  local out="$base/runs/$1/$(basename "$3" .ies)" options=""
  mkdir -p "$out"
  ln -s "$root/tests/data" "$out/data"
  if [[ "$(head -n 1 "$3")" =~ ^#\ options:\ (.*)$ ]]; then options=${BASH_REMATCH[1]}; fi
  # shellcheck disable=SC2086
  local status=0
  (cd "$out" && TMPDIR="$out" "$root/$2" $options run "$3" >transcript.txt 2>&1) || status=$?
  echo "exit $status" >>"$out/transcript.txt"
  rm "$out/data"
}
for side in earlier current; do
  imageedit=build/release/hosts/cli/imageedit
  [ "$side" = earlier ] && imageedit="$base/build/hosts/cli/imageedit"
  for script in "$root"/tests/cli/*.ies; do run "$side" "$imageedit" "$script"; done
  # The tour reads its picture from ../samples/.
  mkdir -p "$base/runs/$side/samples"
  cp samples/valley.jpg "$base/runs/$side/samples/"
  run "$side" "$imageedit" "$root/samples/tour.ies"
done

if diff -r -q "$base/runs/earlier" "$base/runs/current"; then
  echo "compare-runs: every transcript and written file is the same as at $rev"
else
  echo "compare-runs: the runs above differ from those at $rev (both kept in $base/runs/)"
  exit 1
fi
