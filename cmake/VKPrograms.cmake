# The programs of host/, each a folder of its own with a file "floors.cmake" when it needs more than the library.
file(GLOB programs CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/*/CMakeLists.txt)
foreach(program ${programs})
    get_filename_component(folder ${program} DIRECTORY)
    add_subdirectory(${folder} ${CMAKE_BINARY_DIR}/host/${folder})
endforeach()
