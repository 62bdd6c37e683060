#!/bin/sh
# Cuts a raster in parts with a Slurm job array, then merges them: slurm.sh INPUT OUTDIR PARTS [OPTION...]
# INPUT and OUTDIR are seen by all nodes by the same paths. Run again after a failure, it makes what is missing.
set -eu
input=$1 outdir=$2 parts=$3
shift 3
mkdir -p "$outdir"
sbatch --wait --quiet --array="1-$parts" --cpus-per-task=1 --output=/dev/null "$(dirname "$0")/slurm-part.sh" \
    "$input" "$outdir" "$@"
"${ORVO_TILE:-orvo-tile}" merge "$outdir"
