#!/bin/sh
# One task of slurm.sh.
exec "${ORVO_TILE:-orvo-tile}" "$@" --jobs "${SLURM_CPUS_PER_TASK:-1}" --quiet \
    --part "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT"
