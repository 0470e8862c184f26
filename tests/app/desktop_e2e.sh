#!/usr/bin/env bash
# The real program under a virtual X server: it starts in a new program folder, its main window
# appears by its title, and a screenshot of the screen is not blank. Prints the time from launch
# to the window.
set -euo pipefail
program="$1"
cli="$2"
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
"$cli" init "$folder" > /dev/null
cd "$folder"
export XDG_RUNTIME_DIR="$folder/runtime"
mkdir -m 700 "$XDG_RUNTIME_DIR"
xvfb-run -a -s "-screen 0 1400x900x24" bash -c '
    set -euo pipefail
    start=$(date +%s%N)
    "$0" > program.log 2>&1 &
    pid=$!
    for i in $(seq 1 300); do
        if xwininfo -root -tree 2> /dev/null | grep -q "CELESTARK - Version 2.007"; then
            shown=$(date +%s%N)
            echo "main window shown after $(( (shown - start) / 1000000 )) ms"
            sleep 1
            xwd -root -silent > shot.xwd
            kill $pid
            exit 0
        fi
        sleep 0.05
    done
    echo "the main window did not appear"; cat program.log; kill $pid || true; exit 1
' "$program"
# The screenshot shows more than a few colours: the window was drawn.
python3 - shot.xwd <<'PY'
import struct, sys
data = open(sys.argv[1], "rb").read()
header_size, = struct.unpack(">I", data[0:4])
width, height = struct.unpack(">II", data[16:24])
bits_per_pixel, bytes_per_line = struct.unpack(">II", data[44:52])
ncolors, = struct.unpack(">I", data[76:80])
pixels = data[header_size + 12 * ncolors:]
step = bits_per_pixel // 8
seen = set()
for y in range(0, height, 7):
    row = pixels[y * bytes_per_line:(y + 1) * bytes_per_line]
    for x in range(0, width * step, step * 5):
        seen.add(row[x:x + step])
print(f"{len(seen)} colours in the screenshot")
sys.exit(0 if len(seen) > 20 else 1)
PY
