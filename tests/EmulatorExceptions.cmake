# Read by ctest for a build whose tests run in an emulator: the case that cannot, so that ctest shows
# it as disabled. It takes a program's memory away, and the user-mode emulator ignores that limit.
# On the device's own kernel it does run: scripts/device-test.sh. tests/packaging alone is not built for
# another architecture: manual pages and completion are the same files everywhere, read by programs of
# this machine.
set_tests_properties(
    [=[Transcripts/Transcript.isAsAccepted/no_memory_setConfig  # GetParam() = no_memory/setConfig]=]
    PROPERTIES DISABLED TRUE)
