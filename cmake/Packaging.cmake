# What is installed beside the program and its shell completions, and the Debian package:
#
#   cpack --preset release        builds it from build/release, which has been built before
#
# Modules and manual are found by their way from the program's folder, so they lie in lib and share whatever the system
# calls its folder of libraries.

include(GNUInstallDirs)
set(modules_folder "lib/bomparser")
set(shared_folder "share/bomparser")
set(doc_folder "${CMAKE_INSTALL_DATADIR}/doc/bomparser")

foreach(module bomparser_component bomparser_desktop)
  if(TARGET ${module})
    install(TARGETS ${module} LIBRARY DESTINATION "${modules_folder}" RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
      ARCHIVE EXCLUDE_FROM_ALL DESTINATION "${modules_folder}")
  endif()
endforeach()

if(TARGET bomparser_component)
  # For hosts: what they tell the component and are told. The folder stands for src/ in the names of includes.
  foreach(header entry/component/FileParserComponent.h entry/component/CTNFileParserInterface.h ui/controls/CTNHostApp.h)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/src/${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/bomparser/${folder}")
  endforeach()
endif()

if(TARGET bomparser_desktop)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/bomparser.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/bomparser.metainfo.xml"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
  install(FILES "${PROJECT_SOURCE_DIR}/src/res/icons/bomparser.svg"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
endif()
if(EXISTS "${PROJECT_SOURCE_DIR}/docs/manual")
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/manual" DESTINATION "${shared_folder}")
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${shared_folder}")

install(FILES LICENSE README.md CHANGELOG.md docs/TEMPLATE_FORMAT.md DESTINATION "${doc_folder}")
# The terms of what the program has in it of others, as their packages tell them.
set(BOMPARSER_LIBRARIES_WITHIN libcli11-dev)
if(BOMPARSER_WHOLE_PROGRAMS)
  list(APPEND BOMPARSER_LIBRARIES_WITHIN libfmt-dev libxml2-dev libicu-dev zlib1g-dev liblzma-dev)
endif()
foreach(library IN LISTS BOMPARSER_LIBRARIES_WITHIN)
  install(FILES "/usr/share/doc/${library}/copyright" DESTINATION "${doc_folder}/libraries" RENAME "${library}" OPTIONAL)
endforeach()

set(BOMPARSER_PACKAGE_CONTACT "The BOM Parser authors <bomparser@package.invalid>" CACHE STRING
  "Who answers for the package: name and mail address")
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file("${PROJECT_SOURCE_DIR}/packaging/changelog.in" "${PROJECT_BINARY_DIR}/packaging/changelog" @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME bomparser)
set(CPACK_PACKAGE_VENDOR "The BOM Parser authors")
set(CPACK_PACKAGE_CONTACT "${BOMPARSER_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reads parts, placement, drill and aperture lists through parser templates")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/DebianLayout.cmake")
set(CPACK_BOMPARSER_COPYRIGHT "${PROJECT_SOURCE_DIR}/packaging/copyright")
set(CPACK_BOMPARSER_CHANGELOG "${PROJECT_BINARY_DIR}/packaging/changelog")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "A parser template describes once how a text file is laid out: a bill of
materials, a placement list, a drill or an aperture list. With it every such
file becomes a uniform list of entities in XML. The template that fits a file
best is found by itself; templates are made from sample lines and edited in a
dialog that shows what they match.")
# The libraries that the files are linked with; those that are loaded by name are added.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
if(TARGET bomparser_desktop)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6svg6)
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS xdg-utils)
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS qt6-wayland)
endif()
include(CPack)
