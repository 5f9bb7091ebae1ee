# One flat, movable program folder at the prefix: the program, and beside it the files that it reads.
# What an operator makes there (ledgers, their list, backups, pictures) has names of its own and is never touched.
# All that is installed belongs to the target `installed`, which ./run builds.
add_custom_target(installed)
add_dependencies(installed hcn play jisuan program_folder manual)
install(TARGETS hcn play jisuan RUNTIME DESTINATION .)
install(FILES data/Learn.dat ${CMAKE_BINARY_DIR}/program/demo.hcn ${CMAKE_BINARY_DIR}/program/syspic.dat
              ${CMAKE_BINARY_DIR}/program/zb.ico DESTINATION .)

install(DIRECTORY ${CMAKE_BINARY_DIR}/program/使用说明 DESTINATION .)

# The template is also the first ledger of a new folder, so a folder that has one keeps it.
install(CODE "
  set(ledger \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/vemaro.dat\")
  if(EXISTS \"\${ledger}\")
    message(STATUS \"Kept: \${ledger}\")
  else()
    file(COPY_FILE \"${CMAKE_BINARY_DIR}/template/vemaro.dat\" \"\${ledger}\")
    message(STATUS \"Installing: \${ledger}\")
  endif()
")

# Layouts that the user changed stay.
install(CODE "
  set(source \"${PROJECT_SOURCE_DIR}/layouts\")
  set(target \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  include(\"${PROJECT_SOURCE_DIR}/cmake/stage_layouts.cmake\")
")
