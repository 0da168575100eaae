#!/usr/bin/env bash
# Builds the release preset and runs the control benchmark: the control driven as a
# host drives it, against OpenCV doing the closest work on the same 4000 x 3000
# picture in the same run, plus peak memory. Then the history benchmark: the peak
# memory of ten levels of undo and the Undo and Redo times, against a cv::LUT pass.
# OpenCV is installed here for the benchmarks only (the build and the tests never
# need it). Arguments go to the control benchmark (the number of timed runs,
# default 7).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
if ! dpkg-query -W -f='${Status}' libopencv-dev 2>/dev/null | grep -q "install ok installed"; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends libopencv-dev
fi
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target control_bench history_bench
build/release/bench/control_bench "$@"
echo
build/release/bench/history_bench
