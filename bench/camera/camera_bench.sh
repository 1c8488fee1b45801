#!/usr/bin/env bash
# Camera preview bench: the camera pane's preview and gst-launch-1.0 show the
# same test camera (videotestsrc, 640x480 YUY2 at 30 fps) in a window of the
# same size on a private Xvfb screen, side by side, and the CPU ratio over
# the same stretch after start-up is printed (target: at most 1.2).
#   bench/camera/camera_bench.sh PREVIEW_BENCH PLUGIN_DIR [--seconds N]
set -euo pipefail
bench=${1:?usage: camera_bench.sh PREVIEW_BENCH PLUGIN_DIR [--seconds N]}
plugins=${2:?usage: camera_bench.sh PREVIEW_BENCH PLUGIN_DIR [--seconds N]}
shift 2
seconds=8
while [ $# -gt 0 ]; do
  case "$1" in
    --seconds) seconds=$2; shift 2 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
done
# shellcheck source=../private_xvfb.sh
source "$(dirname "$0")/../private_xvfb.sh"
export GST_PLUGIN_PATH=$plugins GST_REGISTRY=$work/registry.bin QT_QPA_PLATFORM=xcb
export HOME=$work XDG_RUNTIME_DIR=$work
gst-inspect-1.0 >/dev/null 2>&1 || true # builds the registry outside the measurement

warmup=2
tick=$(getconf CLK_TCK)
# CPU ticks (user + system) a process has used so far.
ticks() { awk '{print $14 + $15}' "/proc/$1/stat" 2>/dev/null || echo 0; }

# Both show the source at once; each is measured over the same stretch after
# its start-up, so the ratio compares the steady preview only.
run_pair() {
  local width=$1 height=$2 attempt
  # Qt 6.4's camera start now and then fails outright: such a run is repeated.
  for attempt in 1 2 3; do
    measure_pair "$width" "$height"
    [ "$(awk '{print ($1 > 5 * '"$seconds"')}' "$work/ours.out" 2>/dev/null)" = 1 ] && break
    echo "(the preview showed no picture; again)"
  done
  awk -v n="${width}x${height}" -v oc="$ours_cpu" -v pc="$peer_cpu" -v t="$tick" \
      -v painted="$(awk '{print $1}' "$work/ours.out")" -v s="$seconds" -v all=$((warmup + seconds + 1)) 'BEGIN {
    printf "%-9s cpu s/s ours %.3f gst-launch %.3f ratio %.2f (target <= 1.20) | ours painted %.1f fps\n",
      n, oc/t/s, pc/t/s, (pc > 0 ? oc/pc : 0), painted/all }'
}

measure_pair() {
  local width=$1 height=$2
  : >"$work/ours.out"
  "$bench" "$width" "$height" $((warmup + seconds + 1)) "640x480 YUY2 30 fps" >"$work/ours.out" 2>"$work/ours.err" &
  local ours=$!
  pids+=($ours)
  gst-launch-1.0 -q videotestsrc is-live=true horizontal-speed=3 \
    ! video/x-raw,format=YUY2,width=640,height=480,framerate=30/1 ! videoconvert ! videoscale \
    ! "video/x-raw,width=$width,height=$height" ! ximagesink sync=false >/dev/null 2>&1 &
  local peer=$!
  pids+=($peer)
  sleep "$warmup"
  local ours0 peer0 ours1 peer1
  ours0=$(ticks $ours); peer0=$(ticks $peer)
  sleep "$seconds"
  ours1=$(ticks $ours); peer1=$(ticks $peer)
  kill -INT $peer 2>/dev/null || true
  wait $ours 2>/dev/null || { echo "the preview failed:" >&2; tail -5 "$work/ours.err" >&2; }
  wait $peer 2>/dev/null || true
  ours_cpu=$((ours1 - ours0))
  peer_cpu=$((peer1 - peer0))
}

echo "== $seconds s measured after $warmup s start-up, test camera 640x480 YUY2 30 fps, on a private Xvfb screen"
run_pair 580 435
run_pair 145 109
