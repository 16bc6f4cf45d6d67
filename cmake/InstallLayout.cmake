# Where things are installed, and how installed files find each other wherever the tree is moved to.
include(GNUInstallDirs)

if(WIN32)
    set(ZQX_INSTALL_LIBRARY_DIR ${CMAKE_INSTALL_BINDIR}) # where the loader looks
else()
    set(ZQX_INSTALL_LIBRARY_DIR ${CMAKE_INSTALL_LIBDIR})
    file(RELATIVE_PATH zqx_libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    if(APPLE)
        set(CMAKE_INSTALL_RPATH @loader_path @loader_path/${zqx_libraries_from_programs})
    else()
        set(CMAKE_INSTALL_RPATH $ORIGIN $ORIGIN/${zqx_libraries_from_programs})
    endif()
endif()

# zqx_install(TARGET...): programs and shared libraries.
function(zqx_install)
    install(TARGETS ${ARGN}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endfunction()
