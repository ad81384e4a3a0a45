# Warnings for this project's own targets. GoogleTest and TinyXML are built with their own flags.
add_library(dregsweep_warnings INTERFACE)
target_compile_options(dregsweep_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wuseless-cast -Wcast-qual
    -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override
    -Wnull-dereference -Wduplicated-cond -Wduplicated-branches -Wlogical-op
    -Wformat=2 -Wzero-as-null-pointer-constant -Wundef -Wextra-semi)
