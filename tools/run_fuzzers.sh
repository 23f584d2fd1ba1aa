#!/bin/sh
# Runs each fuzzer for FUZZ_SECONDS (60), beginning with the kept inputs. New inputs are gathered in build-fuzz/corpus/,
# an input that shows a fault is left in build-fuzz/ as NAME-crash-..., NAME-timeout-... or NAME-oom-...
# With arguments: only the fuzzers named. Sessions write their files in memory where the system has a folder for that.
set -u
cd "$(dirname "$0")/.."
root=$(pwd)
status=0
[ $# -gt 0 ] || set -- map_data bitmap session import
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm
for name in "$@"; do
    gathered=$root/build-fuzz/corpus/$name
    mkdir -p "$gathered"
    # The weights of many features take a third of a session's time.
    schedule=
    [ "$name" != session ] || schedule=-entropic=0
    "build-fuzz/fuzz_$name" "$gathered" "$root/fuzz/corpus/$name" -max_total_time="${FUZZ_SECONDS:-60}" -timeout=20 $schedule \
        -rss_limit_mb=1024 -artifact_prefix="$root/build-fuzz/$name-" -print_final_stats=1 || status=1
done
exit $status
