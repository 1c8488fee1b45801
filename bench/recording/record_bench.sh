#!/usr/bin/env bash
# Screen recording bench: Mirabend's recorder and the ffmpeg command line
# record the same Xvfb screen side by side (started together, same codec,
# size and rate) and one table of ratios is printed.
#   record_bench.sh DRIVER PAUSE_BENCH CONTENT [--seconds N] [--only PATTERN] [--profile]
# DRIVER is the record_screen_driver (tests/recording/engine), PAUSE_BENCH
# pause_sync_bench and CONTENT screen_content (this folder).
#
# CPU is the steady state: user+system time of each process between 2 s
# after the start and 1 s before the end, so start-up (loading libraries,
# opening encoders) is left out for both. Peak memory is each process's
# VmHWM. Frames written / expected counts the packets of each file against
# rate x seconds. The A/V offset is ours alone (ffmpeg cannot pause): a
# separate recording with sound, 10 pause/resume cycles, in frames.
# --profile prints instead where our CPU goes per frame (grab, overlay,
# conversion, encoding, muxing), whole-frame x11grab against damage tracking.
set -euo pipefail
driver=${1:?usage: record_bench.sh DRIVER PAUSE_BENCH CONTENT [--seconds N] [--only PATTERN]}
pause_bench=${2:?}
content=${3:?}
shift 3
seconds=12
only=.
profile=0
while [ $# -gt 0 ]; do
  case "$1" in
    --seconds) seconds=$2; shift 2 ;;
    --only) only=$2; shift 2 ;;
    --profile) profile=1; shift ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
done
XVFB_SCREEN=1920x1080x24
# shellcheck source=../private_xvfb.sh
source "$(dirname "$0")/../private_xvfb.sh"
mkdir -p "$work/run" "$work/home"
PULSE_RUNTIME_PATH="$work/run" XDG_RUNTIME_DIR="$work/run" HOME="$work/home" PULSE_SERVER="unix:$work/run/native" \
  DBUS_SESSION_BUS_ADDRESS="unix:path=$work/no-bus" \
  pulseaudio --daemonize=no --exit-idle-time=-1 -n -L 'module-native-protocol-unix auth-anonymous=1' \
  -L 'module-null-sink sink_name=rec' -L 'module-sine-source source_name=mic' >/dev/null 2>&1 &
pids+=($!)
export PULSE_SERVER="unix:$work/run/native"
for _ in $(seq 100); do [ -S "$work/run/native" ] && break; sleep 0.05; done

content_pid=
show() { # still | slides | motion
  [ -n "$content_pid" ] && kill "$content_pid" 2>/dev/null && wait "$content_pid" 2>/dev/null || true
  case "$1" in
    still) "$content" still & ;;
    slides) "$content" slides 5 & ;;
    motion) "$content" motion & ;;
  esac
  content_pid=$!
  pids+=("$content_pid")
  sleep 1
}

# The machine may be shared: the load says how far to trust the absolute
# numbers (the ratios hold better, both recorders meet the same load).
load() { cut -d' ' -f1-3 /proc/loadavg; }
ticks=$(getconf CLK_TCK)
cpu_ticks() { awk '{print $14 + $15}' "/proc/$1/stat" 2>/dev/null || echo -1; }
peak_kb() { awk '/VmHWM/ {print $2}' "/proc/$1/status" 2>/dev/null || echo 0; }
packets() { ffprobe -v error -select_streams v:0 -count_packets -show_entries stream=nb_read_packets -of csv=p=0 "$1" 2>/dev/null || echo 0; }

# case name, content, WxH, fps, our format, our extra options, pause format code, ffmpeg codec options
run_case() {
  local name=$1 what=$2 size=$3 fps=$4 fmt=$5 ours_opts=$6 pause_fmt=$7; shift 7
  [[ $name =~ $only ]] || return 0
  local w=${size%x*} h=${size#*x}
  "$driver" --record-screen "$work/ours.$fmt" --no-audio --fps "$fps" --seconds "$seconds" \
    --region "0,0,$w,$h" --size "$size" $ours_opts >/dev/null 2>&1 &
  local ours=$!
  ffmpeg -nostdin -loglevel quiet -y -f x11grab -framerate "$fps" -video_size "$size" -i "$DISPLAY+0,0" -t "$seconds" \
    "$@" "$work/peer.$fmt" </dev/null &
  local peer=$!
  local start o0 p0 o1 p1 om=0 pm=0
  start=$(date +%s.%N)
  until_t() { local left; left=$(echo "$start + $1 - $(date +%s.%N)" | bc); [ "${left:0:1}" = - ] || sleep "$left"; }
  until_t 2
  o0=$(cpu_ticks $ours); p0=$(cpu_ticks $peer)
  until_t $((seconds - 1))
  o1=$(cpu_ticks $ours); p1=$(cpu_ticks $peer)
  om=$(peak_kb $ours); pm=$(peak_kb $peer)
  wait $ours 2>/dev/null || true
  wait $peer 2>/dev/null || true
  local of pf av
  of=$(packets "$work/ours.$fmt"); pf=$(packets "$work/peer.$fmt")
  av=$("$pause_bench" "$work/pause.$fmt" 10 "$fps" --format "$pause_fmt" --region "0,0,$w,$h" --step 0.3 \
       --brief 2>/dev/null || echo nan)
  awk -v n="$name" -v o0="$o0" -v o1="$o1" -v p0="$p0" -v p1="$p1" -v of="$of" -v pf="$pf" -v fps="$fps" \
      -v s="$seconds" -v om="$om" -v pm="$pm" -v av="$av" -v tk="$ticks" -v span="$(echo "$seconds - 3" | bc)" 'BEGIN {
    # a recorder that ended before the second sample has no steady state
    if (o0 < 0 || o1 < 0 || p0 < 0 || p1 < 0) { printf "%-30s a recorder ended early\n", n; exit }
    oc = (o1 - o0) / tk / span; pc = (p1 - p0) / tk / span
    printf "%-30s %6.3f %6.3f %5.2f | %5.3f %5.3f | %5s | %4.0f %4.0f %5.2f\n", n, oc, pc, (pc > 0 ? oc / pc : 0),
      of / (fps * s), pf / (fps * s), av, om / 1024, pm / 1024, (pm > 0 ? om / pm : 0) }'
}

