# Sourced by the benches: a work folder, a list of process ids killed on exit,
# and a private Xvfb screen exported as DISPLAY (XVFB_SCREEN picks its size).
work=$(mktemp -d)
pids=()
cleanup() { for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; rm -rf "$work"; }
trap cleanup EXIT

Xvfb -displayfd 3 -screen 0 "${XVFB_SCREEN:-1280x720x24}" -nolisten tcp +extension MIT-SHM 3>"$work/display" 2>/dev/null &
pids+=($!)
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.05; done
export DISPLAY=:$(head -1 "$work/display")
