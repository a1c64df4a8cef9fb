# Compares what LIBRARY exports, as NM shows it, with packaging/exported-names.txt.
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle --format=posix ${LIBRARY}
    OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "VANTRIC_1 A[^\n]*\n" "" exported "${exported}")
string(REGEX REPLACE "@@VANTRIC_1 [A-Z] [^\n]*" "" exported "${exported}")
# Classes without a function of their own have a table of functions only where nothing is optimised.
string(REGEX REPLACE "vtable for [^\n]*::(IBackEnd|ISink)\n" "" exported "${exported}")
# 64-bit integers have another name on each architecture, and constructors come in two variants.
string(REPLACE "long long" "long" exported "${exported}")
string(REGEX MATCHALL "[^\n]+" exported "${exported}")
list(SORT exported)
list(REMOVE_DUPLICATES exported)
list(JOIN exported "\n" exported)

set(list ${CMAKE_CURRENT_LIST_DIR}/../../packaging/exported-names.txt)
file(READ ${list} expected)
if(NOT "${exported}\n" STREQUAL expected)
    set(found ${LIBRARY}.exported-names.txt)
    file(WRITE ${found} "${exported}\n")
    execute_process(COMMAND diff --unified=0 ${list} ${found})
    message(FATAL_ERROR "${LIBRARY} exports other names than packaging/exported-names.txt says. If that is meant, copy ${found} there.")
endif()
