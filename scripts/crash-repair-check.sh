#!/bin/bash
# By-hand check of the crash repair: six recordings (AVI, WMV, FLV, SWF, MP4,
# MKV) of a private Xvfb screen, killed with SIGKILL SECONDS after each listed
# its file as in progress, then repaired with `mirabend --repair-video`; prints
# each file's header duration, FFmpeg's complaints (none expected) and what
# gst-discoverer-1.0 finds (GStreamer has no SWF demuxer).
#   bash scripts/crash-repair-check.sh [BUILD_DIR] [SECONDS]
set -u
build=$(realpath "${1:-build}")
seconds=${2:-30}
work=$(mktemp -d /tmp/mirabend-crash-XXXXXX)
Xvfb -displayfd 3 -screen 0 1280x720x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
xvfb=$!
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=":$(cat "$work/display")" XDG_RUNTIME_DIR="$work" XDG_STATE_HOME="$work/state"
formats="avi wmv flv swf mp4 mkv"
declare -A pid
for f in $formats; do
    "$build/tests/record_screen_driver" --record-screen "$work/killed.$f" >"$work/$f.log" 2>&1 &
    pid[$f]=$!
done
until [ "$(ls "$work"/state/mirabend/recordings/*.rec 2>/dev/null | wc -l)" = 6 ]; do sleep 0.1; done
sleep "$seconds"
for f in $formats; do kill -9 "${pid[$f]}"; wait "${pid[$f]}" 2>/dev/null; done
"$build/bin/mirabend" --repair-video $(for f in $formats; do echo "$work/killed.$f"; done)
for f in $formats; do
    echo "== $f: header $(ffprobe -v error -show_entries format=duration -of csv=p=0 "$work/killed.$f") s"
    ffmpeg -nostdin -v error -i "$work/killed.$f" -f null -
    command -v gst-discoverer-1.0 >/dev/null && timeout 30 gst-discoverer-1.0 "$work/killed.$f" | grep -E 'Duration|Missing'
done
kill "$xvfb"
echo "files in $work"
