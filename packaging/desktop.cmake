# The window's place on the desktop: entry, service, metainfo, icons.

install(FILES desktop/${id}.desktop DESTINATION ${data}/applications COMPONENT window)

# Where the program is, is known when it is installed.
install(CODE "set(program \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/parcelo\")
    configure_file(\"${CMAKE_CURRENT_SOURCE_DIR}/desktop/${id}.service.in\" \"${made}/${id}.service\" @ONLY)"
    COMPONENT window)
install(FILES ${made}/${id}.service DESTINATION ${data}/dbus-1/services COMPONENT window)

set(changes ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(drawing ${PROJECT_SOURCE_DIR}/app/resources/${id}.svg)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS releases.awk ${changes} ${drawing})
execute_process(COMMAND awk -v version=${PROJECT_VERSION} -v date=${today} -f releases.awk ${changes}
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} OUTPUT_VARIABLE releases COMMAND_ERROR_IS_FATAL ANY)
# Software centres fetch the pictures, and want that done by https.
string(REGEX REPLACE "^http:" "https:" site ${PARCELO_SITE})
configure_file(desktop/${id}.metainfo.xml.in ${id}.metainfo.xml @ONLY)
install(FILES ${made}/${id}.metainfo.xml DESTINATION ${data}/metainfo COMPONENT window)

# All icons are drawn from the one SVG. rsvg-convert is of the library by which most desktops draw
# scalable icons, so that they look alike in all sizes; Qt's own would be one more library to build with.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(icons ${data}/icons/hicolor)
foreach(size 16 22 24 32 48 64 128 256 512)
    set(icon ${made}/icons/${size}/${id}.png)
    file(MAKE_DIRECTORY ${made}/icons/${size})
    add_custom_command(OUTPUT ${icon}
        COMMAND ${RSVG_CONVERT} --width ${size} --height ${size} --output ${icon} ${drawing}
        DEPENDS ${drawing} VERBATIM)
    list(APPEND drawn ${icon})
    install(FILES ${icon} DESTINATION ${icons}/${size}x${size}/apps COMPONENT window)
endforeach()
install(FILES ${drawing} DESTINATION ${icons}/scalable/apps COMPONENT window)

# Desktops draw a symbolic icon in one colour of their own: shades become degrees of transparency.
file(READ ${drawing} symbolic)
foreach(shade e0b27a=.35 c48f52=.5 a9753c=.65 f3ead9=.8 dccfb6=.9 757575=1)
    string(REGEX MATCH "(.*)=(.*)" shade ${shade})
    string(REPLACE "fill=\"#${CMAKE_MATCH_1}\"" "fill-opacity=\"${CMAKE_MATCH_2}\"" symbolic "${symbolic}")
endforeach()
if(symbolic MATCHES "fill=\"[^\"]*\"")
    message(FATAL_ERROR "${drawing} has a colour that is no shade yet: ${CMAKE_MATCH_0}")
endif()
string(REPLACE "width=\"256\" height=\"256\"" "width=\"16\" height=\"16\"" symbolic "${symbolic}")
file(CONFIGURE OUTPUT ${id}-symbolic.svg CONTENT "${symbolic}" @ONLY)
install(FILES ${made}/${id}-symbolic.svg DESTINATION ${icons}/symbolic/apps COMPONENT window)

# The window's own, which it has without looking through the desktop's.
set(own_icon ${PARCELO_RESOURCES_DIR}/${id}.png)
add_custom_command(OUTPUT ${own_icon} DEPENDS ${made}/icons/128/${id}.png
    COMMAND ${CMAKE_COMMAND} -E copy ${made}/icons/128/${id}.png ${own_icon} VERBATIM)
install(FILES ${own_icon}
    DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/parcelo/Contents/Resources COMPONENT window)
add_custom_target(parcelo_icons DEPENDS ${drawn} ${own_icon})
add_dependencies(parcelo_window_program parcelo_icons)
