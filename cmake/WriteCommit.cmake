# Writes a header that names the commit being built, when that has changed: cmake -DSOURCE=... -DHEADER=... -P this
set(commit "")
find_program(git git)
if(git AND EXISTS ${SOURCE}/.git)
    execute_process(COMMAND ${git} -C ${SOURCE} describe --always --dirty=+changes --abbrev=10 --exclude=*
        OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define ZQX_IMG_COMMIT \"${commit}\"\n")
