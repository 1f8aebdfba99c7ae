# The saver's place on a Linux system, and its two Debian packages: each is a component, tamblor (what names none) and
# tamblor-4k, the show for large screens.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tamblor)
set(TAMBLOR_HOMEPAGE "https://orinlab.org/tamblor" CACHE STRING "Where users find Tamblor; the screenshot lies there too")
set(TAMBLOR_CONTACT "The Tamblor authors <tamblor@orinlab.org>" CACHE STRING "Who makes the Debian packages")
set(TAMBLOR_RELEASE_DATE 2026-11-25)
set(TAMBLOR_RELEASE_STAMP "Wed, 25 Nov 2026 12:00:00 +0000") # the same day, as Debian's changelogs have it

set(made ${CMAKE_BINARY_DIR})
if(TAMBLOR_NATIVE_BUILD)
    set(made ${TAMBLOR_NATIVE_BUILD})
endif()
install(TARGETS tamblor RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${made}/share/tamblor/tamb.dat DESTINATION ${CMAKE_INSTALL_DATADIR}/tamblor)
install(FILES ${made}/share/tamblor-4k/tamb.dat DESTINATION ${CMAKE_INSTALL_DATADIR}/tamblor-4k COMPONENT tamblor-4k OPTIONAL)
foreach(size 16 22 24 32 48 64 128 256)
    install(FILES ${made}/assets/icon-${size}.png RENAME tamblor.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
# The entry names the program where it will lie, which is known when it is installed; an archive may be unpacked anywhere.
install(CODE "
    set(program \${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/tamblor)
    if(program MATCHES /_CPack_Packages/)
        set(program tamblor)
    endif()
    set(entry \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/applications/org.orinlab.Tamblor.desktop)
    message(STATUS \"Installing: \${entry}\")
    configure_file(\"${CMAKE_CURRENT_SOURCE_DIR}/linux/org.orinlab.Tamblor.desktop.in\" \"\${entry}\" @ONLY)"
    COMPONENT tamblor)
install(FILES linux/tamblor.bash-completion RENAME tamblor
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
configure_file(linux/org.orinlab.Tamblor.metainfo.xml.in org.orinlab.Tamblor.metainfo.xml @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/org.orinlab.Tamblor.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# As Debian wants them: without the time of their making.
find_program(GZIP gzip REQUIRED)
foreach(document tamblor.6 changelog)
    configure_file(linux/${document}.in ${document} @ONLY)
    add_custom_command(OUTPUT ${document}.gz
        COMMAND ${GZIP} -9nc ${document} > ${document}.gz
        DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${document} VERBATIM)
    list(APPEND documents ${CMAKE_CURRENT_BINARY_DIR}/${document}.gz)
endforeach()
add_custom_target(linux_documents ALL DEPENDS ${documents})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tamblor.6.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man6)
foreach(package tamblor tamblor-4k)
    install(FILES linux/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${package})
endforeach()

set(CPACK_GENERATOR TGZ)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT ${TAMBLOR_CONTACT})
set(CPACK_COMPONENTS_ALL tamblor tamblor-4k)
set(CPACK_DEB_COMPONENT_INSTALL TRUE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${TAMBLOR_HOMEPAGE})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS TRUE)

# DevIL is loaded at run time, so that its library is in no list of what the program links.
set(CPACK_DEBIAN_TAMBLOR_PACKAGE_NAME tamblor)
set(CPACK_DEBIAN_TAMBLOR_PACKAGE_SHLIBDEPS TRUE)
set(CPACK_DEBIAN_TAMBLOR_PACKAGE_DEPENDS libdevil1c2)
set(CPACK_DEBIAN_TAMBLOR_PACKAGE_SUGGESTS "xscreensaver, tamblor-4k")
set(CPACK_DEBIAN_TAMBLOR_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/linux/prerm)
set(CPACK_DEBIAN_TAMBLOR_DESCRIPTION "screen saver that burns the desktop away and rebuilds it
Tamblor takes a picture of the desktop, burns it away over deep space and a
living sun, and rebuilds it out of a morphing sheet: embers gather into a
folded bird, the bird spreads its wings and unfolds into the desktop that was
there.
.
It starts by hand, from a screen saver daemon, or by itself when nobody has
touched anything for a while. It needs OpenGL; it is no screen lock.")

set(CPACK_DEBIAN_TAMBLOR-4K_PACKAGE_NAME tamblor-4k)
set(CPACK_DEBIAN_TAMBLOR-4K_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_TAMBLOR-4K_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/linux/prerm)
set(CPACK_COMPONENT_TAMBLOR-4K_DEPENDS tamblor)
set(CPACK_DEBIAN_TAMBLOR-4K_DESCRIPTION "screen saver that burns the desktop away (show for large screens)
The pictures and models of Tamblor's show in the size that a screen of 3840
pixels needs. Tamblor takes them by itself where the primary monitor is wider
than 2560 pixels.")
