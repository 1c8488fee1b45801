#!/usr/bin/env bash
# Screen recording bench: Mirabend's recorder and the ffmpeg command line
# record the same Xvfb screen with moving content, side by side, and the
# ratios are printed.
#   bench/recording/record_bench.sh DRIVER [--seconds N] [--minutes M] [--pause-bench PAUSE_SYNC_BENCH]
# DRIVER is the record_screen_driver built in tests/recording/engine. Sound
# comes from a private PulseAudio server with a sine source.
set -euo pipefail
driver=${1:?usage: record_bench.sh DRIVER [--seconds N] [--minutes M]}
shift
seconds=6
minutes=0
pause_bench=
while [ $# -gt 0 ]; do
  case "$1" in
    --seconds) seconds=$2; shift 2 ;;
    --minutes) minutes=$2; shift 2 ;;
    --pause-bench) pause_bench=$2; shift 2 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
done
work=$(mktemp -d)
pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; rm -rf "$work"; }
trap cleanup EXIT

Xvfb -displayfd 3 -screen 0 1280x720x24 -nolisten tcp +extension MIT-SHM 3>"$work/display" 2>/dev/null &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.05; done
export DISPLAY=:$(head -1 "$work/display")
mkdir -p "$work/run" "$work/home"
PULSE_RUNTIME_PATH="$work/run" XDG_RUNTIME_DIR="$work/run" HOME="$work/home" PULSE_SERVER="unix:$work/run/native" \
  DBUS_SESSION_BUS_ADDRESS="unix:path=$work/no-bus" \
  pulseaudio --daemonize=no --exit-idle-time=-1 -n -L 'module-native-protocol-unix auth-anonymous=1' \
  -L 'module-null-sink sink_name=rec' -L 'module-sine-source source_name=mic' >/dev/null 2>&1 &
pids+=($!)
export PULSE_SERVER="unix:$work/run/native"
for _ in $(seq 100); do [ -S "$work/run/native" ] && break; sleep 0.05; done
# Moving content over the whole screen.
SDL_VIDEODRIVER=x11 ffmpeg -loglevel quiet -re -f lavfi -i testsrc2=s=1280x720:r=30 -f sdl "bench" &
pids+=($!)
sleep 1

cpu() { awk '{print $1 + $2}' "$1"; }
frames() { ffprobe -v error -select_streams v:0 -count_packets -show_entries stream=nb_read_packets -of csv=p=0 "$1"; }

# ours: format codec size ; peer: ffmpeg arguments
run_pair() {
  local name=$1 fmt=$2 size=$3 ours_codec=$4; shift 4
  local ext=$fmt
  /usr/bin/time -f "%U %S %M" -o "$work/ours.time" \
    "$driver" --record-screen "$work/ours.$ext" --no-audio --fps 24 --seconds "$seconds" --size "$size" \
    $ours_codec >/dev/null 2>&1 || true
  /usr/bin/time -f "%U %S %M" -o "$work/peer.time" \
    ffmpeg -loglevel quiet -y -f x11grab -framerate 24 -video_size 1280x720 -i "$DISPLAY" -t "$seconds" \
    -s "$size" "$@" "$work/peer.$ext" </dev/null || true
  local oc pc of pf
  oc=$(cpu "$work/ours.time"); pc=$(cpu "$work/peer.time")
  of=$(frames "$work/ours.$ext"); pf=$(frames "$work/peer.$ext")
  awk -v n="$name" -v oc="$oc" -v pc="$pc" -v of="$of" -v pf="$pf" -v s="$seconds" \
      -v om="$(awk '{print $3}' "$work/ours.time")" -v pm="$(awk '{print $3}' "$work/peer.time")" 'BEGIN {
    printf "%-26s cpu s/s ours %.3f ffmpeg %.3f ratio %.2f | frames/(24*s) ours %.3f ffmpeg %.3f | peak MB ours %.0f ffmpeg %.0f\n",
      n, oc/s, pc/s, (pc > 0 ? oc/pc : 0), of/(24*s), pf/(24*s), om/1024, pm/1024 }'
}

echo "== $seconds s per run at 24 fps on a 1280x720 Xvfb screen with moving content"
run_pair "wmv2 1280x720" wmv 1280x720 "" -c:v wmv2 -b:v 2000k
run_pair "flv1 1280x720" flv 1280x720 "--video-bitrate 3512000" -c:v flv -b:v 3512k
run_pair "h264 ultrafast 1280x720" mkv 1280x720 "" -c:v libx264 -preset ultrafast -crf 23
run_pair "msvideo1 560x420" avi 560x420 "" -c:v msvideo1
run_pair "msvideo1 1280x720" avi 1280x720 "" -c:v msvideo1

if [ -n "$pause_bench" ]; then
  echo "== A/V offset after 10 pause/resume cycles (H.264 + AAC, 24 fps, sound from a sine source)"
  "$pause_bench" "$work/pauses.mkv" 10 24
fi

echo "== memory bound: msvideo1 1280x720 cannot keep up on one core; frames are dropped and counted"
/usr/bin/time -f "%M" -o "$work/mem.time" "$driver" --record-screen "$work/slow.avi" --no-audio --fps 24 \
  --seconds "$seconds" --size 1280x720 2>&1 | grep recorded || true
echo "  peak RSS $(( $(cat "$work/mem.time") / 1024 )) MB"

if [ "$minutes" != 0 ]; then
  echo "== memory over a $minutes minute msvideo1 1280x720 recording (peak RSS sampled every 10 s)"
  "$driver" --record-screen "$work/long.avi" --no-audio --fps 24 --seconds $((minutes * 60)) --size 1280x720 &
  rec=$!
  pids+=($rec)
  while kill -0 $rec 2>/dev/null; do
    sleep 10
    awk '/VmRSS/ {printf "  rss %d MB\n", $2/1024}' /proc/$rec/status 2>/dev/null || true
  done
fi
