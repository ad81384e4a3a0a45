# What this project's own targets are built with. GoogleTest and TinyXML have their own flags.
add_library(dregsweep_flags INTERFACE)
target_compile_definitions(dregsweep_flags INTERFACE UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601)
target_include_directories(dregsweep_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_link_options(dregsweep_flags INTERFACE -static)
target_compile_options(dregsweep_flags INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wuseless-cast -Wcast-qual
    -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override
    -Wnull-dereference -Wduplicated-cond -Wduplicated-branches -Wlogical-op
    -Wformat=2 -Wzero-as-null-pointer-constant -Wundef -Wextra-semi)
