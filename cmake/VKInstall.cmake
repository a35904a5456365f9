# The library, its headers flat in one folder, a CMake package and a pkg-config file.
if(NOT TARGET vkmxp)
    return()
endif()

include(CMakePackageConfigHelpers)

set(VK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/vkmxp)
set(VK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vkmxp)

foreach(floor system database packets gateway driver)
    get_property(headers GLOBAL PROPERTY VK_HEADERS_${floor})
    install(FILES ${headers} DESTINATION ${VK_INCLUDE_DIR})
endforeach()

install(TARGETS vkmxp EXPORT vkmxpTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT vkmxpTargets NAMESPACE vkmxp:: DESTINATION ${VK_PACKAGE_DIR} FILE vkmxpTargets.cmake)
file(WRITE ${CMAKE_BINARY_DIR}/vkmxpConfig.cmake "include(\"\${CMAKE_CURRENT_LIST_DIR}/vkmxpTargets.cmake\")\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vkmxpConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vkmxpConfig.cmake ${CMAKE_BINARY_DIR}/vkmxpConfigVersion.cmake
        DESTINATION ${VK_PACKAGE_DIR})

configure_file(cmake/vkmxp.pc.in ${CMAKE_BINARY_DIR}/vkmxp.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vkmxp.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

foreach(program vkmessenger vkadmin vkmxpdevice)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
endforeach()
