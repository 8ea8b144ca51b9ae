#!/usr/bin/env bash
# wrk against `sensorctl serve` on the simulator: GET /Sensors/{id}/XYZ at 1, 8
# and 64 connections, 5 s each; then the same against httplib_ceiling (a
# constant answer through the same HTTP layer), what the machine allows with
# wrk on the same cores. Usage: bench/gateway_wrk.sh [build folder]
set -euo pipefail
build=${1:-build-bench}
out=$(mktemp)
server=
trap 'kill $server 2>/dev/null; rm -f "$out"' EXIT
started() {
  for _ in $(seq 50); do [ -s "$out" ] && break; sleep 0.1; done
  head -1 "$out"
}
measure() { # url [header]
  for connections in 1 8 64; do
    threads=$((connections < 2 ? 1 : 2))
    echo "== $connections connections"
    wrk -t "$threads" -c "$connections" -d 5s --latency ${2:+-H "$2"} "$1" |
      grep -E 'Requests/sec| 50%| 99%|Non-2xx|Socket errors'
  done
}

"$build/bin/sensorctl" serve --listen 127.0.0.1:0 --rate-limit 0 >"$out" 2>/dev/null &
server=$!
address=$(started)                             # http://127.0.0.1:PORT/#token=TOKEN
base=${address%%/#*}
auth="Authorization: Bearer ${address##*token=}"
sensor=$(curl -s -X POST -H "$auth" "$base/Sensors/8" | sed -E 's/.*"value":"([^"]*)".*/\1/')
echo "# sensorctl serve"
measure "$base/Sensors/$sensor/XYZ" "$auth"
kill $server
wait $server 2>/dev/null || true

: >"$out"
"$build/bin/httplib_ceiling" >"$out" &
server=$!
echo "# httplib_ceiling"
measure "$(started)"
