# Read by ctest for a build whose tests run in an emulator: the cases that cannot, so that ctest shows
# them as disabled. They take a program's memory away, and the user-mode emulator ignores that limit.
# On the device's own kernel they do run: scripts/device-test.sh. tests/packaging alone is not built for
# another architecture: manual pages and completion are the same files everywhere, read by programs of
# this machine.
set_tests_properties(
    [=[Connection.exceptionsEndTheCommandAndNotTheProgram]=]
    [=[Transcripts/Transcript.isAsAccepted/no_memory_setwifi  # GetParam() = no_memory/setwifi]=]
    [=[Transcripts/Transcript.isAsAccepted/no_memory_setConfig  # GetParam() = no_memory/setConfig]=]
    [=[Transcripts/Transcript.isAsAccepted/no_memory_setConfigKeepWifi  # GetParam() = no_memory/setConfigKeepWifi]=]
    PROPERTIES DISABLED TRUE)
