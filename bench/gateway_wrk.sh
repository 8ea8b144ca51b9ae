#!/usr/bin/env bash
# wrk against `sensorctl serve` on the simulator: GET /Sensors/{id}/XYZ at 1, 8
# and 64 connections, 5 s each. Usage: bench/gateway_wrk.sh [build folder]
set -euo pipefail
build=${1:-build-bench}
out=$(mktemp)
"$build/bin/sensorctl" serve --listen 127.0.0.1:0 --rate-limit 0 >"$out" 2>/dev/null &
server=$!
trap 'kill $server; rm -f "$out"' EXIT
for _ in $(seq 50); do [ -s "$out" ] && break; sleep 0.1; done
address=$(head -1 "$out")                      # http://127.0.0.1:PORT/#token=TOKEN
base=${address%%/#*}
auth="Authorization: Bearer ${address##*token=}"
sensor=$(curl -s -X POST -H "$auth" "$base/Sensors/8" | sed -E 's/.*"value":"([^"]*)".*/\1/')
for connections in 1 8 64; do
  threads=$((connections < 2 ? 1 : 2))
  echo "== $connections connections"
  wrk -t "$threads" -c "$connections" -d 5s --latency -H "$auth" "$base/Sensors/$sensor/XYZ" |
    grep -E 'Requests/sec| 50%| 99%|Non-2xx|Socket errors'
done