# Per-stage CPU per written frame, microseconds, from MIRABEND_RECORD_PROFILE.
profile_case() { # content WxH fps format backend [driver options]
  local what=$1 size=$2 w=${2%x*} h=${2#*x} fps=$3 fmt=$4 backend=$5 line; shift 5
  line=$(MIRABEND_RECORD_PROFILE=1 MIRABEND_CAPTURE=$backend "$driver" --record-screen "$work/prof.$fmt" \
         --no-audio --fps "$fps" --seconds "$seconds" --region "0,0,$w,$h" --size "$size" "$@" 2>&1 >/dev/null |
         grep 'per frame' || true)
  # "... grab 310 us, overlay 0 us, convert 90 us, encode 2100 us, mux 40 us per frame written"
  printf "%-38s %6s %6s %6s %6s %6s\n" "$what${1:+ stamp} $fmt $size@$fps $backend" $(echo "$line" | grep -oE '[0-9]+ us' | cut -d' ' -f1)
}
if [ "$profile" = 1 ]; then
  echo "== CPU per written frame in us, $seconds s per run; $(nproc) cores, load $(load)"
  printf "%-38s %6s %6s %6s %6s %6s\n" case grab overl conv encode mux
  for what in still motion; do
    show $what
    for size in 1280x720 1920x1080; do
      for fmt in mkv flv wmv; do
        for backend in x11grab damage; do profile_case $what $size 30 $fmt $backend; done
      done
    done
    profile_case $what 1280x720 30 mkv damage --date-format 0 --text "Mirabend bench"
    # The date with its seconds: the stamp's rows change once a second.
    [ $what = still ] && profile_case "$what seconds" 1280x720 30 mkv damage --date-format 4 --text "Mirabend bench"
  done
  exit 0
fi

echo "== $seconds s per run, side by side with the ffmpeg command line, on a 1920x1080 Xvfb screen;" \
  "$(nproc) cores, load $(load)"
printf "%-30s %6s %6s %5s | %5s %5s | %5s | %4s %4s %5s\n" case "cpu" "ffmpeg" ratio "fr/ex" "ffmpg" "A/V" "MB" "ffmpg" ratio
printf "%-30s %6s %6s %5s | %5s %5s | %5s | %4s %4s %5s\n" "" "core" "core" "" "ours" "" "frm" "ours" "" ""
h264="-c:v libx264 -preset ultrafast -crf 23"
show still
for size in 1920x1080 1280x720; do
  for fps in 30 24; do
    run_case "still h264 $size@$fps" still $size $fps mkv "" 5 $h264 -g $fps
    run_case "still wmv2 $size@$fps" still $size $fps wmv "" 1 -c:v wmv2 -b:v 2000k -g $((fps * 3))
    run_case "still flv1 $size@$fps" still $size $fps flv "--video-bitrate 3512000" 3 -c:v flv -b:v 3512k -g $fps
  done
done
# A date stamp with its seconds and a text, as teachers record (ffmpeg draws none).
run_case "still stamp h264 1280x720@30" still 1280x720 30 mkv "--date-format 7 --text Lecture" 5 $h264 -g 30
show motion
run_case "motion h264 1920x1080@30" motion 1920x1080 30 mkv "" 5 $h264 -g 30
run_case "motion h264 1280x720@24" motion 1280x720 24 mkv "" 5 $h264 -g 24
show slides
run_case "slides+pointer h264 1920x1080@30" slides 1920x1080 30 mkv "" 5 $h264 -g 30
run_case "slides+pointer h264 1280x720@24" slides 1280x720 24 mkv "" 5 $h264 -g 24
echo "load at the end $(load)"
echo "targets: cpu ratio still <= 0.4, motion <= 0.9, slides+pointer <= 0.5; frames >= 0.99; A/V <= 1 frame;"
echo "         memory ratio <= 1"
