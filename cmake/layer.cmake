# dregsweep_add_layer(NAME LINKS library... [PRECOMPILE header...]): the library dregsweep_NAME of a folder, whose sources
# the folder adds. Nothing here defines the trace function: the DLL and the tests each link their own.
function(dregsweep_add_layer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS;PRECOMPILE")
    set(library dregsweep_${name})
    add_library(${library} STATIC)
    target_link_libraries(${library} PUBLIC dregsweep_flags ${arg_LINKS})
    # 20 ns less for each cleaned file: loops over the characters of every path.
    target_compile_options(${library} PRIVATE $<$<CONFIG:Release>:-O3>)
    # Only to build faster: every source includes what it uses.
    if(arg_PRECOMPILE)
        target_precompile_headers(${library} PRIVATE ${arg_PRECOMPILE})
    elseif(TARGET dregsweep_sysservices AND NOT name STREQUAL sysservices)
        target_precompile_headers(${library} REUSE_FROM dregsweep_sysservices)
    else()
        target_precompile_headers(${library} PRIVATE
            <windows.h> <algorithm> <filesystem> <functional> <map> <memory> <mutex> <optional> <string> <vector>)
    endif()
endfunction()
