# The library, its headers flat in one folder, a CMake package and a pkg-config file.
if(TARGET vkmxp)
    install(TARGETS vkmxp EXPORT vkmxpTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    foreach(floor system database packets gateway driver)
        get_property(headers GLOBAL PROPERTY VK_HEADERS_${floor})
        install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vkmxp)
    endforeach()
endif()
