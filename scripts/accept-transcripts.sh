#!/usr/bin/env bash
# Makes the accepted transcripts (tests/transcripts/accepted) agree with what the programs do now,
# and shows what that changes, new and removed transcripts included. Nothing is staged: commit the
# change with the one that caused it, or undo it with git.
#
# Usage: scripts/accept-transcripts.sh
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

accepted=tests/transcripts/accepted

scripts/install-packages.sh
say "Building"
cmake --preset dev --log-level=WARNING
cmake --build --preset dev --target transcript_tests private_shared_memory_check
say "Running every case"
ACCEPT_TRANSCRIPTS=1 ctest --preset dev --quiet \
    --tests-regex '^(Transcripts/|TranscriptFolder\.holdsNoTranscript)' || {
    echo "A case could not be run: scripts/test.sh tells which." >&2
    exit 1
}

say "Changes in $accepted"
git --no-pager diff -- "$accepted"
git ls-files --others --exclude-standard -- "$accepted" | while read -r new; do
    git --no-pager diff --no-index -- /dev/null "$new" || true
done
git status --short -- "$accepted" | wc -l | xargs printf '%s changed, new or removed transcripts or folders of them\n'
