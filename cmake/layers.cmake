# Which room may include which is checked by every build: tools/check_layers.py knows the rules.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(GLOB_RECURSE layered_files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.h ${CMAKE_SOURCE_DIR}/src/*.cpp)
set(layers_stamp ${CMAKE_BINARY_DIR}/layers.checked)
add_custom_command(
  OUTPUT ${layers_stamp}
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tools/check_layers.py ${CMAKE_SOURCE_DIR}/src
  COMMAND ${CMAKE_COMMAND} -E touch ${layers_stamp}
  DEPENDS ${layered_files} ${CMAKE_SOURCE_DIR}/tools/check_layers.py
  COMMENT "Checking which room includes which")
add_custom_target(check_layers DEPENDS ${layers_stamp})
