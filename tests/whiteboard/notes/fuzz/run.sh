#!/usr/bin/env bash
# Builds the RTF reader's fuzzer (clang's libFuzzer under AddressSanitizer)
# from the reader's sources and Qt, then runs it for FUZZ_SECONDS (60) on
# the seed corpus kept next to this script. New inputs go to the build
# folder, never into the repository. Prints one result line; a crash fails.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../../../.." && pwd)
out=${MIRABEND_FUZZ_DIR:-$root/build-fuzz}
seconds=${FUZZ_SECONDS:-60}
mkdir -p "$out/corpus"

rtf=$root/whiteboard/notes/rtf
# shellcheck disable=SC2046
clang++ -std=c++17 -g -O1 -fPIC -fsanitize=fuzzer,address -fno-omit-frame-pointer \
  -I"$root" $(pkg-config --cflags Qt6Gui) \
  "$here/RtfReaderFuzzer.cpp" "$rtf/RtfLexer.cpp" "$rtf/RtfReader.cpp" "$rtf/RtfWriter.cpp" \
  $(pkg-config --libs Qt6Gui) -o "$out/rtf_reader_fuzzer"

log=$out/rtf_reader_fuzzer.log
status=0
ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen "$out/rtf_reader_fuzzer" \
  -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
  -artifact_prefix="$out/" "$out/corpus" "$here/corpus" >"$log" 2>&1 || status=$?
runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo "?")
if [ "$status" -eq 0 ]; then
  echo "== RTF reader fuzzing: ${seconds} s, ${runs} inputs, no crash"
else
  echo "== RTF reader fuzzing FAILED (exit $status): see $log and the crash-* file in $out" >&2
  tail -n 30 "$log" >&2
fi
exit "$status"
