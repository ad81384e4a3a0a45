# TinyXML is fetched, unpacked and patched by scripts/setup.sh; none of its source is part of this repository.
set(DREGSWEEP_TINYXML_DIR "${CMAKE_SOURCE_DIR}/build/deps/tinyxml" CACHE PATH "Unpacked TinyXML source")
if(NOT EXISTS "${DREGSWEEP_TINYXML_DIR}/tinyxml.h")
    message(FATAL_ERROR "No TinyXML in ${DREGSWEEP_TINYXML_DIR}: run scripts/setup.sh first")
endif()

add_library(tinyxml STATIC
    ${DREGSWEEP_TINYXML_DIR}/tinystr.cpp
    ${DREGSWEEP_TINYXML_DIR}/tinyxml.cpp
    ${DREGSWEEP_TINYXML_DIR}/tinyxmlerror.cpp
    ${DREGSWEEP_TINYXML_DIR}/tinyxmlparser.cpp)
target_include_directories(tinyxml SYSTEM PUBLIC ${DREGSWEEP_TINYXML_DIR})
target_compile_options(tinyxml PRIVATE -w)
