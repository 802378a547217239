# The installer for Windows, with both programs, and beside it the archive that its licences ask for.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION licences RENAME Orvex.txt)
install(DIRECTORY ${ORVEX_WINDOWS_QT}/licenses/ DESTINATION licences/Qt)
# What the programs hold of others. Each text names all that may be in it.
foreach(part qt6-base-dev libz-mingw-w64-dev g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev libcli11-dev)
  install(FILES /usr/share/doc/${part}/copyright DESTINATION licences RENAME ${part}.txt)
endforeach()

# The user's documents, as on other systems.
install_documents(DESTINATION .)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/orvexctl.schema.json DESTINATION .)

set(CPACK_GENERATOR NSIS)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGE_NAME Orvex)
set(CPACK_PACKAGE_VENDOR "Orvex maintainers")
set(CPACK_PACKAGE_FILE_NAME orvex-${CMAKE_PROJECT_VERSION_MAJOR}.${CMAKE_PROJECT_VERSION_MINOR}-setup)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_MODULE_PATH ${PROJECT_SOURCE_DIR}/packaging/windows)
set(CPACK_NSIS_MUI_ICON ${PROJECT_BINARY_DIR}/packaging/orvex.ico)
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};Orvex;ALL;/")
include(CPack)
