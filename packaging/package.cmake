# The packages orvex, orvexctl and orvex-simulator for Debian 12, and the checks of their parts.
# docs/releasing.md tells how they are made.
if(NOT ORVEX_GUI)
  return()
endif()

set(parts ${CMAKE_CURRENT_LIST_DIR})
set(generated ${PROJECT_BINARY_DIR}/packaging)

# The user's documents lie side by side on a user's machine; what else the README leads to stays in
# the source.
function(install_documents)
  file(READ ${PROJECT_SOURCE_DIR}/README.md readme)
  string(REGEX REPLACE "!\\[[^]]*\\]\\([^)]*\\)\n+" "" readme "${readme}")
  string(REGEX REPLACE "## Two commands.*(## Installing)" "\\1" readme "${readme}")
  string(REGEX REPLACE "docs/(ports|wire-format)\\.md" "\\1.md" readme "${readme}")
  file(WRITE ${generated}/README.md "${readme}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/README.md)
  install(FILES ${generated}/README.md ${PROJECT_SOURCE_DIR}/docs/ports.md
    ${PROJECT_SOURCE_DIR}/docs/wire-format.md ${ARGN})
endfunction()

if(WIN32)
  include(${parts}/windows/package.cmake)
  return()
endif()

# Files that name the state folder.
foreach(file orvex.1 orvexctl.1 orvex-simulator.1 tmpfiles.conf is-scanner-port postrm)
  configure_file(${parts}/${file}.in ${generated}/${file} @ONLY)
endforeach()

# Debian compresses man pages and changelogs.
function(compress file from)
  add_custom_command(OUTPUT ${generated}/${file}.gz
    COMMAND gzip -9nc ${from}/${file} > ${generated}/${file}.gz
    DEPENDS ${from}/${file} VERBATIM)
endfunction()
compress(orvex.1 ${generated})
compress(orvexctl.1 ${generated})
compress(orvex-simulator.1 ${generated})
compress(changelog ${parts})
add_custom_target(package_texts ALL DEPENDS
  ${generated}/orvex.1.gz ${generated}/orvexctl.1.gz ${generated}/orvex-simulator.1.gz ${generated}/changelog.gz)

# What a package has of every program. Stripping by CMake leaves two sections that nobody needs.
function(install_for component package)
  install(CODE "if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND ${CMAKE_STRIP} --remove-section=.comment --remove-section=.note
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/${package}\" COMMAND_ERROR_IS_FATAL ANY)
  endif()" COMPONENT ${component})
  install(FILES ${generated}/${package}.1.gz DESTINATION share/man/man1 COMPONENT ${component})
  install(FILES ${generated}/changelog.gz ${parts}/copyright
    DESTINATION share/doc/${package} COMPONENT ${component})
endfunction()
install_for(orvex orvex)
install_for(orvexctl orvexctl)
install_for(simulator orvex-simulator)

install_documents(DESTINATION share/doc/orvex COMPONENT orvex)

install(FILES ${parts}/lintian-overrides RENAME orvex
  DESTINATION share/lintian/overrides COMPONENT orvex)
install(FILES ${parts}/orvexctl.lintian-overrides RENAME orvexctl
  DESTINATION share/lintian/overrides COMPONENT orvexctl)
install(FILES ${parts}/orvex.desktop DESTINATION share/applications COMPONENT orvex)
install(FILES ${parts}/invalid.orvex.orvex.metainfo.xml DESTINATION share/metainfo COMPONENT orvex)
install(FILES ${PROJECT_SOURCE_DIR}/artwork/orvex.svg
  DESTINATION share/icons/hicolor/scalable/apps COMPONENT orvex)
foreach(side 16 22 24 32 48 64 128 256 512)
  install(FILES ${PROJECT_SOURCE_DIR}/pictures/orvex-${side}.png RENAME orvex.png
    DESTINATION share/icons/hicolor/${side}x${side}/apps COMPONENT orvex)
endforeach()
install(FILES ${generated}/tmpfiles.conf RENAME orvex.conf
  DESTINATION lib/tmpfiles.d COMPONENT orvex)
install(FILES ${parts}/70-orvex.rules DESTINATION lib/udev/rules.d COMPONENT orvex)
install(PROGRAMS ${generated}/is-scanner-port DESTINATION lib/orvex COMPONENT orvex)

install(FILES ${parts}/orvexctl.bash RENAME orvexctl
  DESTINATION share/bash-completion/completions COMPONENT orvexctl)
install(DIRECTORY ${parts}/fleet/ DESTINATION share/doc/orvexctl/examples COMPONENT orvexctl)
install(FILES ${parts}/orvexctl.schema.json DESTINATION share/orvexctl COMPONENT orvexctl)

set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGE_CONTACT "Orvex maintainers <maintainers@orvex.invalid>")
set(CPACK_PACKAGE_VENDOR "Orvex maintainers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has a description of its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
# Packing begins with a build: what is packed is never older than the sources.
set(CPACK_INSTALL_COMMANDS "\"${CMAKE_COMMAND}\" --build \"${PROJECT_BINARY_DIR}\" \
--target orvex orvexctl orvex-simulator package_texts")

set(CPACK_COMPONENTS_ALL orvex orvexctl simulator)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_ORVEX_PACKAGE_NAME orvex)
set(CPACK_DEBIAN_ORVEX_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_ORVEX_PACKAGE_DEPENDS "systemd | systemd-tmpfiles")
set(CPACK_DEBIAN_ORVEX_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_ORVEX_PACKAGE_SUGGESTS "orvex-simulator, qt6-wayland")
set(CPACK_DEBIAN_ORVEX_PACKAGE_CONTROL_EXTRA ${parts}/postinst ${generated}/postrm)
set(CPACK_COMPONENT_ORVEX_DESCRIPTION "configures a scanner on a serial line
Orvex finds the baud rate of a barcode and magnetic stripe scanner on a serial
port, shows the scanner's setup in a window, and sends it back as changed. It
restores the factory setup, keeps setups in files, shows revisions and serial
number, and loads new firmware into the scanner by ZMODEM.")

set(CPACK_DEBIAN_ORVEXCTL_PACKAGE_NAME orvexctl)
set(CPACK_DEBIAN_ORVEXCTL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_ORVEXCTL_PACKAGE_SUGGESTS "orvex, orvex-simulator, parallel")
set(CPACK_COMPONENT_ORVEXCTL_DESCRIPTION "configures scanners on serial lines by commands
This program does the jobs of Orvex without a display: it finds a barcode and
magnetic stripe scanner on a serial port, shows, changes and compares its
setup, restores the factory setup, and loads new firmware by ZMODEM. Results
come as words or as JSON, with exit codes for scripts.")

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME orvex-simulator)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS lrzsz)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_ENHANCES orvex)
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "simulated scanner on a pseudo-terminal
This program stands in for the scanner that Orvex configures: it answers on a
pseudo-terminal as the scanner does on its serial line, takes setups and
firmware, and can be told to answer late, wrong or not at all. It serves to
learn, show and test Orvex without a scanner.")

include(CPack)

if(BUILD_TESTING)
  add_test(NAME package_parts COMMAND ${parts}/check parts)
endif()
