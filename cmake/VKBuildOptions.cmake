# Language level, warnings, sanitizers, output places.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Debug, Release or RelWithDebInfo" FORCE)
endif()

option(VK_TESTS "Build the tests" ON)
option(VK_BENCH "Build the benchmarks" OFF)
set(VK_SANITIZE "" CACHE STRING "address (with undefined), thread, or empty")

add_compile_options(-Wall -Wextra -Wno-psabi)
if(VK_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(VK_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(VK_SANITIZE)
    message(FATAL_ERROR "VK_SANITIZE is '${VK_SANITIZE}': use address, thread or nothing")
endif()

find_program(VK_CCACHE ccache)
if(VK_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${VK_CCACHE})
endif()

# The products stand at the top of the build folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
