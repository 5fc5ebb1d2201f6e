# What every target of the project shares: the application root that the build fills, warnings,
# sanitizers, compiler cache.

set(CORVANE_ROOT ${CMAKE_BINARY_DIR}/root)
file(MAKE_DIRECTORY ${CORVANE_ROOT}/bin ${CORVANE_ROOT}/lib)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Without these it would pass by every source that uses a precompiled header.
    set(ccache ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ccache})
    set(CMAKE_C_COMPILER_LAUNCHER ${ccache})
endif()

add_library(corvane_flags INTERFACE)
target_include_directories(corvane_flags INTERFACE ${CMAKE_SOURCE_DIR}/src/shared/common ${CMAKE_SOURCE_DIR}/src/shared)
target_include_directories(corvane_flags SYSTEM INTERFACE ${TCL_INCLUDE_PATH})
# Line tables keep the stack in a crash report readable without the bulk of full debug information.
target_compile_options(corvane_flags INTERFACE -Wall -Wextra -Wnon-virtual-dtor $<$<CONFIG:Release>:-g1>)
# GCC 12 sees overlaps in std::string::assign that are not there.
target_compile_options(corvane_flags INTERFACE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
if(CORVANE_WERROR)
    target_compile_options(corvane_flags INTERFACE -Werror)
endif()
if(CORVANE_SANITIZE)
    target_compile_options(corvane_flags INTERFACE -fsanitize=${CORVANE_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(corvane_flags INTERFACE -fsanitize=${CORVANE_SANITIZE})
endif()

# A library of the application root: lands in root/lib and finds its siblings there.
function(corvane_library name)
    add_library(${name} SHARED)
    target_link_libraries(${name} PUBLIC corvane_flags)
    set_target_properties(${name} PROPERTIES
        PREFIX "lib"
        LIBRARY_OUTPUT_DIRECTORY ${CORVANE_ROOT}/lib
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN")
    # The functions in the tables of a library's classes are bound when it is linked. By name, at each start,
    # they take longer than all else; data stays bound by name, so that each object is one in the process.
    target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions)
endfunction()

# A program of the application root: lands in root/bin and finds the libraries beside it.
function(corvane_program name)
    add_executable(${name})
    target_link_libraries(${name} PRIVATE corvane_flags)
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CORVANE_ROOT}/bin
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN/../lib")
endfunction()
