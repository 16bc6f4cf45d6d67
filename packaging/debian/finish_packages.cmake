# Runs after packing and packs anew: permissions become independent of the packer's umask, scripts that call ldconfig
# give way to its trigger, and libraries of several architectures may be installed together.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(folder ${CPACK_TEMPORARY_DIRECTORY}/repacked)
    file(REMOVE_RECURSE ${folder})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND chmod -R u=rwX,go=rX ${folder} COMMAND_ERROR_IS_FATAL ANY)
    if(EXISTS ${folder}/DEBIAN/triggers)
        file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    endif()
    file(READ ${folder}/DEBIAN/control control)
    string(REGEX REPLACE "\n+$" "\n" control "${control}")
    # Found besides the dependency on the same version where the libraries are installed already.
    string(REGEX REPLACE ", libzqx-(img|pictures|tools)[0-9]+ \\(>= [^)]*\\)" "" control "${control}")
    if(control MATCHES "\nSection: (libs|libdevel)\n")
        string(APPEND control "Multi-Arch: same\n")
    elseif(control MATCHES "\nSection: doc\n")
        string(APPEND control "Multi-Arch: foreign\n")
    endif()
    file(WRITE ${folder}/DEBIAN/control "${control}")
    execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build ${folder} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${folder})
endforeach()
