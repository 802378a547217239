# What Orvex uses of qtbase, as a static library: Core, Gui, Widgets, Network without encryption, and
# Test for the demo session. All that it builds on is bundled with it. Pens have no support: Debian leaves
# out the header that it takes.
set(CMAKE_BUILD_TYPE Release CACHE STRING "")
set(BUILD_SHARED_LIBS OFF CACHE BOOL "")
set(QT_BUILD_EXAMPLES OFF CACHE BOOL "")
set(QT_BUILD_TESTS OFF CACHE BOOL "")
set(QT_GENERATE_SBOM OFF CACHE BOOL "")
set(INPUT_opengl no CACHE STRING "")
set(INPUT_openssl no CACHE STRING "")
foreach(library zlib libpng freetype harfbuzz pcre doubleconversion libjpeg)
  set(INPUT_${library} qt CACHE STRING "")
endforeach()
foreach(feature sql dbus icu glib system_zlib xml concurrent printsupport schannel openssl opengl vulkan
        direct2d1_1 tabletevent brotli zstd gif jpeg ico sqlmodel androiddeployqt windeployqt macdeployqt qmake)
  set(FEATURE_${feature} OFF CACHE BOOL "")
endforeach()
foreach(feature static network testlib direct2d topleveldomain)
  set(FEATURE_${feature} ON CACHE BOOL "")
endforeach()
