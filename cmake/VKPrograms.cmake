# The programs of host/. What several of them share stands in host/common.
#
# vk_program(NAME LIBS...): the program from the sources of the current folder. All of them but main.cpp make the archive
# NAME_parts, which the tests link.
function(vk_program NAME)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/main.cpp$")
    add_library(${NAME}_parts STATIC ${sources})
    target_include_directories(${NAME}_parts PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${NAME}_parts PUBLIC vk_host_common ${ARGN})
    add_executable(${NAME} main.cpp)
    target_link_libraries(${NAME} PRIVATE ${NAME}_parts)
    set_target_properties(${NAME} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    install(TARGETS ${NAME} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

file(GLOB programs CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/host/*/CMakeLists.txt)
foreach(program ${programs})
    get_filename_component(folder ${program} DIRECTORY)
    get_filename_component(name ${folder} NAME)
    add_subdirectory(${folder} ${CMAKE_BINARY_DIR}/host/${name})
endforeach()
