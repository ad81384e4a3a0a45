# CLI11 and nlohmann-json are header-only and live in the build machine's own include folder: the cross compiler is
# given a folder for each that holds nothing but it.
set(DREGSWEEP_CLI11_DIR /usr/include/CLI CACHE PATH "Folder with CLI11's headers")
set(DREGSWEEP_JSON_DIR /usr/include/nlohmann CACHE PATH "Folder with nlohmann-json's headers")

# dregsweep_add_header_library(NAME FOLDER HEADER): FOLDER, which holds HEADER, under its own name.
function(dregsweep_add_header_library name folder header)
    if(NOT EXISTS "${folder}/${header}")
        message(FATAL_ERROR "${folder}/${header} is missing: run scripts/setup.sh first")
    endif()
    cmake_path(GET folder FILENAME folder_name)
    set(include ${CMAKE_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${folder} ${include}/${folder_name} SYMBOLIC)
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${include})
endfunction()

dregsweep_add_header_library(cli11 ${DREGSWEEP_CLI11_DIR} CLI.hpp)
dregsweep_add_header_library(nlohmann_json ${DREGSWEEP_JSON_DIR} json.hpp)
