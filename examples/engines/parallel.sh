#!/bin/sh
# Cuts a layer in parts with GNU parallel, then merges them: parallel.sh raster|vector INPUT OUTDIR PARTS [OPTION...]
# Over hosts that see INPUT and OUTDIR by the same paths: PARALLEL="--sshlogin 4/one,4/two" parallel.sh ...
# Run again after a failure, it makes what is missing.
set -eu
command=$1 input=$2 outdir=$3 parts=$4
shift 4
mkdir -p "$outdir"
seq "$parts" | parallel --halt soon,fail=1 --quote \
    "${ORVO_TILE:-orvo-tile}" "$command" "$input" "$outdir" "$@" --jobs 1 --quiet --part "{}/$parts" >/dev/null
"${ORVO_TILE:-orvo-tile}" merge "$outdir"
