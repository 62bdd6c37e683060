#!/bin/sh
# Cuts a layer in parts with a Slurm job array, then merges them: slurm.sh raster|vector INPUT OUTDIR PARTS [OPTION...]
# INPUT and OUTDIR are seen by all nodes by the same paths. Run again after a failure, it makes what is missing.
set -eu
command=$1 input=$2 outdir=$3 parts=$4
shift 4
mkdir -p "$outdir"
sbatch --wait --quiet --array="1-$parts" --cpus-per-task=1 --output=/dev/null "$(dirname "$0")/slurm-part.sh" \
    "$command" "$input" "$outdir" "$@"
"${ORVO_TILE:-orvo-tile}" merge "$outdir"
