#!/bin/sh
# Cuts a raster in parts with GNU parallel, then merges them: parallel.sh INPUT OUTDIR PARTS [OPTION...]
# Over hosts that see INPUT and OUTDIR by the same paths: PARALLEL="--sshlogin 4/one,4/two" parallel.sh ...
# Run again after a failure, it makes what is missing.
set -eu
input=$1 outdir=$2 parts=$3
shift 3
mkdir -p "$outdir"
seq "$parts" | parallel --halt soon,fail=1 --quote \
    "${ORVO_TILE:-orvo-tile}" raster "$input" "$outdir" "$@" --jobs 1 --quiet --part "{}/$parts" >/dev/null
"${ORVO_TILE:-orvo-tile}" merge "$outdir"
