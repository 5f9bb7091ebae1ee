# The package for a machine that several users share: the program under lib/, what a program folder is made of under
# share/, from where the program gives each user a folder of their own (shell/program_folder.h). Nobody's ledgers lie in
# the package's folders, so removing it leaves them alone.
#   cmake --preset release && cmake --build --preset release && cpack --preset release
set(parts "${CMAKE_BINARY_DIR}/program")
set(package COMPONENT package EXCLUDE_FROM_ALL)
install(PROGRAMS $<TARGET_FILE:hcn> $<TARGET_FILE:jisuan> DESTINATION lib/hcn ${package})
install(FILES data/Learn.dat ${parts}/syspic.dat ${parts}/zb.ico ${parts}/demo.hcn
              ${CMAKE_BINARY_DIR}/template/vemaro.dat DESTINATION share/hcn ${package})
install(DIRECTORY layouts/ DESTINATION share/hcn ${package} FILES_MATCHING PATTERN "*.rpt")
install(DIRECTORY ${parts}/使用说明 DESTINATION share/hcn ${package})
install(FILES data/package/hengcangning.desktop DESTINATION share/applications ${package})
install(FILES data/package/hengcangning.xml DESTINATION share/mime/packages ${package})
foreach(size 48 128 256)
  set(icons share/icons/hicolor/${size}x${size})
  install(FILES ${CMAKE_BINARY_DIR}/template/icon${size}.png DESTINATION ${icons}/apps RENAME hengcangning.png ${package})
  install(FILES ${CMAKE_BINARY_DIR}/template/icon${size}.png DESTINATION ${icons}/mimetypes
          RENAME application-x-hengcangning.png ${package})
endforeach()
install(CODE "
  file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
  file(CREATE_LINK ../lib/hcn/hcn \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/hcn\" SYMBOLIC)
" ${package})

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL package)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_NAME hengcangning)
set(CPACK_PACKAGE_VENDOR "Hengcangning")
set(CPACK_PACKAGE_CONTACT "Hengcangning <support@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Stock keeping for the warehouse of a small company")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION office)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library call tells: fonts of screen and paper, the toolkit's own Chinese texts.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-noto-cjk, fonts-wqy-microhei, qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "cups")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fcitx5-frontend-qt6")
include(CPack)
