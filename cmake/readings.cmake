# How Chinese characters are read: a table for platform/base/pinyin.cpp, made of the system's Unihan database.
find_file(UNIHAN_READINGS Unihan_Readings.txt.bz2 PATHS /usr/share/unicode REQUIRED)
find_program(BZIP2 bzip2 REQUIRED)

add_executable(make_readings tools/make_readings.cpp)
target_link_libraries(make_readings PRIVATE build_flags Qt6::Core)

set(readings_dir ${CMAKE_BINARY_DIR}/readings)
file(MAKE_DIRECTORY ${readings_dir})
add_custom_command(
  OUTPUT ${readings_dir}/readings.inc
  COMMAND make_readings ${BZIP2} ${UNIHAN_READINGS} ${readings_dir}/readings.inc
  DEPENDS make_readings ${UNIHAN_READINGS}
  COMMENT "Making the table of readings"
  VERBATIM)
target_sources(hcn_base PRIVATE ${readings_dir}/readings.inc)
target_include_directories(hcn_base PRIVATE ${readings_dir})
