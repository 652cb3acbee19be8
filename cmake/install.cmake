# cmake --install: everything but the programs, which are installed where they are made (zentrak_program).
include(CMakePackageConfigHelpers)

foreach(library IN LISTS ZENTRAK_LIBRARIES ITEMS effects app)
    install(TARGETS zentrak_${library} EXPORT zentrak)
endforeach()

# The player reads its current folder, so what is typed is a script that starts it in a folder of the user's own.
zentrak_install_program(zentrak ${CMAKE_INSTALL_LIBEXECDIR}/zentrak)
file(RELATIVE_PATH ZENTRAK_PLAYER_FROM_BIN
    ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBEXECDIR}/zentrak/zentrak)
file(RELATIVE_PATH ZENTRAK_DATA_FROM_BIN ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR}/zentrak)
configure_file(cmake/zentrak.sh.in ${PROJECT_BINARY_DIR}/installed/zentrak @ONLY)
configure_file(cmake/zentrak-edit.sh.in ${PROJECT_BINARY_DIR}/installed/zentrak-edit @ONLY)
install(PROGRAMS ${PROJECT_BINARY_DIR}/installed/zentrak ${PROJECT_BINARY_DIR}/installed/zentrak-edit
    DESTINATION ${CMAKE_INSTALL_BINDIR})

# The show travels as one zip; its setup file lies beside it, too, for the script to start from.
install(CODE "
    execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/cmake/pack_folder.sh\" \"${PROJECT_SOURCE_DIR}/data\"
        \"${PROJECT_BINARY_DIR}/installed/data.zip\" RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR \"data/ can't be packed; is the program zip installed?\")
    endif()")
install(FILES ${PROJECT_BINARY_DIR}/installed/data.zip data/setup.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/zentrak)

# What a desktop shows of the programs, and their manual pages.
install(FILES desktop/zentrak.desktop desktop/zentrak-studio.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES desktop/zentrak.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES desktop/org.zentrak.zentrak.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES desktop/man/zentrak.1 desktop/man/zentrak-edit.1 desktop/man/zentrak-new.1
    desktop/man/zentrak-studio.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
if(ZENTRAK_TOOLS)
    install(DIRECTORY desktop/man/tools/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endif()

# zentrak-new, and the project that it makes.
configure_file(tools/zentrak-new ${PROJECT_BINARY_DIR}/installed/zentrak-new @ONLY)
install(PROGRAMS ${PROJECT_BINARY_DIR}/installed/zentrak-new DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY tools/template DESTINATION ${CMAKE_INSTALL_DATADIR}/zentrak USE_SOURCE_PERMISSIONS
    PATTERN build EXCLUDE PATTERN setup.local.xml EXCLUDE)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentrak)
install(DIRECTORY effects/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zentrak/effects FILES_MATCHING PATTERN "*.h")
install(FILES README.md CHANGELOG.md LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

# find_package(zentrak)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/zentrak)
configure_package_config_file(cmake/zentrak-config.cmake.in ${PROJECT_BINARY_DIR}/installed/zentrak-config.cmake
    INSTALL_DESTINATION ${package} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/installed/zentrak-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/installed/zentrak-config.cmake
    ${PROJECT_BINARY_DIR}/installed/zentrak-config-version.cmake DESTINATION ${package})
install(EXPORT zentrak NAMESPACE zentrak:: FILE zentrak-targets.cmake DESTINATION ${package})

# pkg-config: everything in one module, linked from the top floor down. What the libraries use themselves is needed
# again by whoever links them statically.
list(REVERSE ZENTRAK_LIBRARIES)
set(ZENTRAK_PC_LIBS -lzentrak_app -lzentrak_effects)
foreach(library IN LISTS ZENTRAK_LIBRARIES)
    list(APPEND ZENTRAK_PC_LIBS -lzentrak_${library})
endforeach()
list(JOIN ZENTRAK_PC_LIBS " " ZENTRAK_PC_LIBS)
set(ZENTRAK_PC_PRIVATE "openal, sndfile, vorbisfile, libmpg123, libopenmpt, minizip, libpng, libjpeg, zlib, glfw3, x11")
if(BUILD_SHARED_LIBS)
    set(ZENTRAK_PC_REQUIRES "glew, glu, gl")
else()
    set(ZENTRAK_PC_REQUIRES "glew, glu, gl, ${ZENTRAK_PC_PRIVATE}")
endif()
file(RELATIVE_PATH ZENTRAK_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/zentrak.pc.in ${PROJECT_BINARY_DIR}/installed/zentrak.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/installed/zentrak.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
