# Installation (cmake --install) and the Debian package (cpack -G DEB).
# The example workbooks are not installed: they are compiled into the program (workbook/embed.cmake)
# and copied into the user's data folder on first run.
include(GNUInstallDirs)

install(TARGETS cauce RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(CAUCE_GUI)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/cauce.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/cauce.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

if(WIN32)
  return()
endif()

set(CAUCE_MAINTAINER "Equipo de Cauce <cauce@example.org>"
    CACHE STRING "Maintainer of the Debian package (name <address>)")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME cauce)
set(CPACK_PACKAGE_VENDOR "Equipo de Cauce")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "calculadora de hidráulica de canales y cauces naturales")
set(CPACK_PACKAGE_DESCRIPTION
    "Flujo permanente en canales artificiales y cauces naturales: profundidad normal y caudal por la "
    "fórmula de Manning, profundidad crítica y número de Froude, desborde hacia la zona inundable, "
    "perfiles de la superficie del agua a lo largo de un tramo, conductos circulares parcialmente llenos "
    "y socavación general del lecho. Cinco pantallas de escritorio (Qt) sobre libros de Excel (.xlsx, "
    "y .xls de lectura), y la orden cauce para calcular tramos, canales, curvas de gasto e informes sin "
    "pantalla gráfica.")
string(JOIN "" CPACK_PACKAGE_DESCRIPTION ${CPACK_PACKAGE_DESCRIPTION})
set(CPACK_PACKAGE_CONTACT "${CAUCE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CAUCE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# cauce_<version>_<arch>.deb, the architecture from dpkg.
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The dependencies are those of the shared libraries the program links (dpkg-shlibdeps, from dpkg-dev).
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(CAUCE_GUI)
  # Spanish standard buttons (qtbase_es.qm) and a font with accents.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, fonts-dejavu-core")
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_SOURCE_IGNORE_FILES "/\\\\.git/;/build[^/]*/")
include(CPack)
