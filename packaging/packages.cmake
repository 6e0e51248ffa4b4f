# Two Debian packages: parcelo-cli, the command line and the tools, and parcelo, the window. What only
# packages have stands in components of its own, which a plain cmake --install leaves out.

set(package_version ${PROJECT_VERSION}-1)
set(maintainer "The Parcelo developers <developers@parcelo.example>")
string(TIMESTAMP moment "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/changelog.in changelog @ONLY)

# The package `name` holds the component and what every Debian package has.
function(parcelo_add_package name component)
    set(own ${component}_package)
    set(documents ${data}/doc/${name})
    install(FILES debian/copyright DESTINATION ${documents} COMPONENT ${own} EXCLUDE_FROM_ALL)
    install(FILES debian/${name}.lintian-overrides RENAME ${name}
        DESTINATION ${data}/lintian/overrides COMPONENT ${own} EXCLUDE_FROM_ALL)
    parcelo_install_compressed(${own} ${documents} ${made}/changelog changelog.Debian EXCLUDE_FROM_ALL)
    parcelo_install_compressed(
        ${own} ${documents} ${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog EXCLUDE_FROM_ALL)
    list(APPEND CPACK_COMPONENTS_ALL ${component} ${own})
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)
    foreach(part ${component} ${own})
        string(TOUPPER ${part} part)
        set(CPACK_COMPONENT_${part}_GROUP ${name} PARENT_SCOPE)
    endforeach()
    string(TOUPPER ${name} package)
    set(CPACK_DEBIAN_${package}_PACKAGE_NAME ${name} PARENT_SCOPE)
endfunction()

parcelo_add_package(parcelo-cli commandline)
set(CPACK_DEBIAN_PARCELO-CLI_DESCRIPTION "makes archives on the command line
Turns files and folders into a zip or tar.gz archive, on all processors.
Whatever could not be archived is named, and an older archive stays whole
until the new one takes its place. The window is in the package parcelo.")
install(FILES completions/_parcelo DESTINATION ${data}/zsh/vendor-completions
    COMPONENT commandline_package EXCLUDE_FROM_ALL) # Debian's folder for those of packages

if(PARCELO_WINDOW)
    parcelo_add_package(parcelo window)
    set(CPACK_DEBIAN_PARCELO_PACKAGE_DEPENDS "parcelo-cli (= ${package_version})")
    set(CPACK_DEBIAN_PARCELO_PACKAGE_RECOMMENDS "hicolor-icon-theme, xdg-utils, qt6-translations-l10n")
    # Read the menus for Nautilus and Caja.
    set(CPACK_DEBIAN_PARCELO_PACKAGE_SUGGESTS "python3-nautilus, python3-caja")
    set(CPACK_DEBIAN_PARCELO_DESCRIPTION "turns files into an archive in one gesture
Drop files and folders on the window or on its icon and confirm a name: the
archive is made, shown in the file manager or attached to a new message.")
    # By this the window knows that the system brings its updates.
    install(FILES debian/packaged DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/parcelo/Contents/Resources
        COMPONENT window_package EXCLUDE_FROM_ALL)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # the first line of each description is
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PARCELO_SITE})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
