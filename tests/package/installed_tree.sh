#!/usr/bin/env bash
# installed_tree.sh BUILD_DIR VERSION MAN_PAGE(ON|OFF)
# Installs the build into a temporary prefix, moves the tree and uses it
# there: the library must find its device-library set, and sensorctl the
# library, relative to themselves. The build tree stays in place meanwhile, so
# the run paths are also checked to name nothing outside the installed tree.
# The man page, when built, must document every option --help lists.
set -euo pipefail
build=$1 version=$2 man_page=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "FAILED: $*" >&2
  exit 1
}

cmake --install "$build" --prefix "$work/first" >"$work/install.log" || fail "install: $(cat "$work/install.log")"
mv "$work/first" "$work/moved"
tree=$work/moved
sensorctl=$tree/bin/sensorctl

[ "$("$sensorctl" --version)" = "sensorctl $version" ] || fail "sensorctl --version: $("$sensorctl" --version)"
"$sensorctl" --fail --journal 'GET /Sensors?connected' 'POST /Sensors/8 -> $s' 'GET /Sensors/$s/XYZ' \
  >"$work/run.out" 2>"$work/run.err" || fail "requests from the moved tree: $(cat "$work/run.err")"
# Three answers and the simulator's journal after each: the moved set was the one loaded.
[ "$(grep -c '^200 ' "$work/run.out")" = 3 ] && [ "$(grep -c '^journal \[' "$work/run.out")" = 3 ] &&
  grep -q '^journal .*"function":"MDOpen"' "$work/run.out" || fail "requests from the moved tree answered: $(cat "$work/run.out")"

# The Linux set, where it was built, loads from the moved tree too: no simulator answers there.
if [ -d "$(dirname "$(find "$tree" -name 'libsensorcontrol.*' | head -n1)")/sensorcontrol/linux" ]; then
  "$sensorctl" --backend linux --journal 'GET /Sensors?connected' >"$work/linux.out" 2>"$work/linux.err" ||
    fail "the Linux set from the moved tree: $(cat "$work/linux.err")"
  grep -q '^200 ' "$work/linux.out" && ! grep -q '^journal ' "$work/linux.out" ||
    fail "the Linux set from the moved tree answered: $(cat "$work/linux.out")"
fi

if command -v readelf >/dev/null; then
  while read -r file; do
    runpath=$(readelf -d "$file" 2>/dev/null | sed -n 's/.*R\(UN\)\{0,1\}PATH.*\[\(.*\)\]/\2/p')
    for entry in ${runpath//:/ }; do
      case $entry in \$ORIGIN | \$ORIGIN/*) ;; *) fail "$file has the run path entry $entry" ;; esac
    done
  done < <(find "$tree" -type f \( -name '*.so*' -o -path '*/bin/*' \))
fi

if [ "$man_page" = ON ]; then
  page=$(find "$tree" -name sensorctl.1)
  [ -n "$page" ] || fail "no man page installed"
  LC_ALL=C man -l -P cat "$page" >"$work/man.txt" 2>/dev/null || fail "man -l $page"
  for option in $("$sensorctl" --help | grep -oE '^ +(-[A-Za-z], )?--[a-z-]+' | grep -oE -- '--[a-z-]+'); do
    grep -q -- "$option" "$work/man.txt" || fail "the man page lacks $option"
  done
fi
